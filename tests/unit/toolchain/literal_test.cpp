// SPDX-License-Identifier: Apache-2.0
//
// Files that a source holds as text: what the text was made of comes back when the program runs.
#include "library/source/bmptotxt.h"
#include "support/bitmap.h"
#include "support/toolchain_folder.h"

#include <random>
#include <string>

namespace tarn::toolchain {
namespace {

class LiteralProgram : public ToolchainTest {
protected:
    // What a program writes that holds the bytes as a constant.
    std::string throughAProgram(const std::string& bytes) {
        write("main.cls", "Tarnwick Class Main\nconst SHOWN = " + BYTESTRINGTOLITERAL(bytes) +
                              "\nfunction main()\n  SAVEFILE(\"" + dir +
                              "out.bin\", SHOWN)\n"
                              "  PRINT(STR(LENGTH(SHOWN)))\nend function\nEnd class\n");
        write("environment/ide.ini", "[ordo]\nCLS=\"" + dir + "tools/quarn.exe\" /p2 /d2 /q ^.cls\n");
        write("config/tarnwick/registry.ini",
              "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" + dir +
                  "environment/ide.exe\n");
        EXPECT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
        std::filesystem::rename(dir + "main.cls", dir + "away.cls");
        EXPECT_EQ(run(dir + "main.exe", {}), 0) << output;
        EXPECT_EQ(output, std::to_string(bytes.size()) + "\n");
        return read("out.bin");
    }
};

TEST_F(LiteralProgram, GivesEveryByteBack) {
    std::string bytes;
    for (int i = 0; i < 256; i++) bytes += static_cast<char>(i);
    bytes += "\"quoted\"" + bytes;
    EXPECT_EQ(throughAProgram(bytes), bytes);
}

TEST_F(LiteralProgram, GivesTheLargestBitmapBack) {
    std::string bytes = bitmap(49, 50, 0xC01030);
    ASSERT_LE(bytes.size(), 7500U);
    std::mt19937 random(3);
    while (bytes.size() < 7500) bytes += static_cast<char>(random());
    EXPECT_EQ(throughAProgram(bytes), bytes);
}

TEST_F(LiteralProgram, GivesAByteThatIsALineOfItsOwnBack) {
    const std::string bytes = std::string(80, 'a') + "\n" + std::string(80, '"');
    EXPECT_EQ(throughAProgram(bytes), bytes);
}

}  // namespace
}  // namespace tarn::toolchain
