// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/windowfunction.h"

#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "library/source/codewiz.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {

std::string ADDWINDOWFUNCTION(const std::string& name, std::string& text) {
    FRAME(ADDWINDOWFUNCTION);
    STAMP();
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), "Template.FunctionBody.cls");
    STAMP();
    const TemplateText function = body.message.empty() ? FUNCTIONFROMTEMPLATE(name, body.text) : body;
    STAMP();
    if (!function.message.empty()) return function.message;
    std::string changed = text, error = SYMADDFUNCTION(function.text, 0, changed);
    if (error.empty()) error = SYMINDENTFUNCHEADER(name, 0, changed);
    STAMP();
    if (error.empty()) text = changed;
    return error;
}

std::string FUNCTIONNAMES(const std::string& text) {
    FRAME(FUNCTIONNAMES);
    constexpr int FromText = 0;
    STAMP();
    return SYMSCANSOURCE(text, FromText);
}

}  // namespace tarn
