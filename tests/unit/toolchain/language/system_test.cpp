// SPDX-License-Identifier: Apache-2.0
//
// The library as the language sees it: its class has no fault, and behind each head stands a C function of the
// run-time with the same parameters.
#include "kernel/windows/operations.h"
#include "support/places.h"
#include "support/toolchain_folder.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/library.h"
#include "toolchain/language/parser.h"
#include "toolchain/output/functiongen.h"
#include "toolchain/output/interface.h"

#include <cstdlib>
#include <dlfcn.h>
#include <set>
#include <string>

namespace tarn::toolchain {
namespace {

std::string textOf(const Messages& messages) {
    return messages.report("system.cls");
}

bool isPointer(const std::string& external) {
    return external.starts_with("tarn_win_") || external.starts_with("tarn_lib_");
}

class SystemClass : public ToolchainTest {};

TEST_F(SystemClass, IsClassText) {
    Messages messages;
    parseClass(systemText(), "system.cls", messages);
    EXPECT_TRUE(messages.empty()) << textOf(messages);
}

TEST_F(SystemClass, HasNoFault) {
    Messages messages;
    checkClass(systemClass(), messages);
    EXPECT_TRUE(messages.empty()) << textOf(messages);
}

TEST_F(SystemClass, NamesFunctionsOfTheRunTimeOnly) {
    std::size_t functions = 0;
    for (const auto& item : systemClass().declarations) {
        if (item->kind != DeclarationKind::Function) continue;
        ++functions;
        EXPECT_NE(dlsym(RTLD_DEFAULT, item->function->external.c_str()), nullptr) << item->function->external;
    }
    EXPECT_GT(functions, 300U);
}

// Windowing operations are told by their list.
TEST_F(SystemClass, HasNoFunctionThatTheDocumentsDoNotTell) {
    std::set<std::string> operations;
#define TARN_NAME(result, name, symbol, parameters, arguments) operations.insert("tarn_win_" #symbol);
    TARN_WINDOW_OPERATIONS(TARN_NAME)
#undef TARN_NAME
    std::string told;
    for (const char* name : {"/docs/language.md", "/docs/library.md"}) {
        std::string text;
        ASSERT_EQ(os::readFile(SOURCE_DIR + std::string(name), text), os::FileError::None);
        told += text;
    }
    for (const auto& item : systemClass().declarations) {
        if (item->kind != DeclarationKind::Function || operations.count(item->function->external) != 0)
            continue;
        bool found = false;
        for (const char* mark : {"`", " ", "\n"})
            for (const char* end : {"(", "`", ",", " "})
                found = found || told.find(mark + item->name + end) != std::string::npos;
        EXPECT_TRUE(found) << item->name;
    }
}

// The C compiler compares the heads, what every class begins with, and the interface that the run-time is built with.
TEST_F(SystemClass, HasTheHeadsOfTheInterface) {
    std::string text = "#include \"" SOURCE_DIR "/src/kernel/api/api.h\"\n" + std::string(CoreText);
    Messages silent;
    for (const auto& item : systemClass().declarations) {
        if (item->kind != DeclarationKind::Function || isPointer(item->function->external)) continue;
        resolveHead(systemClass(), *item, silent);
        text += externalHead(*item) + ";\n";
    }
    write("heads.c", text);
    const std::string command =
        "cc -std=gnu11 -fsyntax-only -Wno-unused-function " + dir + "heads.c 2> " + dir + "said";
    EXPECT_EQ(std::system(command.c_str()), 0) << read("said");
}

TEST_F(SystemClass, GivesEveryNameAMeaning) {
    for (const char* name :
         {"printer", "screen", "clipboard", "err_file_read", "command_event", "white", "control"})
        EXPECT_NE(findDeclaration(systemClass(), name), nullptr) << name;
}

}  // namespace
}  // namespace tarn::toolchain
