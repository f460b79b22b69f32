// SPDX-License-Identifier: Apache-2.0
//
// A resource file in a folder of its own, and short ways to read, list and write it.
#pragma once

#include "platform/resources/resource.h"

#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {

inline const std::string example = R"(// The resources of a test.
#define IDLOGO 500
#define second 777

logo BITMAP "logo.bmp"
readme INCFILE FIXED "<RESOURCEDIR>\\doc\\readme.txt"   // with an option
people DBFILE "people.dbf"

strange words that nobody knows
STRINGTABLE
BEGIN
  1, "one // no comment"
END

Main DIALOG
  CAPTION="Tarnwick"   // the product
  POSITION=0 0 320 14
  MENU=MainMenu

  // The first button.
  Bitmapbutton btnfile_open 1201
    POSITION=2 1 16 12
    PICTURE="C:\\new\\open.bmp"
    HINT="Open\na \"file\""
  PUSHBUTTON   IDOK
    POSITION=20 1 30 12
    WEIGHT=12
  Label second
    VISIBLE=0
  Label
    CAPTION="\x41\t\0end"
  // last words
END

MainMenu MENU
  Menuitem
    POSITION=1
    CAPTION="&File"
  Menuitem file_open 1101
    POSITION=2
    CAPTION="&Open..."
    SHORTCUT="Ctrl+O"
  Menuitem
    POSITION=2
END

VS_VERSION_INFO VERSIONINFO
    FILEVERSION 1,3,2207,0
BEGIN
    BLOCK "StringFileInfo"
    BEGIN
        BLOCK "080904b0"
        BEGIN
            VALUE "CompanyName", "END\0"
        END
    END
END
// the end)";

class ResourceTest : public ::testing::Test {
protected:
    TempFolder folder;
    std::string rc = (folder / "test.rc");

    void SetUp() override { write(rc, example); }
    static void write(const std::string& file, std::string_view bytes) {
        ASSERT_TRUE(os::saveFile(file, bytes, os::Durability::Unsynced).ok());
    }
    static std::string read(const std::string& file) {
        std::string bytes;
        os::readFile(file, bytes);
        return bytes;
    }
    std::string info(const std::string& kind, const std::string& name) {
        const ResourceText result = ResourceInfo(rc, kind, name);
        EXPECT_EQ(result.error, "");
        return result.text;
    }
    ObjectArray objects(const std::string& name) {
        ObjectArray array;
        EXPECT_EQ(ResourceRead(rc, name, array), "");
        return array;
    }
    static std::string replaced(std::string text, const std::string& what, const std::string& with) {
        const std::size_t at = text.find(what);
        EXPECT_NE(at, std::string::npos) << what;
        return at == std::string::npos ? text : text.replace(at, what.size(), with);
    }
    static std::size_t count(const ObjectArray& array) {
        std::size_t n = 0;
        while (n < array.size() && !array[n].empty()) ++n;
        return n;
    }
};

}  // namespace tarn::platform
