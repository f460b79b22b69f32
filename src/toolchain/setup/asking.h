// SPDX-License-Identifier: Apache-2.0
//
// How the installer speaks with its user: in windows by the program `tarnwick-ask`, which it carries with the libraries
// that this needs; where there is no screen, or they cannot run here, on the terminal; or not at all.
#pragma once

#include "toolchain/setup/install.h"

#include <string>
#include <vector>

namespace tarn::setup {

class User {
public:
    explicit User(bool quiet) : quiet_(quiet) {}
    ~User();
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    // Unpacks what asks in windows into a folder that goes with this object. Without a screen nothing is done.
    void useWindowsOf(const Installer& installer);
    // What asks stands in that folder.
    void useWindowsIn(const std::string& folder);

    [[nodiscard]] bool canAsk() const;
    // The number of the choice, from 0 on; the last one if the user leaves. A choice is a word with a letter for the
    // terminal behind "&".
    std::size_t ask(const std::string& title, const std::string& text,
                    const std::vector<std::string>& choices);
    std::string askFolder(const std::string& title, const std::string& proposed);  // empty: none
    void tell(const std::string& title, const std::string& text);
    void progress(std::int64_t done, std::int64_t total);  // on a terminal

private:
    bool run(const std::vector<std::string>& arguments, std::string& answer);

    bool quiet_;
    std::string folder_;   // of what asks in windows; empty: there is none
    std::string scratch_;  // the same, if it goes with this object
    std::vector<std::string> unpacked_;
    int percent_ = -1;
};

}  // namespace tarn::setup
