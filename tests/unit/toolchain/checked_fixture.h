// SPDX-License-Identifier: Apache-2.0
//
// A class that the compiler reads and checks, without making a program of it: its messages.
#pragma once

#include "support/toolchain_folder.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/classes.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

// A class whose main function has the statements, from line 6 on; two integers, two strings and a boolean are for them.
inline std::string inMain(const std::string& statements) {
    return "Tarnwick Class Main\nfunction main()\nvar i, j : integer\n s, t : string\n b : boolean\n" +
           statements + "\nend function\nEnd class\n";
}

class CheckedClass : public ToolchainTest {
protected:
    std::string report;  // of the last check, as the user gets it

    // `then` is done with a class in which nothing was found.
    template <class Then>
    std::vector<Message> messagesOf(const std::string& source, Then then) {
        const std::string file = write("Main.cls", source);
        Messages messages;
        ClassLoader loader({});
        ClassTree* const tree = loader.load(file, messages);
        if (!tree->name.empty()) checkClass(*tree, messages);
        if (messages.empty()) then(*tree);
        report = messages.report(file);
        return messages.list();
    }
    std::vector<Message> messagesOf(const std::string& source) {
        return messagesOf(source, [](const ClassTree&) {});
    }
    // "line number", separated by commas.
    static std::string placesOf(const std::vector<Message>& messages) {
        std::string found;
        for (const Message& message : messages)
            found += (found.empty() ? "" : ", ") + std::to_string(message.line) + " " +
                     std::to_string(message.number);
        return found;
    }
};

}  // namespace tarn::toolchain
