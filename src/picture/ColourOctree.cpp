#include "ColourOctree.h"

#include "AppError.h"

#include <algorithm>
#include <functional>
#include <queue>

ColourOctree::ColourOctree() {
    clear();
}

void ColourOctree::clear() {
    m_nodes.clear();
    m_freeNodes.clear();
    for (auto& level : m_inner)
        level.clear();
    m_leafCount = 0;
    m_lastLeaf = -1;
    newNode(-1, 0, {0, 0, 0}, {255, 255, 255});
}

int ColourOctree::newNode(int parent, int level, const std::array<std::uint8_t, 3>& low,
                          const std::array<std::uint8_t, 3>& high) {
    int index;
    if (m_freeNodes.empty()) {
        index = static_cast<int>(m_nodes.size());
        m_nodes.emplace_back();
    } else {
        index = m_freeNodes.back();
        m_freeNodes.pop_back();
        m_nodes[index] = Node();
    }
    Node& node = m_nodes[index];
    node.low = low;
    node.high = high;
    node.parent = parent;
    node.level = level;
    node.child.fill(-1);
    node.leaf = level == LeafLevel;
    if (node.leaf)
        ++m_leafCount;
    else
        m_inner[level].push_back(index);
    return index;
}

int ColourOctree::childFor(int node, const std::array<int, 3>& colour) {
    std::array<std::uint8_t, 3> low = m_nodes[node].low;
    std::array<std::uint8_t, 3> high = m_nodes[node].high;
    int slot = 0;
    for (int c = 0; c < 3; ++c) {
        const int middle = low[c] / 2 + high[c] / 2;
        if (colour[c] > middle) {
            slot |= 1 << c;
            low[c] = static_cast<std::uint8_t>(middle + 1);
        } else {
            high[c] = static_cast<std::uint8_t>(middle);
        }
    }
    if (m_nodes[node].child[slot] < 0) {
        const int created = newNode(node, m_nodes[node].level + 1, low, high);
        m_nodes[node].child[slot] = created;
    }
    return m_nodes[node].child[slot];
}

void ColourOctree::addColour(int red, int green, int blue) {
    const QRgb colour = qRgb(red, green, blue);
    int node = m_lastLeaf;
    if (node < 0 || colour != m_lastColour) {
        node = 0;
        while (!m_nodes[node].leaf)
            node = childFor(node, {red, green, blue});
    }
    Node& leaf = m_nodes[node];
    leaf.sum[0] += red;
    leaf.sum[1] += green;
    leaf.sum[2] += blue;
    ++leaf.pixels;
    m_lastLeaf = node;
    m_lastColour = colour;
    while (m_leafCount > WorkingLeaves)
        reduceDeepest();
}

void ColourOctree::reduceDeepest() {
    // The deepest inner cubes have only leaves below them.
    auto level = std::find_if(m_inner.rbegin(), m_inner.rend(),
                              [](const auto& nodes) { return !nodes.empty(); });
    const int index = level->back();
    level->pop_back();
    merge(index);
}

void ColourOctree::merge(int index) {
    Node& node = m_nodes[index];
    for (std::int32_t& child : node.child) {
        if (child < 0)
            continue;
        const Node& merged = m_nodes[child];
        for (int c = 0; c < 3; ++c)
            node.sum[c] += merged.sum[c];
        node.pixels += merged.pixels;
        --m_leafCount;
        m_freeNodes.push_back(child);
        child = -1;
    }
    node.leaf = true;
    ++m_leafCount;
    m_lastLeaf = -1;
}

bool ColourOctree::onlyLeavesBelow(const Node& node) const {
    return std::all_of(node.child.begin(), node.child.end(),
                       [this](int child) { return child < 0 || m_nodes[child].leaf; });
}

double ColourOctree::mergeCost(const Node& node) const {
    // The growth of the summed squared error when the children give way to
    // their common average: sum(S_i^2 / n_i) - S^2 / n per channel.
    double cost = 0, pixels = 0;
    std::array<double, 3> sum{};
    for (int child : node.child) {
        if (child < 0)
            continue;
        const Node& leaf = m_nodes[child];
        for (int c = 0; c < 3; ++c) {
            const double channel = double(leaf.sum[c]);
            cost += channel * channel / double(leaf.pixels);
            sum[c] += channel;
        }
        pixels += double(leaf.pixels);
    }
    for (double channel : sum)
        cost -= channel * channel / pixels;
    return cost;
}

std::vector<QRgb> ColourOctree::palette(int maxLeaves) {
    using Candidate = std::pair<double, int>;
    std::priority_queue<Candidate, std::vector<Candidate>, std::greater<>> cheapest;
    for (const auto& level : m_inner)
        for (int index : level)
            if (onlyLeavesBelow(m_nodes[index]))
                cheapest.push({mergeCost(m_nodes[index]), index});
    while (m_leafCount > maxLeaves) {
        if (cheapest.empty())
            throw AppError("cPalette.CreateOptimal", "Error in reducing nodes");
        const int index = cheapest.top().second;
        cheapest.pop();
        auto& level = m_inner[m_nodes[index].level];
        level.erase(std::find(level.begin(), level.end(), index));
        merge(index);
        const int parent = m_nodes[index].parent;
        if (parent >= 0 && onlyLeavesBelow(m_nodes[parent]))
            cheapest.push({mergeCost(m_nodes[parent]), parent});
    }
    std::vector<QRgb> colours;
    colours.reserve(m_leafCount);
    collect(0, colours);
    return colours;
}

void ColourOctree::collect(int index, std::vector<QRgb>& colours) const {
    const Node& node = m_nodes[index];
    if (node.leaf) {
        const auto average = [&](int c) {
            return static_cast<int>((node.sum[c] + node.pixels / 2) / node.pixels);
        };
        colours.push_back(qRgb(average(0), average(1), average(2)));
        return;
    }
    for (int child : node.child)
        if (child >= 0)
            collect(child, colours);
}
