// SPDX-License-Identifier: Apache-2.0
//
// What programs need around data files.
#include "library/data/dbutil.h"

#include "kernel/data/datafile.h"
#include "kernel/values/records.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <vector>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr int LongestIdentifier = 40;
constexpr char PossibleSeparators[] = {',', ';', ':', '~', '|', '\t'};

// ---- the first two lines ----

// As much of the file as two of the longest lines take, behind a byte order mark.
std::string readStart(const std::string& filename) {
    std::string bytes;
    os::Handle handle = -1;
    const std::string path = os::native(filename);
    const os::FileInfo info = os::infoOf(path);
    if (info.folder || info.special) return bytes;
    if (os::files().open(path, os::OpenMode::Read, 0, handle) != os::FileError::None) return bytes;
    bytes.resize(2 * std::size_t{MaxTabLine});
    std::size_t filled = 0, got = 1;
    while (got > 0 && filled < bytes.size()) {
        const auto offset = static_cast<std::int64_t>(filled);
        if (os::files().read(handle, offset, bytes.data() + filled, bytes.size() - filled, got) !=
            os::FileError::None)
            break;
        filled += got;
    }
    os::files().close(handle);
    bytes.resize(filled);
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (bytes.starts_with(mark)) bytes.erase(0, mark.size());
    return bytes;
}

bool occurs(char separator, std::string_view line, std::string_view next) {
    return line.find(separator) != std::string_view::npos &&
           (next.empty() || next.find(separator) != std::string_view::npos);
}

bool isColumnName(std::string_view cell) {
    std::string name = STRREPLACE(STRTRIM(cell), "\"", "");
    std::replace(name.begin(), name.end(), ' ', '_');
    return STRTOIDENTIFIER(name, LongestIdentifier, "_") == name;
}

bool allColumnNames(std::string_view line, char separator) {
    if (line.empty()) return false;
    for (;;) {
        const std::size_t end = line.find(separator);
        if (!isColumnName(line.substr(0, end))) return false;
        if (end == std::string_view::npos) return true;
        line.remove_prefix(end + 1);
    }
}

bool onlyDashes(std::string_view line, char separator) {
    bool dashes = false;
    for (const char c : line) {
        if (c == separator || c == ' ') continue;
        if (c != '-') return false;
        dashes = true;
    }
    return dashes;
}

// ---- escapes ----

// The character of the escape at `at`, which ends behind it; a backslash that begins none stands for itself.
char escaped(std::string_view text, std::size_t& at) {
    constexpr std::string_view marks = "tnr\"\\", characters = "\t\n\r\"\\";
    const char mark = at + 1 < text.size() ? text[at + 1] : '\0';
    const std::size_t known = mark == '\0' ? std::string_view::npos : marks.find(mark);
    if (known != std::string_view::npos) {
        at += 2;
        return characters[known];
    }
    const int high = at + 3 < text.size() ? ascii::hexDigit(text[at + 2]) : -1;
    const int low = high >= 0 ? ascii::hexDigit(text[at + 3]) : -1;
    if (mark != 'x' || low < 0) return text[at++];
    at += 4;
    return static_cast<char>(high * 16 + low);
}

// ---- folders ----

// "/" as separator, no "." and "..", none at the end, and upper case.
std::string comparable(std::string_view path) {
    const std::string whole = os::native(path);
    std::vector<std::string_view> parts;
    for (std::string_view rest = whole; !rest.empty();) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        const std::string_view part = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (part == ".." && !parts.empty())
            parts.pop_back();
        else if (!part.empty() && part != "." && part != "..")
            parts.push_back(part);
    }
    std::string text = whole.starts_with('/') ? "/" : "";
    for (const std::string_view part : parts) text.append(part).append("/");
    return STRUPPER(text);
}

int numberOf(std::string_view text) {
    bool ok = false;
    const int value = CVTI(STRTRIM(text), ok);
    return ok ? value : 0;
}

}  // namespace

