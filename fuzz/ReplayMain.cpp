// Replaces the fuzzing engine in an ordinary build: tries every file of the given folders. A folder
// that does not exist, such as the one for crashes before the first crash, counts as empty. If no
// file is found at all, the replay fails.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "FuzzTarget.h"

// Targets that need no preparation do not define this.
#pragma weak LLVMFuzzerInitialize

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    if (fs::is_directory(folder)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            files.push_back(entry.path());
        }
    }
    return files;
}

bool Replay(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)),
                            std::istreambuf_iterator<char>());
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return false;
    }
    // Prints the name before the run, because a fault ends the program.
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    // As the engine passes it: in a block of its own, so that the sanitizers find reads beyond its
    // end.
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    return LLVMFuzzerTestOneInput(block.get(), bytes.size()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize != nullptr && LLVMFuzzerInitialize(&argc, &argv) != 0) {
        return EXIT_FAILURE;
    }
    std::size_t replayed = 0;
    for (int index = 1; index < argc; ++index) {
        for (const fs::path& path : FilesBelow(argv[index])) {
            if (!Replay(path)) {
                return EXIT_FAILURE;
            }
            ++replayed;
        }
    }
    std::printf("%zu files replayed\n", replayed);
    return replayed != 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
