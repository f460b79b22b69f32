// SPDX-License-Identifier: Apache-2.0
#include "library/ship/debtext.h"

#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

bool isOneOf(char c, std::string_view others) {
    return ascii::isDigit(c) || others.find(c) != std::string_view::npos;
}
bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || isOneOf(c, "+-.");
}
bool isVersionCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isOneOf(c, ".+~");
}

bool consistsOf(std::string_view text, bool (*good)(char)) {
    return std::all_of(text.begin(), text.end(), good);
}

bool isName(const std::string& name) {
    return name.size() >= 2 && consistsOf(name, isNameCharacter) && !isOneOf(name[0], "+-.");
}
bool isVersion(const std::string& version) {
    return !version.empty() && ascii::isDigit(version[0]) && consistsOf(version, isVersionCharacter);
}
// A name, a blank, and an address in angle brackets.
bool isMaintainer(const std::string& text) {
    const std::size_t open = text.find(" <"), at = text.find('@');
    return open != std::string::npos && open > 0 && at != std::string::npos && at > open + 2 &&
           text.ends_with('>') && at + 2 < text.size() && text.find('>') == text.size() - 1;
}
bool isLine(const std::string& text) {
    return !STRTRIM(text).empty() &&
           std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

// Lines behind the first of a field: each a blank ahead, and a lone dot for an empty one.
std::string folded(const std::string& text) {
    std::string lines;
    const std::string all = STRREPLACE(STRTRIM(text), "\r", "") + "\n";
    for (int i = 1; i <= STRLINES(all); ++i) {
        const std::string line = STRTRIM(STRLINE(all, i));
        lines += (line.empty() ? " ." : " " + line) + "\n";
    }
    return lines;
}

std::string longText(const DebFields& fields) {
    return STRTRIM(fields.description).empty()
               ? fields.name + " is a program made with Tarnwick. Its files stand in\n/usr/lib/" +
                     fields.name + "; the command " + fields.name + " starts it."
               : fields.description;
}

std::string folderOf(const DebFields& fields) {
    return "/usr/lib/" + fields.name + "/";
}

// A text in double quotes of a shell.
std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') result += '\\';
        result += c;
    }
    return result + "\"";
}

// A text in a page of the manual: no character of it is taken for an order.
std::string inManual(const std::string& text) {
    std::string result;
    const std::string all = text + "\n";
    for (int i = 1; i <= STRLINES(all); ++i) {
        std::string line = STRREPLACE(STRREPLACE(STRLINE(all, i), "\\", "\\e"), "-", "\\-");
        if (line.starts_with('.') || line.starts_with('\'')) line = "\\&" + line;
        result += (STRTRIM(line).empty() ? ".PP" : line) + "\n";
    }
    return result;
}

}  // namespace

std::string DEBNAME(std::string_view programName) {
    FRAME(DEBNAME);
    std::string name;
    for (const char c : STRLOWER(programName)) name += isNameCharacter(c) ? c : '-';
    name.erase(0, std::min(name.find_first_not_of("+-."), name.size()));
    while (name.ends_with('-') || name.ends_with('.')) name.pop_back();
    if (name.empty()) return "program";
    return name.size() < 2 ? name + "-program" : name;
}

std::string DEBVERSION(std::string_view numbers) {
    FRAME(DEBVERSION);
    constexpr int Most = 4, Least = 2;
    int count = Most;
    const std::string text(numbers);
    const auto number = [&text](int n) {
        const std::string word = STRWORD(text, n);
        return word.empty() || !consistsOf(word, [](char c) { return ascii::isDigit(c); }) ? std::string("0")
                                                                                           : word;
    };
    while (count > Least && number(count) == "0") --count;
    std::string version = number(1);
    for (int i = 2; i <= count; ++i) version += "." + number(i);
    return version;
}

std::string DEBPROBLEM(const DebFields& fields) {
    FRAME(DEBPROBLEM);
    if (!isName(fields.name))
        return "The name of the package needs at least two characters: lower case letters, digits, '+', '-' "
               "and "
               "'.', a letter or a digit first.";
    if (!isVersion(fields.version))
        return "The version begins with a digit and has letters, digits, '.', '+' and '~' alone.";
    if (!isMaintainer(fields.maintainer))
        return "The maintainer is a name and an address, such as 'Ann Bell <ann@example.org>'.";
    return isLine(fields.summary) ? std::string() : "The summary is one line that says what the program is.";
}

