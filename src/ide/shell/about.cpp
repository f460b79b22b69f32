// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/about.h"

#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "library/system/product.h"
#include "library/system/system.h"

MODULE("helpmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr int RuleLength = 50, ValueWidth = 120;

std::string details() {
    const std::string product(ProductWord);
    return product + " Developer Studio\nVersion " + std::string(ProductVersion) + ", build " +
           std::string(ProductBuild) + "\n";
}

// The command line tells which back end is in use.
std::string credit() {
    std::string text = "The environment is free software under the GNU General\nPublic License, version 3 or "
                       "later; what a program\n"
                       "carries of it is under the Apache License, version 2.0.\n";
    if (STRFIND("/GFPC", SAVECOMMANDLINE(CompilerOptions(), 0, false)) != 0)
        text += "Programs carry the Pascal run-time library, under the\nterms of the files 'copying.fpc' and "
                "'copying.lgpl'.\n";
    return text;
}

}  // namespace

std::string GETABOUTTEXT() {
    FRAME(GETABOUTTEXT);
    const std::string rule = std::string(RuleLength, '_') + "\n";
    STAMP();
    const std::string maker = "Made by " + std::string(ProductMaker) + ".\n";
    return details() + rule + maker + credit() + rule + ABOUTDIALOGINFO(ValueWidth);
}

std::string GETWEBSITE() {
    FRAME(GETWEBSITE);
    const std::string own = PROFILESTRGET(GETIDEINIFILE(), "Product", "Website");
    return own.empty() ? std::string(ProductWebAddress) : own;
}

AboutButtons GETABOUTBOXBUTTONS() {
    FRAME(GETABOUTBOXBUTTONS);
    STAMP();
    return TBUTTONS({{"Close", "Unload", ""},
                     {"Visit website", GETWEBSITE(), ""},
                     {"Copy Info", "Copy", ""},
                     {"Help", GETHELPFILE(), "Help_About"}});
}

}  // namespace tarn
