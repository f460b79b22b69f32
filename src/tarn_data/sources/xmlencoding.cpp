// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/sources/xmlencoding.h"

#include "os/text/ascii.h"
#include "os/text/utf8.h"
#include "tarn_data/base/encoding.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/shown.h"

#include <algorithm>
#include <iterator>

namespace tarn::datatool {

namespace {

// ---- characters of one byte ----

std::uint32_t fromLatin1(unsigned char byte) {
    return byte;
}

std::uint32_t fromLatin9(unsigned char byte) {
    switch (byte) {
    case 0xA4: return 0x20AC;
    case 0xA6: return 0x160;
    case 0xA8: return 0x161;
    case 0xB4: return 0x17D;
    case 0xB8: return 0x17E;
    case 0xBC: return 0x152;
    case 0xBD: return 0x153;
    case 0xBE: return 0x178;
    default: return byte;
    }
}

// Five bytes are no character, and stay control characters.
std::uint32_t fromWindows1252(unsigned char byte) {
    constexpr std::uint16_t characters[] = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                            0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                            0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};
    static_assert(std::size(characters) == 32);
    return byte >= 0x80 && byte < 0xA0 ? characters[byte - 0x80] : byte;
}

struct ByteEncoding {
    std::string_view name, shown;
    std::uint32_t (*character)(unsigned char byte);
};
// Without a character: the bytes are UTF-8 as they stand.
constexpr ByteEncoding encodings[] = {
    {"utf-8", {}, nullptr},
    {"utf8", {}, nullptr},
    {"us-ascii", {}, nullptr},
    {"ascii", {}, nullptr},
    // The bytes of the declaration itself show that it is none of these.
    {"utf-16", {}, nullptr},
    {"utf-16le", {}, nullptr},
    {"utf-16be", {}, nullptr},
    {"utf-32", {}, nullptr},
    {"utf-32le", {}, nullptr},
    {"utf-32be", {}, nullptr},
    {"iso-8859-1", "ISO-8859-1", fromLatin1},
    {"iso_8859-1", "ISO-8859-1", fromLatin1},
    {"latin1", "ISO-8859-1", fromLatin1},
    {"latin-1", "ISO-8859-1", fromLatin1},
    {"iso-8859-15", "ISO-8859-15", fromLatin9},
    {"latin9", "ISO-8859-15", fromLatin9},
    {"windows-1252", "Windows-1252", fromWindows1252},
    {"cp1252", "Windows-1252", fromWindows1252},
};

// ---- the copy ----

Problem makeFolder(Source& source, std::string_view encoding) {
    source.folder = std::make_unique<WorkFolder>();
    const os::FileError error = source.folder->error();
    if (error == os::FileError::None) return {};
    return {fileWord(source.file) + "is " + std::string(encoding) +
                " text, and there is no folder for a copy of it: " + std::string(os::describe(error)),
            "Choose one with TMPDIR."};
}

// Closes the file however the writing ends.
struct Copy {
    os::Handle handle = -1;
    Copy() = default;
    ~Copy() {
        if (handle >= 0) os::files().close(handle);
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;
};

Problem copyBytes(const Source& source, const ByteEncoding& encoding) {
    constexpr std::size_t blockBytes = std::size_t{256} * 1024;
    constexpr std::uint32_t onlyMine = 0600;
    FileRows rows;
    Copy out;
    if (!rows.open(source.file)) return unreadable(source.file, rows.error());
    os::FileError error = os::files().open(source.path, os::OpenMode::CreateNew, onlyMine, out.handle);
    Steps steps(rows.size());
    std::string block, text;
    for (std::int64_t at = 0, written = 0; error == os::FileError::None && at < rows.size();) {
        if (!rows.read(at, blockBytes, block)) return unreadable(source.file, rows.error());
        if (block.empty()) return unreadable(source.file, os::FileError::Vanished);
        if (!steps.step(static_cast<std::int64_t>(block.size()))) return stoppedProblem();
        text.clear();
        for (const char c : block) utf8::append(text, encoding.character(static_cast<unsigned char>(c)));
        error = os::files().write(out.handle, written, text);
        written += static_cast<std::int64_t>(text.size());
        at += static_cast<std::int64_t>(block.size());
    }
    if (error == os::FileError::None) return {};
    return {"'" + source.path + "' cannot be written: " + std::string(os::describe(error)),
            "Choose a folder with more room with TMPDIR."};
}

Problem otherEncoding(const Source& source, std::string_view declared) {
    std::string command = iconvCommand(shown(source.file), Encoding::Latin1);
    const std::string_view known = encodingName(Encoding::Latin1);
    command.replace(command.find(known), known.size(), declared);
    return {fileWord(source.file) + "is declared to be in the encoding '" + std::string(declared) + "'.",
            "Convert it first: " + command};
}

}  // namespace

std::string_view declaredEncoding(std::string_view beginning) {
    constexpr std::string_view word = "encoding", blanks = " \t\r\n";
    if (beginning.starts_with("\xEF\xBB\xBF")) beginning.remove_prefix(3);
    if (!beginning.starts_with("<?xml")) return {};
    std::string_view rest = beginning.substr(0, beginning.find("?>"));
    rest.remove_prefix(std::min(rest.find(word), rest.size()));
    rest.remove_prefix(std::min(word.size(), rest.size()));
    const auto skipBlanks = [&] {
        rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    };
    skipBlanks();
    if (!rest.starts_with('=')) return {};
    rest.remove_prefix(1);
    skipBlanks();
    if (!rest.starts_with('"') && !rest.starts_with('\'')) return {};
    const std::size_t end = rest.find(rest[0], 1);
    return end == std::string_view::npos ? std::string_view() : rest.substr(1, end - 1);
}

Problem takeXmlEncoding(Source& source) {
    const std::string beginning = beginningOf(source.file);
    const EncodingFacts facts = encodingOfBeginning(beginning);
    const std::string declared(declaredEncoding(beginning));
    const auto* const encoding =
        std::find_if(std::begin(encodings), std::end(encodings),
                     [&](const ByteEncoding& e) { return ascii::equal(e.name, declared); });
    const bool known = encoding != std::end(encodings);
    if (!facts.isWide() && (declared.empty() || (known && encoding->character == nullptr))) return {};
    if (!facts.isWide() && !known) return otherEncoding(source, shown(declared));
    const std::string name = facts.isWide() ? facts.wideName() : std::string(encoding->shown);
    Problem problem = makeFolder(source, name);
    if (problem.any()) return problem;
    source.path = source.folder->path() + "/text";
    source.begin = 0;
    problem = facts.isWide() ? writeAsUtf8(source.file, facts, source.path) : copyBytes(source, *encoding);
    if (!problem.any())
        note(fileWord(source.file) + "is " + name +
             " text. It is read as UTF-8, and what is written is UTF-8.");
    return problem;
}

}  // namespace tarn::datatool
