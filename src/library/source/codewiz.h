// SPDX-License-Identifier: Apache-2.0
//
// Code templates: texts from which classes, windows and functions are made. A template is the body of a section
// "Template.name" of a settings file, line by line. What stands in it is replaced in this order:
//
//   when it is loaded
//     %PRODUCT_NAME%                    a constant of the product: REPLACECONSTANTS
//     #FOR %i% = 1 TO 4 ... #NEXT %i%   the lines between, once for each number, in place of %i%
//   when it is used
//     $Name$  $Name=TYPE$               the value of a parameter; the type, an options text of a property, says what may
//                                       be entered, and is STRING if the first use of the name tells none
//     #UCASE(text) #LCASE(text)         the text up to the next ")" or the end, in that case
//     #FILEGETFNAME(path)               file name and extension of a path
//     #FILEGETEXT(path)                 its extension
//     #STRESCAPE(text)                  with \t \n \r \" \\ and \xNN for what cannot stand in a string of a resource
//     #// text                          a comment; the line is dropped
//     #IF a = b #AND c IN d,e           lines that are kept if that is true: =, <> and IN, strictly from left to right;
//     #ELSE ... #END                    else those behind #ELSE
//     \ at the end of a line            the next line follows without a line end
//
// Words, names and commands are in any case; the values of a relation are not. A parameter begins and ends in one line: a
// "$" without another one behind it in its line is text. The value of a parameter is looked through for the parameters
// behind it alone.
//
// Errors are texts, empty on success; the text is empty then. Cost: linear in the text, and in what becomes of it, which
// is at most MaxTemplateText; loops that would pass that, or that nest deeper than MaxTemplateLoops, are an error.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::size_t MaxTemplateText = 4'000'000;  // bytes; what the Code window can hold
inline constexpr int MaxTemplateLoops = 100;

struct TemplateText {
    std::string text, message;
};
// Reads the section of the file and replaces constants and loops.
[[nodiscard]] TemplateText LOADTEMPLATE(const std::string& filename, const std::string& section);
// The sections of a file that are templates, one a line.
std::string TEMPLATESECTIONS(const std::string& filename);

// Lists with one line for each parameter, in the order of their first uses. The values are empty; they are set by
// SETPROPVALUE(name, value, names, values) of library/designer/proputil.h.
struct TemplateParameters {
    std::string names, types, values;
};
TemplateParameters TEMPLATETOPROPLIST(std::string_view text);
// Puts the values in and obeys the commands. Lines end with LF, or all of them with CR LF. Parameters that are not in the
// list stay as they are.
[[nodiscard]] TemplateText UPDATETEMPLATE(const TemplateParameters& parameters, std::string_view text,
                                          bool crlf);
// A function of that name: the parameter Name is set, and lines 2 to 4, the arguments, are moved to the right by the
// length of the name.
[[nodiscard]] TemplateText FUNCTIONFROMTEMPLATE(const std::string& name, std::string_view text);

// ---- parts of the language ----

struct ForLoop {
    std::string variable;    // with its signs; may be there in a bad line
    int from = -1, to = -1;  // both -1 in a bad line
};
ForLoop PARSEFORLOOP(std::string_view line);
// One relation at the 1-based position, which moves behind it. False for an operator that is none.
bool PARSERELEXP(std::string_view line, std::size_t& position);
std::string REPLACECONSTANTS(std::string text);

}  // namespace tarn
