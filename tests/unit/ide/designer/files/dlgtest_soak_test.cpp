// SPDX-License-Identifier: GPL-3.0-or-later
//
// Random dialogs pass the test that dialogs of users must pass.
#include "ide/designer/files/dlgtest.h"

#include "library/designer/proputil.h"
#include "support/ide_fixture.h"
#include "support/rounds.h"
#include "support/steerable.h"
#include "unit/platform/generated_dialog.h"

namespace tarn {
namespace {

const std::string file = "/home/user/a.rc";

class DialogTestSoak : public IdeTest {
protected:
    // A program takes neither properties that a type does not have nor a name twice, and the test tells so.
    static void dropProperty(std::string& list, const std::string& name) {
        const std::size_t at = list.find("\n" + name + "=");
        if (at != std::string::npos) list.erase(at + 1, list.find('\n', at + 1) - at);
    }
    static void giveNames(ObjectArray& objects, const std::string& stem) {
        for (std::size_t i = 0; i < objects.size() && !objects[i].empty(); ++i) {
            dropProperty(objects[i], "ODD");
            dropProperty(objects[i], "END");
            if (i > 0) SETPROPVALUE("NAME", stem + std::to_string(i), objects[i]);
        }
    }
};

TEST_F(DialogTestSoak, RandomDialogsPassAndTheirFilesAreNotTouched) {
    loadWindows();
    const int count = rounds(60);
    for (int round = 0; round < count && !HasFatalFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(round));
        platform::DialogMaker make(static_cast<unsigned>(round) + 20'000'000);
        const bool withMenu = make.oneIn(3);
        ObjectArray dialog = make.dialog("Made", withMenu ? "MadeMenu" : "");
        ObjectArray menu = withMenu ? make.menu("MadeMenu") : ObjectArray{};
        giveNames(dialog, "control");
        giveNames(menu, "item");
        os::SteeredFiles disk;
        disk.putFolder("/home/user");
        os::FileSystem* const before = os::useFiles(&disk);
        const std::string written = ResourceWrite(dialog, menu, file), text = disk.contents(file);
        const std::string error = TESTFILEPROPERTIES(file);
        const std::vector<std::string> files = disk.allFiles();
        os::useFiles(before);
        ASSERT_EQ(written, "");
        ASSERT_EQ(error, "");
        ASSERT_EQ(disk.contents(file), text);
        ASSERT_EQ(files, std::vector<std::string>{file});
    }
    EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
}

}  // namespace
}  // namespace tarn
