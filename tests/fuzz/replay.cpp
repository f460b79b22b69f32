// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target over the files of a folder, each whole and cut at every length up to 2000; and over the
// lines of a file that ends in ".hex", each of which is an input in hexadecimal.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void run(const std::string& bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

int replayFolder(const std::filesystem::path& folder) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        run(bytes);
        for (std::size_t n = 0; n < bytes.size() && n < 2000; n++) run(bytes.substr(0, n));
        files++;
    }
    return files;
}

int replayLines(const std::filesystem::path& file) {
    constexpr int base = 16;
    int lines = 0;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line); lines++) {
        std::string bytes;
        for (std::size_t at = 0; at + 2 <= line.size(); at += 2)
            bytes += static_cast<char>(std::stoi(line.substr(at, 2), nullptr, base));
        run(bytes);
    }
    return lines;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; i++) {
        const std::filesystem::path from = argv[i];
        const int inputs = from.extension() == ".hex" ? replayLines(from) : replayFolder(from);
        std::printf("%s: %d inputs replayed\n", argv[i], inputs);
        if (inputs == 0) return 1;
    }
    return 0;
}
