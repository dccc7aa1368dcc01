// Runs a fuzz target once on every file named, and on every file of a folder named.
#include "fuzz/target.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++replayed;
}

} // namespace

int main(int argc, char** argv) {
    for (int index = 1; index < argc; ++index) {
        if (!std::filesystem::is_directory(argv[index])) {
            replay(argv[index]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[index])) {
            replay(entry.path());
        }
    }
    std::printf("%d\n", replayed);
    return replayed > 0 ? 0 : 1;
}
