// Runs a fuzz harness over every file of the folders (or files) it is given,
// so a normal build can replay a corpus without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {
int replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in),
                                  std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return 1;
}
} // namespace

int main(int argc, char** argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path(argv[i]);
        if (std::filesystem::is_directory(path)) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
                if (entry.is_regular_file())
                    inputs += replay(entry.path());
        } else if (std::filesystem::is_regular_file(path)) {
            inputs += replay(path);
        }
    }
    std::printf("replayed %d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
