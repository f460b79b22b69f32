// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/encoding.h"

#include "os/paths.h"
#include "os/text/utf8.h"
#include "tarn_data/base/files.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

constexpr std::size_t blockBytes = std::size_t{256} * 1024;
constexpr std::size_t longestCharacter = 4;

unsigned byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

// ---- wide characters without a mark ----

// Of text in Latin letters most bytes of some places in each character are 0, and nearly none of the others.
bool isOfForm(std::string_view bytes, std::string_view zeroAt) {
    constexpr std::size_t least = 4, most = 4096;
    const std::size_t width = zeroAt.size(), characters = std::min(most, bytes.size()) / width;
    std::size_t zeros[4] = {};
    for (std::size_t i = 0; i < characters * width; ++i) zeros[i % width] += bytes[i] == '\0' ? 1U : 0U;
    bool fits = characters >= least;
    for (std::size_t i = 0; i < width && fits; ++i)
        fits = zeroAt[i] == '0' ? zeros[i] * 2 >= characters : zeros[i] * 8 <= characters;
    return fits;
}

EncodingFacts guessWide(std::string_view bytes) {
    constexpr struct {
        std::string_view zeroAt;
        Encoding encoding;
    } forms[] = {{"x000", Encoding::Utf32Little},
                 {"000x", Encoding::Utf32Big},
                 {"x0", Encoding::Utf16Little},
                 {"0x", Encoding::Utf16Big}};
    for (const auto& form : forms) {
        if (isOfForm(bytes, form.zeroAt)) return {form.encoding};
    }
    return {};
}

// ---- UTF-8 ----

// Where the first byte stands that is no part of a character, and its line.
class Utf8Scan {
public:
    // The bytes from `offset` on; false once a bad one was found. A character that the end of these bytes
    // cuts is left for the next ones: `kept` of them, which must come again.
    bool take(std::string_view bytes, std::int64_t offset, bool last, std::size_t& kept) {
        kept = 0;
        for (std::size_t i = 0; i < bytes.size();) {
            if (byteAt(bytes, i) < 0x80) {
                line_ += bytes[i++] == '\n' ? 1 : 0;
                continue;
            }
            const std::size_t length = utf8::lengthOfFirst(bytes.substr(i));
            if (length == 0 && !last && bytes.size() - i < longestCharacter) {
                kept = bytes.size() - i;
                return true;
            }
            if (length == 0) {
                bad_ = offset + static_cast<std::int64_t>(i);
                return false;
            }
            i += length;
        }
        return true;
    }
    [[nodiscard]] std::int64_t bad() const { return bad_; }
    [[nodiscard]] std::int64_t line() const { return line_; }

private:
    std::int64_t bad_ = -1, line_ = 1;
};

// Bytes that are control characters in Latin-1, and letters and marks in Windows-1252.
bool hasHighControls(std::string_view bytes) {
    return std::any_of(bytes.begin(), bytes.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 && byte < 0xA0;
    });
}

}  // namespace

// ---- recognising ----

EncodingFacts encodingOfBeginning(std::string_view bytes) {
    constexpr struct {
        std::string_view mark;
        Encoding encoding;
    } marks[] = {
        {"\xEF\xBB\xBF", Encoding::Utf8},
        // Ahead of that of UTF-16, which it begins with: no text begins with a zero character.
        {std::string_view("\xFF\xFE\0\0", 4), Encoding::Utf32Little},
        {std::string_view("\0\0\xFE\xFF", 4), Encoding::Utf32Big},
        {"\xFF\xFE", Encoding::Utf16Little},
        {"\xFE\xFF", Encoding::Utf16Big},
    };
    for (const auto& row : marks) {
        if (bytes.starts_with(row.mark)) return {row.encoding, row.mark.size()};
    }
    return guessWide(bytes);
}

Problem findEncoding(const std::string& file, EncodingFacts& facts) {
    FileRows rows;
    std::string block, kept;
    Utf8Scan scan;
    facts = encodingOfBeginning(beginningOf(file));
    if (facts.isWide()) return {};
    if (!rows.open(file)) return unreadable(file, rows.error());
    Steps steps(rows.size());
    for (auto at = static_cast<std::int64_t>(facts.markBytes); at < rows.size();) {
        if (!rows.read(at, blockBytes, block)) return unreadable(file, rows.error());
        if (block.empty()) break;
        std::size_t again = 0;
        const bool last = at + static_cast<std::int64_t>(block.size()) >= rows.size();
        if (!scan.take(block, at, last, again)) {
            facts.firstBad = scan.bad();
            facts.firstBadLine = scan.line();
            facts.encoding = hasHighControls(block) ? Encoding::Windows1252 : Encoding::Latin1;
            return {};
        }
        const auto taken = static_cast<std::int64_t>(block.size() - again);
        at += taken;
        if (!steps.step(taken)) return stoppedProblem();
    }
    return {};
}

// ---- what the user can do ----