std::string DEBCONTROL(const DebFields& fields, const DebProgram& program) {
    FRAME(DEBCONTROL);
    return "Package: " + fields.name + "\nVersion: " + fields.version +
           "\nArchitecture: " + program.architecture + "\nMaintainer: " + fields.maintainer +
           "\nInstalled-Size: " + std::to_string(program.kilobytes) +
           (program.depends.empty() ? "" : "\nDepends: " + program.depends) +
           "\nSection: misc\nPriority: optional\nDescription: " + STRTRIM(fields.summary) + "\n" +
           folded(longText(fields));
}

std::string DEBENTRY(const DebFields& fields, const DebProgram& program) {
    FRAME(DEBENTRY);
    const auto value = [](const std::string& text) { return STRREPLACE(text, "\\", "\\\\"); };
    return "[Desktop Entry]\nType=Application\nVersion=1.0\nName=" + value(FILEBASENAME(program.exe)) +
           "\nComment=" + value(STRTRIM(fields.summary)) + "\nExec=/usr/bin/" + fields.name +
           (program.icon.empty() ? "" : "\nIcon=" + value(program.icon)) +
           "\nTerminal=" + (program.windows ? "false" : "true") + "\nCategories=Utility;\n";
}

std::string DEBCOMMAND(const DebFields& fields, const DebProgram& program) {
    FRAME(DEBCOMMAND);
    return "#!/bin/sh\nexec " + quoted(folderOf(fields) + program.exe) + " \"$@\"\n";
}

std::string DEBCOPYRIGHT(const DebFields& fields, const DebProgram& program) {
    FRAME(DEBCOPYRIGHT);
    const bool told = STRLOWER(program.copyright).find("copyright") != std::string::npos;
    const std::string own = program.copyright.empty()
                                ? "(C) " + STRWORD(program.date, 4) + " " + fields.maintainer
                                : program.copyright;
    std::string text =
        fields.name + " " + fields.version + "\n\n" + (told ? "" : "Copyright: ") + own +
        "\n\nThe run-time library of Tarnwick, libtarnwick.so and libtarnwick-qt.so in " + folderOf(fields) +
        ",\nis under the Apache License, version 2.0: /usr/share/common-licenses/Apache-2.0.\n";
    if (program.editWindow)
        text += "\nThe library of edit windows, libtarnwick-edit.so there, is under the GNU General\nPublic "
                "License, "
                "version 3 or any later version: /usr/share/common-licenses/GPL-3.\n";
    return text;
}

std::string DEBCHANGES(const DebFields& fields, const DebProgram& program) {
    FRAME(DEBCHANGES);
    return fields.name + " (" + fields.version + ") unstable; urgency=medium\n\n  * Version " +
           fields.version + ".\n\n -- " + fields.maintainer + "  " + program.date + "\n";
}

std::string DEBOVERRIDES(const DebFields& fields) {
    FRAME(DEBOVERRIDES);
    std::string text =
        "# The program is linked to its run-time library alone, which is linked to the C library, and "
        "stands where the compiler puts it.\n";
    for (const char* tag : {"program-not-linked-against-libc", "hardening-no-pie", "hardening-no-relro"})
        text += fields.name + " binary: " + tag + " *\n";
    return text;
}

std::string WITHOUTBUILDPATH(std::string bytes, const std::string& runpath) {
    FRAME(WITHOUTBUILDPATH);
    constexpr std::string_view Own = "$ORIGIN";
    const std::string whole = std::string(1, '\0') + runpath + std::string(1, '\0');
    const std::size_t at = bytes.find(whole);
    const bool fits = runpath.starts_with(std::string(Own) + ":") && at != std::string::npos &&
                      bytes.find(whole, at + 1) == std::string::npos;
    // The text ends where the next folder began, so that nothing moves.
    if (fits)
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at + 1 + Own.size()),
                    runpath.size() - Own.size(), '\0');
    return bytes;
}

std::string DEBMANUAL(const DebFields& fields, const DebProgram& program) {
    FRAME(DEBMANUAL);
    const std::string name = STRREPLACE(fields.name, "-", "\\-");
    return ".TH " + STRUPPER(name) + " 1 \"\" \"" + fields.version + "\"\n.SH NAME\n" + name + " \\- " +
           inManual(STRTRIM(fields.summary)) + ".SH SYNOPSIS\n.B " + name +
           "\n.RI [ argument \" ...\" ]\n.SH DESCRIPTION\n" + inManual(STRTRIM(longText(fields))) +
           ".SH FILES\n.I " + inManual(folderOf(fields) + program.exe);
}

}  // namespace tarn
