// SPDX-License-Identifier: Apache-2.0
//
// What the library asks the registry for.
#include "library/system/programs.h"

#include "library/system/programs_internal.h"
#include "library/system/strings.h"
#include "os/process.h"

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {

RegInfo REGGETSETTINGINFO(const std::string& key, const std::string& name) {
    FRAME(REGGETSETTINGINFO);
    STAMP();
    return RegGetSettingInfo(key, name);
}

RegInfo REGGETSETTINGINFO(const std::string& key) {
    FRAME(REGGETSETTINGINFO);
    STAMP();
    return RegGetSettingInfo(key, "");
}

std::string REGGETBROWSER() {
    FRAME(REGGETBROWSER);
    STAMP();
    const std::string named = RegGetSetting(detail::BrowserKey, "");
    if (!named.empty()) return named;
    const std::string variable = os::environment("BROWSER");
    const std::string first = variable.substr(0, variable.find(':'));
    for (const std::string& program : {first, std::string("xdg-open")}) {
        const std::string found = program.empty() ? "" : detail::FindProgram(program);
        if (!found.empty()) return QUOTEARGUMENT(found);
    }
    return {};
}

std::string REGGETCURRENTVERSION(const std::string& name) {
    FRAME(REGGETCURRENTVERSION);
    STAMP();
    return RegGetSetting("SOFTWARE\\Microsoft\\Windows\\CurrentVersion", name);
}

std::string GETAPPLICATIONCOMPATIBILITYFLAGS(const std::string& program) {
    FRAME(GETAPPLICATIONCOMPATIBILITYFLAGS);
    STAMP();
    if (program.empty()) return {};
    return RegGetSetting("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Layers", program);
}

}  // namespace tarn
