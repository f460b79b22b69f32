// SPDX-License-Identifier: Apache-2.0
#include "library/system/system.h"

#include "kernel/values/sets.h"
#include "support/errorcell.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(Constants, ColoursHaveBlueInTheHighByte) {
    const int colours[] = {BLACK,      DARKBLUE,     DARKGREEN,   DARKCYAN,  DARKRED,    DARKMAGENTA,
                           DARKYELLOW, DARKGREY,     LIGHTGREY,   LIGHTBLUE, LIGHTGREEN, LIGHTCYAN,
                           LIGHTRED,   LIGHTMAGENTA, LIGHTYELLOW, WHITE};
    const int words[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0x808080,
                         0xC0C0C0, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
    for (std::size_t i = 0; i < std::size(words); ++i) EXPECT_EQ(colours[i], words[i]) << i;
    EXPECT_EQ(RGB(255, 0, 0), LIGHTRED);
    EXPECT_EQ(RGB(0, 0, 128), DARKBLUE);
}

TEST(Constants, ErrorsAreThoseOfTheTable) {
    EXPECT_EQ(ERR_FILE_COPY_SIZE, 659);
    EXPECT_EQ(ERR_FIRST_EXECUTABLE, 901);
    EXPECT_EQ(ERR_LAST_EXECUTABLE, 909);
    EXPECT_EQ(ERR_LAST_CONTINUABLE, 992);
}

TEST(Constants, EventsKeysAndLimits) {
    EXPECT_EQ(ACTIVATE_EVENT, 0x8001);
    EXPECT_EQ(CLOSE_EVENT, 32781);
    EXPECT_EQ(MAX_CONTROLS, 255);
    EXPECT_EQ(MAX_NAME, 255);
    EXPECT_EQ(MAX_LINE, 1024);
    EXPECT_EQ(MAX_INTEGER, 0x7FFFFFFF);
    EXPECT_EQ(KEYSTR(KEY_CTRL_A), "Ctrl+A");
    EXPECT_EQ(KEYSTR(KEY_CTRL_Z), "Ctrl+Z");
}

TEST(Constants, ExtensionsBeginWithTheirDot) {
    const std::string_view all[] = {EXT_BAK, EXT_BIN,   EXT_BMP,  EXT_CHM, EXT_CSV,      EXT_DBF, EXT_EXE,
                                    EXT_HLP, EXT_HTM,   EXT_HTML, EXT_ICO, EXT_MANIFEST, EXT_RC,  EXT_RCX,
                                    EXT_LNK, EXT_LNTMP, EXT_SYM,  EXT_SYN, EXT_TAB,      EXT_TXT, EXT_WAV,
                                    EXT_XBF, EXT_XHTML, EXT_XML,  EXT_ZIP};
    const std::string_view texts[] = {".bak", ".bin",   ".bmp",  ".chm", ".csv",      ".dbf", ".exe",
                                      ".hlp", ".htm",   ".html", ".ico", ".manifest", ".rc",  ".rcx",
                                      ".lnk", ".ln~",   ".sym",  ".syn", ".tab",      ".txt", ".wav",
                                      ".xbf", ".xhtml", ".xml",  ".zip"};
    for (std::size_t i = 0; i < std::size(texts); ++i) EXPECT_EQ(all[i], texts[i]) << i;
    EXPECT_EQ(NULLWORD, "NULL");
}

TEST(Constants, TheSetOfFileNameCharactersIsWhatNamesAreCheckedBy) {
    const OwnedSet set = FILENAMESET();
    EXPECT_EQ(SetLowerBound(set.get()), 32);
    EXPECT_EQ(SetUpperBound(set.get()), 126);
    int members = 0;
    for (int c = 1; c < 128; ++c) {
        EXPECT_EQ(SetContains(c, set.get()), FILENAMECHAR(static_cast<char>(c))) << c;
        members += FILENAMECHAR(static_cast<char>(c)) ? 1 : 0;
    }
    EXPECT_EQ(SetCount(set.get()), members);
    for (const char c : std::string_view("\"*/:<>?\\|\x7F")) EXPECT_FALSE(SetContains(c, set.get())) << c;
    for (const char c : std::string_view(" !#$%&'()+,-.09;=@AZ[]^_`az{}~"))
        EXPECT_TRUE(SetContains(c, set.get())) << c;
    EXPECT_FALSE(FILENAMECHAR('\0'));
    EXPECT_TRUE(FILENAMECHAR('\xC3')) << "a letter of some script";
    EXPECT_EQ(takeError(), 0);
}

TEST(Constants, ThePredefinedObjectsAreThoseOfTheSystem) {
    EXPECT_EQ(GetTypeof(screen), "Screen");
    EXPECT_EQ(GetTypeof(printer), "Printer");
    EXPECT_EQ(GetTypeof(clipboard), "Clipboard");
    EXPECT_EQ(PREDEFINEDOBJECT("screen"), screen);
    EXPECT_EQ(PREDEFINEDOBJECT("PRINTER"), printer);
    EXPECT_EQ(PREDEFINEDOBJECT("Clipboard"), clipboard);
    EXPECT_TRUE(PREDEFINEDOBJECT("window").empty());
    EXPECT_TRUE(PREDEFINEDOBJECT("").empty());
}

}  // namespace
}  // namespace tarn
