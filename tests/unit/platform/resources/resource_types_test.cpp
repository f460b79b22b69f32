// SPDX-License-Identifier: Apache-2.0
//
// The types of objects in resource files: their properties, the options of these, and what a new object has.
#include "platform/resources/properties.h"
#include "platform/text.h"
#include "unit/platform/resource_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>

namespace tarn::platform {
namespace {

// ---- types ----

TEST_F(ResourceTest, TypelistBeginsWithNameTypeAndPositionForEveryType) {
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i) {
        const std::string text = ResourceTypelist(std::string(typeName(static_cast<Type>(i))));
        EXPECT_TRUE(text.starts_with("NAME NAME(")) << text;
        EXPECT_NE(text.find("\nTYPEOF CONST\nPOSITION INTEGER"), std::string::npos) << text;
        EXPECT_TRUE(text.ends_with('\n'));
        EXPECT_LT(text.size(), 65535u);
    }
    EXPECT_EQ(ResourceTypelist("label"), ResourceTypelist("LABEL"));
    for (const char* type : {"", "Screen", "nothing"}) EXPECT_EQ(ResourceTypelist(type), "");
}

TEST_F(ResourceTest, TypelistHoldsThePropertiesThatTheDesignersRead) {
    const std::pair<const char*, std::vector<const char*>> wanted[] = {
        {"Dialog",
         {"CAPTION", "MENU", "FONTNAME", "FONTSIZE", "OWNER", "BORDERSTYLE", "CLOSEBOX", "MAXBUTTON",
          "MINBUTTON"}},
        {"Bitmapbutton", {"PICTURE"}},
        {"Checkbox", {"ALIGNMENT", "CAPTION"}},
        {"Combobox", {"COMBOSTYLE"}},
        {"Edit", {"ALIGNMENT", "BORDERSTYLE", "READONLY", "SCROLLBARS", "MULTILINE"}},
        {"Groupbox", {"CAPTION"}},
        {"Icon", {"PICTURE"}},
        {"Iconlist", {"BORDERSTYLE", "SCROLLBARS", "USETABSTOPS"}},
        {"Image", {"BORDERSTYLE", "PICTURE"}},
        {"Label", {"ALIGNMENT", "BORDERSTYLE", "CAPTION"}},
        {"Listbox", {"BORDERSTYLE", "SCROLLBARS"}},
        {"Progressbar", {"ALIGNMENT", "BORDERSTYLE", "BACKCOLOUR", "FORECOLOUR"}},
        {"Pushbutton", {"CAPTION", "DEFAULT"}},
        {"Radiobutton", {"ALIGNMENT", "CAPTION"}},
        {"Scrollbar", {"ALIGNMENT"}},
        {"Shape", {"BORDERSTYLE", "BACKCOLOUR", "FORECOLOUR", "SHAPE"}},
        {"Menuitem", {"CAPTION", "CHECKED", "ENABLED"}},
    };
    for (const auto& [type, names] : wanted)
        for (const char* name : names)
            EXPECT_NE(ResourceTypelist(type).find("\n" + std::string(name) + " "), std::string::npos)
                << type << " " << name;
}

TEST_F(ResourceTest, TypelistSpeaksTheLanguageOfOptionsTexts) {
    const std::regex forms[] = {
        std::regex("CONST|COLOUR|INTEGER|STRING|STRING\\([0-9]+\\)"),
        std::regex("NAME\\([0-9]+:[0-9]+\\)"),
        std::regex("FILENAME\\([a-z]+(,[a-z]+)*\\)"),
        std::regex("ENUM\\([A-Za-z]+(,[A-Za-z]+)*\\)"),
        std::regex("INTEGER\\(-?[0-9]*:-?[0-9]*\\)|INTEGER\\[1:4\\]"),
        std::regex("INTEGER\\([0-9]+-\"[^\"]+\"(,[0-9]+-\"[^\"]+\")*\\)"),
        std::regex("INTEGER\\{[0-9]+-\"[^\"]+\"(,[0-9]+-\"[^\"]+\")*\\}"),
    };
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i)
        for (const PropertyRow& row : propertiesOf(static_cast<Type>(i))) {
            const std::string options(row.options);
            EXPECT_EQ(std::count_if(std::begin(forms), std::end(forms),
                                    [&](const std::regex& form) { return std::regex_match(options, form); }),
                      1)
                << row.name << " " << options;
        }
}

// What an empty value becomes in a new object by its options alone.
std::string firstValue(std::string_view options) {
    if (options == "INTEGER[1:4]") return "0 0 0 0";
    if (options.starts_with("NAME")) return "Name";
    if (options.starts_with("COLOUR")) return "-1";  // told by the property's own rule
    if (options.starts_with("ENUM") || options.starts_with("INTEGER{") || options == "INTEGER") return "0";
    if (!options.starts_with("INTEGER(")) return "";
    return std::to_string(std::max(0, leadingNumber(options.substr(8))));
}

TEST_F(ResourceTest, ANewObjectIsAsOneThatTheFileTellsNothingOf) {
    std::string others;
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i)
        for (const PropertyRow& row : propertiesOf(static_cast<Type>(i)))
            if (row.name != "NAME" && row.name != "TYPEOF" && firstValue(row.options) != row.missing)
                others += std::string(typeName(static_cast<Type>(i))) + " " + std::string(row.name) + "=" +
                          firstValue(row.options) + "\n";
    // A window that is drawn can be sized, and a range from 0 to 0 is the usual one.
    EXPECT_EQ(others, "Dialog BORDERSTYLE=2\nScrollbar MAXIMUM=0\nProgressbar MAXIMUM=0\n");
}

TEST_F(ResourceTest, MissingValuesFitTheirOptions) {
    for (int i = static_cast<int>(Type::Dialog); i <= static_cast<int>(Type::Menuitem); ++i)
        for (const PropertyRow& row : propertiesOf(static_cast<Type>(i))) {
            const bool number = row.options.starts_with("ENUM") || row.options.starts_with("COLOUR") ||
                                (row.options.starts_with("INTEGER") && !row.options.starts_with("INTEGER["));
            EXPECT_TRUE(!number || wholeNumber(row.missing)) << row.name;
            const bool reference =
                row.name == "ARRAY" || row.name == "MENU";  // a name, and no new object has it
            EXPECT_EQ(row.options.starts_with("STRING") && !reference, row.kind == ValueKind::Text)
                << row.name;
            EXPECT_EQ(row.options.starts_with("FILENAME"), row.kind == ValueKind::File) << row.name;
        }
}

TEST_F(ResourceTest, CommonIdentifiersAreKnown) {
    for (const char* name : {"IDOK", "idcancel", "IDRETRY", "IDHELP"})
        EXPECT_TRUE(ResourceCommonId(name)) << name;
    for (const char* name : {"", "IDNOTHING", "pushbutton1"}) EXPECT_FALSE(ResourceCommonId(name)) << name;
}

}  // namespace
}  // namespace tarn::platform