std::string_view encodingName(Encoding encoding) {
    constexpr std::string_view names[] = {"UTF-8",    "UTF-16LE",   "UTF-16BE",    "UTF-32LE",
                                          "UTF-32BE", "ISO-8859-1", "WINDOWS-1252"};
    return names[static_cast<std::size_t>(encoding)];
}

namespace {

std::string quotedForShell(const std::string& name) {
    std::string quoted = "'";
    for (const char c : name) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

}  // namespace

std::string iconvCommand(const std::string& file, Encoding encoding) {
    const std::string_view extension = paths::extension(file);
    const std::string made = std::string(paths::stem(file)) + "-utf8" + std::string(extension);
    return "iconv -f " + std::string(encodingName(encoding)) + " -t UTF-8 " + quotedForShell(file) + " >" +
           quotedForShell(made);
}

// ---- converting ----

namespace {

// Pairs of bytes, or fours, on their way to UTF-8. A character of two pairs may stand in two blocks.
class WideText {
public:
    explicit WideText(const EncodingFacts& facts)
        : little_(facts.encoding == Encoding::Utf16Little || facts.encoding == Encoding::Utf32Little),
          unitBytes_(facts.isUtf32() ? 4 : 2) {}
    // False: the unit at `bad()`, a byte of these, belongs to no character.
    bool take(std::string_view bytes, std::string& text) {
        for (std::size_t i = 0; i + unitBytes_ <= bytes.size(); i += unitBytes_) {
            std::uint32_t unit = 0;
            for (std::size_t n = 0; n < unitBytes_; ++n)
                unit = unit << 8U | byteAt(bytes, little_ ? i + unitBytes_ - 1 - n : i + n);
            bad_ = i;
            if (unitBytes_ == 4 ? !takeCharacter(unit, text) : !takeUnit(unit, text)) return false;
        }
        return true;
    }
    [[nodiscard]] std::size_t bad() const { return bad_; }
    [[nodiscard]] std::size_t unitBytes() const { return unitBytes_; }
    [[nodiscard]] bool isWhole() const { return first_ == 0; }

private:
    static bool takeCharacter(std::uint32_t character, std::string& text) {
        if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) return false;
        utf8::append(text, character);
        return true;
    }
    bool takeUnit(std::uint32_t unit, std::string& text) {
        const bool second = unit >= 0xDC00 && unit < 0xE000;
        if (second != (first_ != 0)) return false;
        if (second) {
            utf8::append(text, 0x10000 + ((first_ - 0xD800) << 10U) + (unit - 0xDC00));
            first_ = 0;
        } else if (unit >= 0xD800 && unit < 0xDC00) {
            first_ = unit;
        } else {
            utf8::append(text, unit);
        }
        return true;
    }

    bool little_;
    std::size_t unitBytes_;
    std::uint32_t first_ = 0;  // of the two of one character
    std::size_t bad_ = 0;
};

Problem notWhole(const std::string& file, const EncodingFacts& facts, std::int64_t at) {
    return {fileWord(file) + "is " + facts.wideName() + " text, but for the bytes at " + std::to_string(at) +
                ", which are no character.",
            "Take it from where it came once more; it may have been cut."};
}

// Closes the file however the writing ends.
struct NewFile {
    os::Handle handle = -1;
    ~NewFile() {
        if (handle >= 0) os::files().close(handle);
    }
};

}  // namespace

Problem writeAsUtf8(const std::string& file, const EncodingFacts& facts, const std::string& to) {
    constexpr std::uint32_t onlyMine = 0600;
    FileRows rows;
    NewFile out;
    if (!rows.open(file)) return unreadable(file, rows.error());
    os::FileError error = os::files().open(to, os::OpenMode::CreateNew, onlyMine, out.handle);
    Steps steps(rows.size());
    WideText wide(facts);
    std::string block, text;
    std::int64_t written = 0;
    for (auto at = static_cast<std::int64_t>(facts.markBytes);
         at < rows.size() && error == os::FileError::None; at += static_cast<std::int64_t>(block.size())) {
        if (!rows.read(at, blockBytes, block)) return unreadable(file, rows.error());
        if (!steps.step(static_cast<std::int64_t>(block.size()))) return stoppedProblem();
        text.clear();
        if (!wide.take(block, text)) return notWhole(file, facts, at + static_cast<std::int64_t>(wide.bad()));
        const auto over = static_cast<std::int64_t>(block.size() % wide.unitBytes());
        if (over != 0) return notWhole(file, facts, rows.size() - over);
        error = os::files().write(out.handle, written, text);
        written += static_cast<std::int64_t>(text.size());
    }
    if (error != os::FileError::None)
        return {"'" + to + "' cannot be written: " + std::string(os::describe(error)),
                "Choose a folder with more room with TMPDIR, or convert the file first: " +
                    iconvCommand(file, facts.encoding)};
    return wide.isWhole() ? Problem() : notWhole(file, facts, rows.size() - 2);
}

}  // namespace tarn::datatool
