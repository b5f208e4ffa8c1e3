// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target over every file below the paths given, in order of name, in builds without a fuzzer:
// once as the file is, and, if it is short, cut off at each place and with each byte changed.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

std::vector<std::filesystem::path> filesBelow(const std::filesystem::path& path) {
    std::vector<std::filesystem::path> files;
    if (!std::filesystem::is_directory(path)) return {path};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// A copy of the exact size lets the address sanitizer see a read of one byte too many.
void run(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> input(data, data + size);
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

void runDamaged(std::string bytes) {
    constexpr std::size_t kLongest = 1000;
    if (bytes.size() > kLongest) return;
    auto* data = reinterpret_cast<std::uint8_t*>(bytes.data());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        run(data, at);
        for (std::uint8_t mask : {0x01, 0x20, 0x80, 0xFF}) {
            data[at] ^= mask;
            run(data, bytes.size());
            data[at] ^= mask;
        }
    }
}

bool replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return false;
    }
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::fprintf(stderr, "%s\n", path.c_str());
    run(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    runDamaged(bytes);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize) LLVMFuzzerInitialize(&argc, &argv);
    std::size_t count = 0;
    for (int index = 1; index < argc; ++index) {
        for (const auto& file : filesBelow(argv[index])) {
            if (!replay(file)) return 1;
            ++count;
        }
    }
    std::printf("%zu inputs replayed\n", count);
    return count == 0 ? 1 : 0;
}
