// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/codepage.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace tarn::datatool {

namespace {

struct CodePage {
    int number;
    std::string_view marks;
};
constexpr CodePage codePages[] = {
    {437, "\x01\x09\x0B\x0D\x0F\x11\x15\x18\x19\x1B"},
    {737, "\x6A\x86"},
    {850, "\x02\x0A\x0E\x10\x12\x14\x16\x1A\x1D\x25\x37"},
    {852, "\x1F\x22\x23\x40\x64\x87"},
    {857, "\x6B\x88"},
    {860, "\x24"},
    {861, "\x67"},
    {863, "\x1C\x6C"},
    {865, "\x08\x17\x66"},
    {866, "\x26\x65"},
    {874, "\x50\x7C"},
    {932, "\x13\x7B"},
    {936, "\x4D\x7A"},
    {949, "\x4E\x79"},
    {950, "\x4F\x78"},
    {1250, "\xC8"},
    {1251, "\xC9"},
    {1252, "\x03\x57\x58\x59"},
    {1253, "\xCB"},
    {1254, "\xCA"},
    {1255, "\x7D"},
    {1256, "\x7E"},
    {1257, "\xCC"},
    {10000, "\x04"},
    {10006, "\x98"},
    {10007, "\x96"},
    {10029, "\x97"},
};

}  // namespace

std::string codePageOf(std::string_view header) {
    constexpr std::size_t markAt = 29;
    constexpr char digits[] = "0123456789ABCDEF";
    if (header.size() <= markAt || header[markAt] == '\0') return {};
    const auto* const page = std::find_if(std::begin(codePages), std::end(codePages), [&](const CodePage& p) {
        return p.marks.find(header[markAt]) != std::string_view::npos;
    });
    if (page != std::end(codePages)) return "code page " + std::to_string(page->number);
    const auto mark = static_cast<unsigned char>(header[markAt]);
    return std::string("code page mark ") + digits[mark >> 4U] + digits[mark & 15U];
}

}  // namespace tarn::datatool
