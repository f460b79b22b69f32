// SPDX-License-Identifier: Apache-2.0
//
// iscc: makes an installer of a script.
//
//     iscc.exe SCRIPT [/OFOLDER] [/FNAME]
//
// The installer is NAME.exe in FOLDER; without them it has the name of the script, beside it. What is wrong goes to
// standard output. The exit code is 0 only if the installer was made.
#include "kernel/windows/windowing.h"
#include "library/dialogs/versioninfo.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "toolchain/setup/make.h"

#include <cstdio>

namespace {

using namespace tarn;

constexpr int Failed = 1, Usage = 2;

// Beside this program by the name it was called, else beside the file behind its link.
std::string besideTool(const std::string& name) {
    const std::string here = os::executableFolder() + name;
    std::string resolved;
    if (os::sizeOf(here) > 0) return here;
    os::files().resolve(os::executablePath(), resolved);
    return os::folderPart(resolved) + name;
}

// The product of the version block, else the description that the user has given, else the name. A description that nobody has
// changed tells of this system and not of the program.
std::string productOf(const setup::Package& package, const std::string& resources) {
    const std::string blocks =
        resources.empty() ? std::string() : ResourceInfo(resources, "VERSIONINFO", "*").text;
    const std::string block = STRTOKEN(STRLINE(blocks + "\n", 1), 1);
    const std::string product = STRTRIM(
        block.empty() ? std::string()
                      : VERSIONINFOTOFIELDS(ResourceInfo(resources, "VERSIONINFO", block).text).product);
    ClearError();
    if (!product.empty() && product.find('\n') == std::string::npos) return product;
    const bool told = !package.title.empty() && !ISDEFAULTDESCRIPTION(package.title);
    return told ? package.title : package.name;
}

}  // namespace

int main(int argc, char** argv) {
    os::setCommandLine(argc, argv);
    std::string script, folder, name;
    bool understood = true;
    for (const std::string& argument : os::commandLine()) {
        if (script.empty())
            script = argument;  // the first one, whatever it begins with
        else if (argument.starts_with("/O"))
            folder = argument.substr(2);
        else if (argument.starts_with("/F"))
            name = argument.substr(2);
        else
            understood = false;
    }
    if (script.empty() || !understood || (!name.empty() && !setup::isPlainName(name))) {
        std::fputs("usage: iscc.exe SCRIPT [/OFOLDER] [/FNAME]\n", stdout);
        return Usage;
    }
    script = os::native(script);
    if (folder.empty()) folder = os::folderOf(script);
    if (name.empty()) name = os::withoutExtension(os::nameOf(script));
    const std::string made = os::joined(os::native(folder), name + ".exe");
    const std::string report =
        setup::makeInstaller({script, made, besideTool("tarnwick-setup"), besideTool("tarnwick-ask"),
                              setup::firstProgram(), productOf});
    std::fputs(report.empty() ? (made + "\n").c_str() : report.c_str(), stdout);
    return report.empty() ? 0 : Failed;
}