bool ISDBASEFILE(std::string_view name) {
    FRAME(ISDBASEFILE);
    return DataFormatOf(name) == FormatXbase;
}

PossibleFileDetails GETPOSSIBLEFILEDETAILS(const std::string& filename) {
    FRAME(GETPOSSIBLEFILEDETAILS);
    STAMP();
    const std::string start = readStart(filename);
    std::string_view rest = start;
    const std::string first = STRTRIM(ascii::takeLine(rest)), second = STRTRIM(ascii::takeLine(rest));
    PossibleFileDetails details;
    char separator = ',';
    const auto* const found = std::find_if(std::begin(PossibleSeparators), std::end(PossibleSeparators),
                                           [&](char c) { return occurs(c, first, second); });
    if (found != std::end(PossibleSeparators)) separator = *found;
    details.separator = separator == '\t' ? "\\t" : std::string(1, separator);
    if (!allColumnNames(first, separator)) return details;
    details.headerRows = onlyDashes(second, separator) ? "2" : "1";
    return details;
}

std::string GETSEPARATOR(std::string_view text) {
    FRAME(GETSEPARATOR);
    const std::string trimmed = STRTRIM(text);
    std::string_view inner = trimmed;
    const bool quoted = inner.size() > 2 && (inner[0] == '"' || inner[0] == '\'') && inner.back() == inner[0];
    if (quoted) inner = inner.substr(1, inner.size() - 2);
    std::string result;
    for (std::size_t at = 0; at < inner.size();)
        result += inner[at] == '\\' ? escaped(inner, at) : inner[at++];
    return result;
}

void GETOPTIONSRECORD(std::string_view headerRows, std::string_view footerRows, std::string_view separator,
                      std::string_view maxRows, RecordDescriptor* record) {
    FRAME(GETOPTIONSRECORD);
    const std::string character = separator.size() > 1 ? GETSEPARATOR(separator) : std::string(separator);
    const int code = character.empty() ? 0 : static_cast<unsigned char>(character[0]);
    STAMP();
    RecordFree(record);
    RecordInit(record, TagRecord, MakeFieldKinds({KindInteger, KindInteger, KindInteger, KindInteger}));
    char* field = At(record->data);
    if (field == nullptr) return;
    for (const int number : {numberOf(headerRows), numberOf(footerRows), code, numberOf(maxRows)}) {
        WriteAt(field, std::int32_t{number});
        field += sizeof(std::int32_t);
    }
}

bool DIRFINDPATH(std::string_view directory, std::string_view paths) {
    FRAME(DIRFINDPATH);
    if (directory.empty() || !FILEGETDRIVE(directory).empty()) return false;
    std::string absolute(directory);
    STAMP();
    if (!ISROOTED(directory)) absolute = FILEADDSEPARATOR(GETCURDIR()) + absolute;
    absolute = comparable(absolute);
    while (!paths.empty()) {
        const std::size_t end = std::min(paths.find(';'), paths.size());
        const std::string path = STRTRIM(paths.substr(0, end));
        paths.remove_prefix(std::min(end + 1, paths.size()));
        if (!path.empty() && comparable(path) == absolute) return true;
    }
    return false;
}

int STRCHARCOUNT(std::string_view text, char character) {
    FRAME(STRCHARCOUNT);
    return static_cast<int>(std::count(text.begin(), text.end(), character));
}

LineTokens GETLINETOKENS(std::string_view line) {
    FRAME(GETLINETOKENS);
    LineTokens tokens;
    std::string_view rest = ascii::withoutLineEnd(line);
    for (std::string* token : {&tokens.a, &tokens.b, &tokens.c}) {
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        const std::size_t end = std::min(rest.find_first_of(" \t"), rest.size());
        *token = rest.substr(0, end);
        rest.remove_prefix(end);
    }
    return tokens;
}

}  // namespace tarn
