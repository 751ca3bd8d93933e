#pragma once

#include <QRgb>
#include <array>
#include <cstdint>
#include <vector>

// Colour cubes of the RGB space for building an optimal palette. Every colour
// added descends to a leaf; cubes are split down to single colours (eight
// levels). While colours are added, the tree is kept to a working size by
// merging the newest cubes of the deepest level, which is cheap; the palette
// is then made by merging, among the cubes whose children are all leaves,
// always the one whose merge adds the least error, until no more leaves than
// the palette may hold remain.
class ColourOctree {
public:
    static constexpr int WorkingLeaves = 4096;

    ColourOctree();

    void addColour(int red, int green, int blue);
    // Reduces the tree to at most maxLeaves leaves and returns one colour per
    // leaf, the average of the pixels it counted, in tree order. Throws
    // AppError "Error in reducing nodes" when no node is left to reduce (a
    // limit below one).
    std::vector<QRgb> palette(int maxLeaves);
    int leafCount() const { return m_leafCount; }
    void clear();

private:
    static constexpr int LeafLevel = 8;
    struct Node {
        std::array<std::uint8_t, 3> low{};
        std::array<std::uint8_t, 3> high{};
        std::array<std::int32_t, 8> child{};
        std::array<std::uint64_t, 3> sum{};
        std::uint64_t pixels = 0;
        std::int32_t parent = -1;
        int level = 0;
        bool leaf = false;
    };

    int newNode(int parent, int level, const std::array<std::uint8_t, 3>& low,
                const std::array<std::uint8_t, 3>& high);
    int childFor(int node, const std::array<int, 3>& colour);
    void reduceDeepest();
    // Turns an inner cube, already taken off its level's list, into a leaf.
    void merge(int node);
    bool onlyLeavesBelow(const Node& node) const;
    double mergeCost(const Node& node) const;
    void collect(int node, std::vector<QRgb>& colours) const;

    int m_leafCount = 0;
    std::vector<Node> m_nodes;
    std::vector<std::int32_t> m_freeNodes;
    // The inner cubes of each level, newest last.
    std::array<std::vector<std::int32_t>, LeafLevel> m_inner;
    // The leaf of the last colour added, valid until the tree is reduced:
    // pictures repeat colours in runs.
    int m_lastLeaf = -1;
    QRgb m_lastColour = 0;
};
