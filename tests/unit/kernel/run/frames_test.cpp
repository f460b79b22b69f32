// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/runtime_fixture.h"

#include "kernel/api/api.h"
#include "kernel/run/state.h"
#include "os/files.h"
#include "support/tempfolder.h"

#include <exception>
#include <thread>

using namespace tarn;

namespace {

void start(std::int32_t mode, const std::string& source = {}) {
    DebugStart(mode, ProductWord, ProductVersion, ProductBuild, source);
}

class Frames : public Runtime {};

TEST_F(Frames, WithoutAStackThereAreNoFrames) {
    FunctionEnter("c", "F", 10);
    EXPECT_EQ(FrameCount(), 0);
    EXPECT_EQ(tarn_current_line, 10);
    EXPECT_EQ(CurrentFunctionName(), "");
    EXPECT_EQ(CurrentClassName(), "");
    FunctionLeave();
    EXPECT_EQ(tarn_current_line, 10);
}

TEST_F(Frames, OtherModesAreIgnored) {
    start(1);
    for (const std::int32_t mode : {-1, 3, 99}) start(mode);
    EXPECT_EQ(DebugMode(), 1);
}

TEST_F(Frames, EnterAndLeaveKeepTheLines) {
    start(1);
    FunctionEnter("first", "DO_LOAD", 10);
    EXPECT_EQ(tarn_current_line, 10);
    Stamp(12, ReportErrors, nullptr);
    FunctionEnter("second", "GET", 100);
    EXPECT_EQ(tarn_current_line, 100);
    EXPECT_EQ(CurrentClassName(), "second");
    EXPECT_EQ(CurrentFunctionName(), "get");
    EXPECT_EQ(frameStack->frames[0].savedLine, 12);
    EXPECT_EQ(frameStack->frames[1].savedLine, 0);
    EXPECT_EQ(frameStack->frames[1].firstLine, 100);
    EXPECT_EQ(frameStack->frames[1].firstVariable, 0);
    FunctionLeave();
    EXPECT_EQ(tarn_current_line, 12);
    EXPECT_EQ(CurrentFunctionName(), "do_load");
    EXPECT_EQ(frameStack->frames[0].savedLine, 0);
    EXPECT_EQ(frameStack->frames[1].firstLine, 0);
    EXPECT_STREQ(frameStack->frames[1].className(), "");
    FunctionLeave();
    EXPECT_EQ(tarn_current_line, 0);
    EXPECT_EQ(FrameCount(), 0);
}

TEST_F(Frames, NamesAreCutAtForty) {
    start(1);
    const std::string forty(40, 'N'), longer = forty + "X";
    FunctionEnter(longer.c_str(), longer.c_str(), 1);
    EXPECT_EQ(CurrentClassName(), forty);
    EXPECT_EQ(CurrentFunctionName(), std::string(40, 'n'));
    FunctionLeave();
    FunctionEnter(nullptr, nullptr, 1);
    EXPECT_EQ(CurrentClassName(), "");
}

TEST_F(Frames, OnlyAToZAreLowered) {
    start(1);
    FunctionEnter("c", "AZ[\xC4_09", 1);
    EXPECT_EQ(CurrentFunctionName(), "az[\xC4_09");
}

TEST_F(Frames, RecursionSixHundredDeepKeepsFrameFiveHundred) {
    start(1);
    for (std::int32_t depth = 1; depth <= 600; ++depth) {
        FunctionEnter("deep", ("F" + std::to_string(depth)).c_str(), depth * 10);
        Stamp(depth * 10 + 1, ReportErrors, nullptr);
    }
    EXPECT_EQ(FrameCount(), 600);
    EXPECT_EQ(CurrentFunctionName(), "");
    EXPECT_EQ(CurrentClassName(), "");
    for (std::int32_t depth = 600; depth > 501; --depth) {
        FunctionLeave();
        EXPECT_EQ(tarn_current_line, 0);
    }
    FunctionLeave();  // to depth 500
    EXPECT_EQ(FrameCount(), 500);
    EXPECT_EQ(CurrentFunctionName(), "f500");
    EXPECT_EQ(tarn_current_line, 5001);
    for (std::int32_t depth = 500; depth > 1; --depth) {
        FunctionLeave();
        EXPECT_EQ(tarn_current_line, (depth - 1) * 10 + 1);
        EXPECT_EQ(CurrentFunctionName(), "f" + std::to_string(depth - 1));
    }
    FunctionLeave();
    EXPECT_EQ(FrameCount(), 0);
}

TEST_F(Frames, MoreLeavesThanEntersDoNoHarm) {
    start(1);
    for (int i = 0; i < 3; ++i) FunctionLeave();
    EXPECT_EQ(FrameCount(), -3);
    EXPECT_EQ(CurrentFunctionName(), "");
    for (int i = 0; i < 4; ++i) FunctionEnter("c", "F", 1);
    EXPECT_EQ(CurrentFunctionName(), "f");
}

TEST_F(Frames, ModeTwoNeedsASourceWithContent) {
    const TempFolder folder;
    const std::string missing = folder.path() + "/missing.cls", empty = folder.path() + "/empty.cls",
                      source = folder.path() + "/main.cls";
    ASSERT_TRUE(os::saveFile(empty, "", os::Durability::Unsynced).ok());
    ASSERT_TRUE(os::saveFile(source, "x", os::Durability::Unsynced).ok());
    for (const std::string& path : {std::string(), missing, empty, folder.path()}) {
        start(2, path);
        EXPECT_EQ(DebugMode(), 1) << path;
        EXPECT_NE(frameStack, nullptr);
        EXPECT_EQ(variableTable, nullptr);
        EXPECT_EQ(classTable, nullptr);
        DebugEnd();
    }
    start(2, source);
    EXPECT_EQ(DebugMode(), 2);
    EXPECT_NE(variableTable, nullptr);
    EXPECT_EQ(tarn_debugger_window, nullptr);
    DebugEnd();
    EXPECT_EQ(frameStack, nullptr);
    EXPECT_EQ(variableTable, nullptr);
    EXPECT_EQ(DebugMode(), 0);
}

class DebugTables : public Frames {
protected:
    void SetUp() override {
        Frames::SetUp();
        const std::string source = folder_.path() + "/main.cls";
        ASSERT_TRUE(os::saveFile(source, "x", os::Durability::Unsynced).ok());
        start(2, source);
        ASSERT_NE(variableTable, nullptr);
    }
    TempFolder folder_;
};

TEST_F(DebugTables, VariablesBelongToTheirFrame) {
    int value = 0;
    FunctionEnter("c", "OUTER", 1);
    EXPECT_EQ(TopFrame()->firstVariable, 1);
    RegisterVariable("a", 'I', 3, &value);
    RegisterVariable("b", 'V', 6, &value);
    FunctionEnter("c", "INNER", 5);
    EXPECT_EQ(TopFrame()->firstVariable, 3);
    RegisterVariable("c", 'O', 12, &value);
    EXPECT_EQ(variableTable->count, 3);
    FunctionLeave();
    EXPECT_EQ(variableTable->count, 2);
    EXPECT_EQ(variableTable->entries[2].address, nullptr);
    EXPECT_STREQ(variableTable->entries[1].name, "b");
    EXPECT_EQ(variableTable->entries[1].kind, 6);
    FunctionLeave();
    EXPECT_EQ(variableTable->count, 0);
    EXPECT_STREQ(variableTable->entries[0].name, "");
}

TEST_F(DebugTables, OnlyProperVariablesAreEntered) {
    int value = 0;
    for (const char role : {'C', 'I', 'N', 'O', 'V'}) RegisterVariable("v", role, 1, &value);
    EXPECT_EQ(variableTable->count, 5);
    for (const char role : {'c', 'A', ' ', '\0', 'Z'}) RegisterVariable("v", role, 1, &value);
    for (const std::int32_t kind : {0, 13, -1}) RegisterVariable("v", 'C', kind, &value);
    RegisterVariable("v", 'C', 1, nullptr);
    EXPECT_EQ(variableTable->count, 5);
    RegisterVariable(std::string(41, 'n'), 'C', 12, &value);
    EXPECT_EQ(std::string(variableTable->entries[5].name), std::string(40, 'n'));
}

TEST_F(DebugTables, AFullVariableTableIgnoresTheRest) {
    int value = 0;
    for (int i = 0; i < 1005; ++i) RegisterVariable("v", 'V', 3, &value);
    EXPECT_EQ(variableTable->count, 1000);
    FunctionEnter("c", "F", 1);
    EXPECT_EQ(TopFrame()->firstVariable, 1001);
    FunctionLeave();
    EXPECT_EQ(variableTable->count, 1000);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(DebugTables, FramesBeyondTheStackLeaveVariablesAlone) {
    int value = 0;
    for (int i = 0; i < 500; ++i) FunctionEnter("c", "F", 1);
    RegisterVariable("v", 'V', 3, &value);
    FunctionEnter("c", "F", 1);
    FunctionLeave();
    EXPECT_EQ(variableTable->count, 1);
    FunctionLeave();
    EXPECT_EQ(variableTable->count, 0);
}

TEST_F(DebugTables, ClassesAreEnteredUpToTwoHundred) {
    RegisterClass("", "c");
    RegisterClass("p", "");
    EXPECT_EQ(classTable->count, 0);
    for (int i = 1; i <= 201; ++i) RegisterClass("/src/" + std::to_string(i), "class" + std::to_string(i));
    EXPECT_EQ(classTable->count, 200);
    EXPECT_STREQ(classTable->entries[199].className, "class200");
    EXPECT_STREQ(classTable->entries[199].sourcePath, "/src/200");
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(DebugTables, LongClassNamesAndPathsAreCut) {
    RegisterClass(std::string(300, 'p'), std::string(50, 'c'));
    EXPECT_EQ(std::string(classTable->entries[0].className).size(), 40U);
    EXPECT_EQ(std::string(classTable->entries[0].sourcePath).size(), 255U);
}

TEST_F(Frames, RegisteringWithoutTablesDoesNothing) {
    int value = 0;
    start(1);
    RegisterClass("p", "c");
    RegisterVariable("v", 'V', 3, &value);
    EXPECT_EQ(ErrorCell(), 0);
}

// Looks, while exceptions travel, at the number by which frames know of them.
class LooksAtItsEnd {
public:
    static void look() { EXPECT_EQ(*exceptionsUnderWay, static_cast<unsigned>(std::uncaught_exceptions())); }
    explicit LooksAtItsEnd(int deeper) : deeper_(deeper) {}
    LooksAtItsEnd(const LooksAtItsEnd&) = delete;
    LooksAtItsEnd& operator=(const LooksAtItsEnd&) = delete;
    ~LooksAtItsEnd() {
        look();
        if (deeper_ == 0) return;
        try {
            const LooksAtItsEnd next(deeper_ - 1);
            throw deeper_;
        } catch (int) {
            look();
        }
        look();
    }

private:
    int deeper_;  // how many exceptions are thrown and caught on the way
};

void throwWithALook() {
    try {
        const LooksAtItsEnd outer(3);
        throw 0;
    } catch (int) {
        LooksAtItsEnd::look();
        EXPECT_EQ(*exceptionsUnderWay, 0U) << "one that is caught is not under way";
    }
}

TEST_F(Frames, ExceptionsUnderWayAreCountedAsTheLanguageCountsThem) {
    LooksAtItsEnd::look();
    throwWithALook();
    LooksAtItsEnd::look();
}

TEST_F(Frames, TheExceptionsAreThoseOfTheThreadThatStartsTheFrames) {
    std::thread([] {
        start(1);
        throwWithALook();
    }).join();
    start(1);
    throwWithALook();
}

}  // namespace
