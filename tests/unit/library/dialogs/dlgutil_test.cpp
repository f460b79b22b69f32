// SPDX-License-Identifier: Apache-2.0
//
// Numbers of controls, from a resource file and from a program's own.
#include "library/dialogs/dlgutil.h"

#include "kernel/run/runtime.h"
#include "kernel/windows/resources.h"
#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

constexpr const char* resource = "Main DIALOG\n"
                                 "  Pushbutton File_Open 1203\n"
                                 "  Label label1 1204\n"
                                 "END\n"
                                 "Other DIALOG\n"
                                 "  Label label1 7\n"
                                 "END\n";

TEST(Dlgutil, TheNumberOfAControl) {
    const TempFolder folder;
    const std::string rc = folder / "prog.rc";
    ASSERT_TRUE(os::saveFile(rc, resource).ok());
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "Main", "file_open"), 1203);
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "OTHER", "Label1"), 7);
    for (const char* const none : {"", "label", "label11"})
        EXPECT_EQ(GETVISUALOBJECTINFO(rc, "Main", none), 0) << none;
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "None", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(rc, "", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "none.rc", "Main", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO("", "Main", "label1"), 0);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST(Dlgutil, TheNumberOfAControlOfAProgram) {
    const TempFolder folder;
    ASSERT_TRUE(os::saveFile(folder / "x.rc", resource).ok());
    ASSERT_EQ(CompileResources({folder / "x.rc"}, folder / "prog.rcx"), "");
    for (const char* const program : {"prog", "prog.exe", "prog.rcx"})
        EXPECT_EQ(GETVISUALOBJECTINFO(folder / program, "FILE_OPEN"), 1203) << program;
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "prog", "none"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "prog", ""), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO(folder / "other", "label1"), 0);
    EXPECT_EQ(GETVISUALOBJECTINFO("", "label1"), 0);
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
}  // namespace tarn
