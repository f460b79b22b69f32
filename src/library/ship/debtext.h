// SPDX-License-Identifier: Apache-2.0
//
// The texts of a Debian package of a program. Its files stand in /usr/lib/NAME, a command of its name in /usr/bin, an entry
// for the menu of the desktop, its icon, a page of the manual, the copyright, the changes and the sums where the system wants
// them. Nothing here touches the disk.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// What the user says of the package.
struct DebFields {
    std::string name, version, maintainer;  // the last one as "Ann Bell <ann@example.org>"
    std::string summary;                    // one line
    std::string description;                // any lines; may be empty
    bool operator==(const DebFields&) const = default;
};

// What else its texts are made of.
struct DebProgram {
    std::string exe;           // name of the program's file
    std::string copyright;     // one line; may be empty
    std::string icon;          // as a desktop entry has it; empty: none
    std::string architecture;  // "amd64"
    std::string depends;       // packages, ", " between them
    std::string date;          // "Sun, 22 Nov 2026 19:00:00 +0000"
    bool windows = false;      // it has windows; one without them starts in a terminal
    bool editWindow = false;   // it carries the library of edit windows, which has another licence
    long kilobytes = 0;        // of all its files
};

// A name made of that of a program: lower case letters, digits, "+", "-" and ".", at least two.
std::string DEBNAME(std::string_view programName);
// The four numbers of a version block, without zeros at the end but for the second: "1 2 0 0" is "1.2".
std::string DEBVERSION(std::string_view numbers);
// What is wrong, empty if nothing is.
std::string DEBPROBLEM(const DebFields& fields);

std::string DEBCONTROL(const DebFields& fields, const DebProgram& program);
std::string DEBENTRY(const DebFields& fields, const DebProgram& program);
std::string DEBCOMMAND(const DebFields& fields, const DebProgram& program);  // the text of /usr/bin/NAME
std::string DEBCOPYRIGHT(const DebFields& fields, const DebProgram& program);
std::string DEBCHANGES(const DebFields& fields, const DebProgram& program);
// What of it lintian is not to tell: what all programs of the compiler are like.
std::string DEBOVERRIDES(const DebFields& fields);
// A program's bytes without the folder of the build machine in `runpath`, its search path for libraries as objdump tells it;
// as they are where that does not stand there once.
std::string WITHOUTBUILDPATH(std::string bytes, const std::string& runpath);
std::string DEBMANUAL(const DebFields& fields, const DebProgram& program);

}  // namespace tarn
