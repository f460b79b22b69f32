// SPDX-License-Identifier: Apache-2.0
//
// A compile in which the n-th change to the disk fails, or during which the process dies there: a failure is
// a message, and what is left is either whole or counts as out of date.
#include "support/places.h"
#include "support/steerable.h"
#include "support/tempfolder.h"
#include "toolchain/build/compile.h"
#include "toolchain/build/link.h"
#include "toolchain/build/make.h"
#include "toolchain/build/tcc.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace tarn::toolchain {
namespace {

constexpr int MostCalls = 200;

std::vector<const char*> backEnds() {
    return tccIsThere() ? std::vector<const char*>{"tcc", "gcc-O0"} : std::vector<const char*>{"gcc-O0"};
}

// With each kind of back end: a program, and the library in the process.
class Failure : public ::testing::TestWithParam<const char*> {
protected:
    const std::string file_ = "/home/user/a.cls";
    const Variable path_{"PATH", "/usr/bin"}, backEnd_{"TARNWICK_CC", GetParam()};
    os::SteeredClock clock_;

    void prepare(os::SteeredFiles& files, os::SteeredProcesses& processes) {
        files.put("/usr/bin/cc", "program", 0755);
        files.put(file_, "Tarnwick Class A\npublic const C = 1\nEnd class\n");
        files.putOwner("/home/user", os::SteeredFiles::user, os::SteeredFiles::user);
        files.putOwner(file_, os::SteeredFiles::user, os::SteeredFiles::user);
        processes.play([this](const os::StartRequest& request) {
            clock_.advance(1'000'000'000);
            const auto& words = request.arguments;
            const auto object = std::find(words.begin(), words.end(), "-o");
            os::Played played;
            if (!os::saveFile(*(object + 1), "object", os::Durability::Unsynced).ok()) played.code = 1;
            static_cast<void>(os::saveFile(request.outputFile, "", os::Durability::Unsynced));
            return played;
        });
    }
    std::size_t compile() {
        CompilerOptions options;
        options.files = {file_};
        return compileClasses(options).front().messages.count();
    }
    bool outOfDate() { return isOutOfDate(findSources(file_, {}).classes[0]); }
};

TEST_P(Failure, AFullDiskAtAnyCallIsAMessageAndLeavesNothingThatLooksBuilt) {
    const os::Steered clock(clock_);
    for (int call = 1; call < MostCalls; ++call) {
        os::SteeredFiles files;
        os::SteeredProcesses processes;
        const os::Steered steeredFiles(files);
        const os::Steered steeredProcesses(processes);
        prepare(files, processes);
        ASSERT_EQ(compile(), 0U);
        clock_.advance(1'000'000'000);
        files.put(file_, "Tarnwick Class A\npublic const C = 2\nEnd class\n");
        clock_.advance(1'000'000'000);
        files.failAt(call, os::FileError::DiskFull);
        const std::size_t messages = compile();
        const bool reached = files.calls() >= call;
        files.stopFailing();
        EXPECT_EQ(outOfDate(), messages != 0) << "call " << call;
        if (messages == 0) {
            EXPECT_NE(files.contents("/home/user/a.sym").find(",2,\"\"\n"), std::string::npos) << call;
        }
        EXPECT_EQ(files.openHandles(), 0);
        if (!reached) return;
    }
    FAIL() << "a compile takes too many calls";
}

TEST_P(Failure, AnInterruptedCompileIsDoneAgain) {
    const os::Steered clock(clock_);
    for (int call = 1; call < MostCalls; ++call) {
        os::SteeredFiles files;
        os::SteeredProcesses processes;
        const os::Steered steeredFiles(files);
        const os::Steered steeredProcesses(processes);
        prepare(files, processes);
        files.dieAt(call, true);
        bool died = false;
        try {
            compile();
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        if (!died) return;
        files.revive();
        EXPECT_TRUE(outOfDate() || files.has("/home/user/a.sym")) << call;
        EXPECT_EQ(compile(), 0U) << "call " << call;
        EXPECT_FALSE(outOfDate()) << "call " << call;
    }
    FAIL() << "a compile takes too many calls";
}

// The program is made under another name; what stands there is no program unless the link says so.
TEST(LinkFailure, AFullDiskAtAnyCallIsToldOrLeavesAWholeProgram) {
    if (!tccIsThere()) GTEST_SKIP();
    std::string library;
    ASSERT_EQ(os::readFile(BINARY_DIR "/libtarnwick.so", library), os::FileError::None);
    const Made object =
        tccCompile("struct tarn_program; const struct tarn_program *const tarn_main_program = 0;");
    ASSERT_EQ(object.failure, "");
    const Variable path("PATH", "/usr/bin");
    for (int call = 1; call < MostCalls; ++call) {
        os::SteeredFiles files;
        const os::Steered steered(files);
        files.put("/lib/libtarnwick.so", library);
        files.put("/home/user/there", "");
        files.failAt(call, os::FileError::DiskFull);
        const std::string failure =
            linkProgram({{object.bytes, true}}, "/lib", "/home/user/a", "/home/user/a.new");
        const bool reached = files.calls() >= call;
        files.stopFailing();
        if (failure.empty()) {
            EXPECT_GT(files.contents("/home/user/a.new").size(), 1000U) << call;
            EXPECT_EQ(os::infoOf("/home/user/a.new").mode & 0111U, 0111U) << call;
        }
        EXPECT_EQ(failure.empty(), !reached) << call << failure;
        EXPECT_EQ(files.openHandles(), 0);
        if (!reached) return;
    }
    FAIL() << "a link takes too many calls";
}

INSTANTIATE_TEST_SUITE_P(BackEnds, Failure, ::testing::ValuesIn(backEnds()),
                         [](const auto& info) { return std::string(info.param, 3); });

}  // namespace
}  // namespace tarn::toolchain
