// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/runto.h"

#include "kernel/debug/debugsettings.h"
#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

class RunToPlaces : public ::testing::Test {
protected:
    void write(const std::string& value) {
        ASSERT_TRUE(
            os::saveFile(file_, "[debug]\nbreakpoints=a 1\nRunTo=" + value + "\n", os::Durability::Unsynced)
                .ok());
    }
    TempFolder folder_;
    std::string file_ = folder_ / "ide.ini";
};

TEST_F(RunToPlaces, AreForOneProgram) {
    write("Sums 12");
    const RunToPlace place = TakeRunTo(file_);
    EXPECT_EQ(place.className, "Sums");
    EXPECT_EQ(place.line, 12);
    EXPECT_EQ(TakeRunTo(file_).className, "");
    EXPECT_EQ(DebugSetting(file_, "debug", "breakpoints"), "a 1");
}

TEST_F(RunToPlaces, OfAnotherFormAreNone) {
    for (const char* value :
         {"", "Sums", "12", "Sums twelve", "Sums 12x", "Sums 0", "Sums -1", "Sums 99999999999", "Sums 1 2"}) {
        write(value);
        EXPECT_EQ(TakeRunTo(file_).className, "") << value;
        EXPECT_EQ(DebugSetting(file_, "debug", "RunTo"), "") << value;
    }
}

TEST_F(RunToPlaces, NeedAFile) {
    EXPECT_EQ(TakeRunTo("").className, "");
    EXPECT_EQ(TakeRunTo(file_).className, "");
    EXPECT_LT(os::sizeOf(file_), 0) << "and none is made";
}

}  // namespace
}  // namespace tarn
