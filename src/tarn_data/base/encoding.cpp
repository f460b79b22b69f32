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

// ---- UTF-16 without a mark ----

// Of text in Latin letters most of every second byte are 0, and nearly no other.
EncodingFacts guessWide(std::string_view bytes) {
    constexpr std::size_t least = 4, most = 4096;
    bytes = bytes.substr(0, std::min(most, bytes.size() / 2 * 2));
    std::size_t zeros[2] = {};
    for (std::size_t i = 0; i < bytes.size(); ++i) zeros[i % 2] += bytes[i] == '\0' ? 1U : 0U;
    const std::size_t pairs = bytes.size() / 2;
    const auto isWide = [&](std::size_t high, std::size_t low) {
        return pairs >= least && zeros[high] * 2 >= pairs && zeros[low] * 8 <= pairs;
    };
    if (isWide(1, 0)) return {Encoding::Utf16Little};
    if (isWide(0, 1)) return {Encoding::Utf16Big};
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
    if (facts.isUtf16()) return {};
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
    constexpr std::string_view names[] = {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1", "WINDOWS-1252"};
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

// Pairs of bytes on their way to UTF-8. A character of two pairs may stand in two blocks.
class WideText {
public:
    explicit WideText(bool little) : little_(little) {}
    // False: the pair at `bad()`, a byte of these, belongs to no character.
    bool take(std::string_view bytes, std::string& text) {
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            const std::uint32_t low = byteAt(bytes, i + (little_ ? 0 : 1)),
                                high = byteAt(bytes, i + (little_ ? 1 : 0));
            bad_ = i;
            if (!takeUnit(high << 8U | low, text)) return false;
        }
        return true;
    }
    [[nodiscard]] std::size_t bad() const { return bad_; }
    [[nodiscard]] bool isWhole() const { return first_ == 0; }

private:
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
    std::uint32_t first_ = 0;  // of the two of one character
    std::size_t bad_ = 0;
};

Problem notWhole(const std::string& file, std::int64_t at) {
    return {fileWord(file) + "is UTF-16 text, but for the bytes at " + std::to_string(at) +
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
    WideText wide(facts.encoding == Encoding::Utf16Little);
    std::string block, text;
    std::int64_t written = 0;
    for (auto at = static_cast<std::int64_t>(facts.markBytes);
         at < rows.size() && error == os::FileError::None; at += static_cast<std::int64_t>(block.size())) {
        if (!rows.read(at, blockBytes, block)) return unreadable(file, rows.error());
        if (!steps.step(static_cast<std::int64_t>(block.size()))) return stoppedProblem();
        text.clear();
        if (!wide.take(block, text)) return notWhole(file, at + static_cast<std::int64_t>(wide.bad()));
        if (block.size() % 2 != 0) return notWhole(file, rows.size() - 1);
        error = os::files().write(out.handle, written, text);
        written += static_cast<std::int64_t>(text.size());
    }
    if (error != os::FileError::None)
        return {"'" + to + "' cannot be written: " + std::string(os::describe(error)),
                "Choose a folder with more room with TMPDIR, or convert the file first: " +
                    iconvCommand(file, facts.encoding)};
    return wide.isWhole() ? Problem() : notWhole(file, rows.size() - 2);
}

}  // namespace tarn::datatool
