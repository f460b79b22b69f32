// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/library.h"

namespace tarn::toolchain {
namespace {

constexpr LibraryParameter Text{Type::String}, Number{Type::Integer}, Truth{Type::Boolean};
constexpr LibraryParameter OutText{Type::String, Mode::Out}, InoutText{Type::String, Mode::Inout};

}  // namespace

const std::vector<LibraryFunction>& libraryFunctions() {
    static const std::vector<LibraryFunction> functions = {
        {"arguments", "tarn_sys_arguments", Type::String, {}},
        {"assert", "quarn_assert", Type::None, {Truth}},
        {"assert", "tarn_assert", Type::None, {Truth, Text}},
        {"chr", "tarn_sys_chr", Type::String, {Number}},
        {"clearerror", "tarn_clear_error", Type::None, {}},
        {"cvti", "tarn_sys_cvti", Type::Integer, {Text}},
        {"errordetails", "tarn_sys_errordetails", Type::String, {}},
        {"errormessage", "tarn_sys_errormessage", Type::String, {Number}},
        {"filesize", "tarn_sys_filesize", Type::Integer, {Text}},
        {"length", "tarn_string_length", Type::Integer, {Text}},
        {"loadfile", "tarn_sys_loadfile", Type::None, {Text, OutText}},
        {"msgbox", "quarn_msgbox", Type::None, {Text, Text}},
        {"msgbox", "tarn_sys_msgbox", Type::None, {Text, Text, Text, OutText}},
        {"ord", "tarn_sys_ord", Type::Integer, {Text}},
        {"print", "tarn_sys_print", Type::None, {Text}},
        {"savefile", "tarn_sys_savefile", Type::None, {Text, Text}},
        {"str", "tarn_sys_str_integer", Type::String, {Number}},
        {"str", "tarn_sys_str_boolean", Type::String, {Truth}},
        {"strfind", "quarn_strfind", Type::Integer, {Text, Text}},
        {"strfind", "tarn_sys_strfind", Type::Integer, {Text, Text, Number, Truth}},
        {"strleft", "tarn_sys_strleft", Type::String, {Text, Number}},
        {"strline", "tarn_sys_strline", Type::String, {Text, Number}},
        {"strlines", "tarn_sys_strlines", Type::Integer, {Text}},
        {"strlower", "tarn_sys_strlower", Type::String, {Text}},
        {"strltrim", "tarn_sys_strltrim", Type::String, {Text}},
        {"strmake", "tarn_sys_strmake", Type::String, {Number, Number}},
        {"strmid", "tarn_sys_strmid", Type::String, {Text, Number, Number}},
        {"strreplace", "tarn_sys_strreplace", Type::None, {Text, Text, Truth, InoutText}},
        {"strright", "tarn_sys_strright", Type::String, {Text, Number}},
        {"strrtrim", "tarn_sys_strrtrim", Type::String, {Text}},
        {"strtrim", "tarn_sys_strtrim", Type::String, {Text}},
        {"strupper", "tarn_sys_strupper", Type::String, {Text}},
    };
    return functions;
}

std::vector<const LibraryFunction*> findLibraryForms(const std::string& foldedName) {
    std::vector<const LibraryFunction*> forms;
    for (const LibraryFunction& function : libraryFunctions())
        if (foldedName == function.name) forms.push_back(&function);
    return forms;
}

}  // namespace tarn::toolchain
