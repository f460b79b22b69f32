// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target over the files of a folder, each whole and cut at every length up to 2000.
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

}  // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; i++) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(in), {}};
            run(bytes);
            for (std::size_t n = 0; n < bytes.size() && n < 2000; n++) run(bytes.substr(0, n));
            files++;
        }
    }
    std::printf("%d seeds replayed\n", files);
    return files > 0 ? 0 : 1;
}
