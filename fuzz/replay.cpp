// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target over files: ARGUMENT... are files, and directories that must not be empty.
#include <algorithm>
#include <iterator>
#include <vector>

#include "support.h"

namespace {

std::vector<std::filesystem::path> filesAt(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) return {path};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(path)) files.push_back(entry);
    fuzz::require(!files.empty(), "the corpus " + path.string() + " is empty");
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    fuzz::require(argc > 1, "no corpus was named");
    for (int i = 1; i < argc; ++i) {
        for (const auto& path : filesAt(argv[i])) {
            std::fprintf(stderr, "%s\n", path.c_str());
            std::ifstream file(path, std::ios::binary);
            fuzz::require(file.is_open(), "cannot read " + path.string());
            const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
            const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
            LLVMFuzzerTestOneInput(input.data(), input.size());
        }
    }
    return 0;
}
