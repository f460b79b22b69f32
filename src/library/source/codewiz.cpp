// SPDX-License-Identifier: Apache-2.0
#include "library/source/codewiz.h"

#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/source/codewiz_internal.h"
#include "library/system/product.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <utility>

MODULE("codewiz", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view SectionPrefix = "template.";

TemplateText tooComplex(const std::string& what) {
    return {{}, "Cannot create " + what + ", it was too complex and caused a string overflow."};
}

// The arguments of a function's head are its lines 2 to 4.
std::string moveArguments(std::string_view text, std::size_t blanks) {
    constexpr int firstArgument = 2, lastArgument = 4;
    std::string moved;
    for (int number = 1; !text.empty(); ++number) {
        if (number >= firstArgument && number <= lastArgument) moved.append(blanks, ' ');
        moved += ascii::takeLine(text);
    }
    return moved;
}

}  // namespace

namespace detail {

bool startsWith(std::string_view text, std::string_view word) {
    return ascii::equal(text.substr(0, word.size()), word);
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && ascii::isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && ascii::isSpace(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace detail

std::string REPLACECONSTANTS(std::string text) {
    FRAME(REPLACECONSTANTS);
    static const std::pair<std::string_view, std::string> constants[] = {
        {"%APPLICATION_ICON%", std::string(ProductIcon)},
        {"%APPLICATION_ID%", std::string(ProductId)},
        {"%BUSINESS_NAME%", std::string(ProductMaker)},
        {"%DESCRIPTION_INFO%", std::string(ProductDescription)},
        {"%EMAIL_ADDRESS%", std::string(ProductEmail)},
        {"%MAX_COMMPORTS%", std::to_string(MaxCommPort)},
        {"%MAX_ID%", std::to_string(MaxIdentifier)},
        {"%MAX_SEGMENTS%", std::to_string(MaxKeySegments)},
        {"%MAX_SYMBOLS%", std::to_string(MaxCompilerSymbols)},
        {"%PRODUCT_NAME%", std::string(ProductWord)},
        {"%RELEASE_NUMBER%", std::string(ProductBuild)},
        {"%SOURCE_EXT%", std::string(SourceExtension)},
        {"%VERSION_NUMBER%", std::string(ProductVersion)},
        {"%WEB_ADDRESS%", std::string(ProductWebAddress)},
        {"%MAX_FIELDS%", std::to_string(MaxConnectorFields)},
    };
    for (const auto& [name, value] : constants) text = STRREPLACE(text, name, value);
    return text;
}

TemplateText LOADTEMPLATE(const std::string& filename, const std::string& section) {
    FRAME(LOADTEMPLATE);
    if (section.empty()) return {{}, "Cannot load template, no name was provided."};
    STAMP();
    const std::string text = PROFILESTRGET(filename, section, "");
    STAMP();
    if (text.empty()) return {{}, "Cannot create " + section + ", it was not in \"" + filename + "\"."};
    std::optional<std::string> unrolled = detail::unrollLoops(REPLACECONSTANTS(text));
    STAMP();
    if (!unrolled) return tooComplex(section);
    return {std::move(*unrolled), {}};
}

std::string TEMPLATESECTIONS(const std::string& filename) {
    FRAME(TEMPLATESECTIONS);
    STAMP();
    const std::string sections = PROFILESTRSECTIONS(filename);
    std::string found;
    for (std::string_view rest = sections; !rest.empty();) {
        const std::string_view line = ascii::takeLine(rest);
        if (detail::startsWith(line, SectionPrefix)) found += line;
    }
    return found;
}

TemplateText UPDATETEMPLATE(const TemplateParameters& parameters, std::string_view text, bool crlf) {
    FRAME(UPDATETEMPLATE);
    std::optional<std::string> filled = detail::fillParameters(parameters, text);
    if (!filled) return tooComplex("the text");
    const std::string lines = detail::applyLineCommands(detail::applyForms(std::move(*filled)));
    STAMP();
    std::string result = detail::joinContinuedLines(lines, crlf);
    if (result.size() >= MaxTemplateText) return tooComplex("the text");
    return {std::move(result), {}};
}

TemplateText FUNCTIONFROMTEMPLATE(const std::string& name, std::string_view text) {
    FRAME(FUNCTIONFROMTEMPLATE);
    TemplateParameters parameters = TEMPLATETOPROPLIST(text);
    SETPROPVALUE("Name", name, parameters.names, parameters.values);
    STAMP();
    TemplateText result = UPDATETEMPLATE(parameters, text, false);
    STAMP();
    result.text = moveArguments(result.text, name.size());
    return result;
}

}  // namespace tarn
