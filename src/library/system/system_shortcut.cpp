// SPDX-License-Identifier: Apache-2.0
//
// Shortcuts as the desktops of this system know them: a text file of lines "Key=value" whose name ends in
// ".desktop". In values `\s \t \n \r \\` stand for what cannot be written as it is. In the command, each
// argument stands in double quotes, in which a backslash goes before `"`, `$`, a backquote and a backslash, and
// "%" is doubled.
#include "library/system/files.h"

#include "kernel/run/errors.h"
#include "library/system/constants.h"
#include "library/system/programs_internal.h"
#include "library/system/strings.h"
#include "os/files.h"
#include "os/paths.h"

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view ShortcutEnd = ".desktop";

std::string shortcutName(const std::string& shortcut) {
    if (STREQUAL(FILEGETEXT(shortcut), EXT_LNK)) return FILECHANGEEXT(shortcut, ShortcutEnd);
    return STREQUAL(FILEGETEXT(shortcut), ShortcutEnd) ? shortcut : shortcut + std::string(ShortcutEnd);
}

std::string written(std::string_view value) {
    constexpr std::string_view plain = "\t\n\r\\", letters = "tnr\\";
    std::string out;
    for (const char c : value) {
        const std::size_t place = plain.find(c);
        if (place == std::string_view::npos)
            out += c;
        else
            out.append("\\") += letters[place];
    }
    if (out.starts_with(' ')) out.replace(0, 1, "\\s");
    return out;
}

std::string argument(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (std::string_view("\"$`\\").find(c) != std::string_view::npos) out += '\\';
        out.append(c == '%' ? 2 : 1, c);
    }
    return out + '"';
}

std::string line(std::string_view key, std::string_view value) {
    return value.empty() ? std::string() : std::string(key) + "=" + written(value) + "\n";
}

std::string commandLine(const std::string& program, const std::string& arguments) {
    std::string command = argument(os::native(program));
    for (const std::string& one : SPLITARGUMENTS(arguments)) command += " " + argument(one);
    return line("Exec", command);
}

}  // namespace

bool FILECREATESHORTCUT(const std::string& shortcut, const std::string& target) {
    FRAME(FILECREATESHORTCUT);
    STAMP();
    return FILECREATESHORTCUT(shortcut, target, "", "", "");
}

bool FILECREATESHORTCUT(const std::string& shortcut, const std::string& target,
                        const std::string& arguments) {
    FRAME(FILECREATESHORTCUT);
    STAMP();
    return FILECREATESHORTCUT(shortcut, target, arguments, "", "");
}

bool FILECREATESHORTCUT(const std::string& shortcut, const std::string& target, const std::string& arguments,
                        const std::string& folder, const std::string& icon) {
    FRAME(FILECREATESHORTCUT);
    if (!FILECHK(shortcut) || !DIRCHK(target)) return Refuse(ERR_FILE_NAME);
    const os::FileInfo info = os::infoOf(os::native(target));
    if (!info.exists) return Refuse(ERR_FILE_READ);
    const std::string file = shortcutName(shortcut);
    constexpr std::uint32_t anyExecute = 0111, programMode = 0755;
    const bool program = !info.folder && !info.special && (info.mode & anyExecute) != 0;
    std::string text = "[Desktop Entry]\n" + line("Type", program ? "Application" : "Link") +
                       line("Name", FILEBASENAME(file));
    text += program ? commandLine(target, arguments) + line("Path", os::native(folder)) + "Terminal=false\n"
                    : line("URL", detail::FileUrl(target));
    text += line("Icon", icon);
    STAMP();
    if (!SAVEFILE(file, text)) return false;
    // Desktops start only what may be executed.
    if (program) (void)os::files().setMode(os::native(file), programMode);
    return true;
}

}  // namespace tarn
