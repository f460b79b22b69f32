// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/package.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <lzma.h>
#include <memory>

namespace tarn::setup {
namespace {

constexpr std::string_view FirstLine = "tarnwick setup 1", Magic = "TARNPKG2";
constexpr std::size_t Piece = 256 * 1024;

struct TextField {
    std::string_view word;
    std::string Package::*value;
};
constexpr std::array<TextField, 7> textFields = {{{"name", &Package::name},
                                                  {"title", &Package::title},
                                                  {"product", &Package::product},
                                                  {"publisher", &Package::publisher},
                                                  {"copyright", &Package::copyright},
                                                  {"version", &Package::version},
                                                  {"program", &Package::program}}};

constexpr std::string_view placeWords[] = {"menu", "desktop"};
constexpr std::string_view kindWords[] = {"icon", "plain", "uninstall"};

// The text up to the next blank, which is taken off with it.
std::string_view nextWord(std::string_view& text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

template <std::size_t count>
std::size_t placeOf(std::string_view word, const std::string_view (&words)[count]) {
    return static_cast<std::size_t>(std::find(words, words + count, word) - words);
}

bool readShortcut(std::string_view text, Package& package) {
    const std::size_t place = placeOf(nextWord(text), placeWords), kind = placeOf(text, kindWords);
    if (place == std::size(placeWords) || kind == std::size(kindWords)) return false;
    package.shortcuts.push_back({static_cast<Shortcut::Place>(place), static_cast<Shortcut::Kind>(kind)});
    return true;
}

bool readFile(std::string_view text, Package& package) {
    const std::string_view mode = nextWord(text), size = nextWord(text);
    PackedFile file{std::string(text), 0, mode == "x"};
    const auto [end, error] = std::from_chars(size.data(), size.data() + size.size(), file.size);
    if (error != std::errc() || end != size.data() + size.size() || file.size < 0 || !isPlainName(text) ||
        package.holds(text) || package.size() + file.size > MaxPackageSize || (mode != "x" && mode != "-"))
        return false;
    package.files.push_back(std::move(file));
    return true;
}

bool readLine(std::string_view line, Package& package) {
    const std::string_view word = nextWord(line);
    if (word == "file") return readFile(line, package);
    if (word == "shortcut") return readShortcut(line, package);
    const auto* field = std::find_if(textFields.begin(), textFields.end(),
                                     [word](const TextField& one) { return one.word == word; });
    if (field == textFields.end()) return false;
    package.*(field->value) = line;
    return true;
}

std::string littleEndian(std::uint64_t number) {
    std::string bytes;
    for (int i = 0; i < 8; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
    return bytes;
}

std::uint64_t fromLittleEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = 8; i-- > 0;) number = number << 8U | static_cast<unsigned char>(bytes[i]);
    return number;
}

}  // namespace

std::int64_t Package::size() const {
    std::int64_t sum = 0;
    for (const PackedFile& file : files) sum += file.size;
    return sum;
}

bool Package::holds(std::string_view file) const {
    return std::any_of(files.begin(), files.end(), [&](const PackedFile& one) { return one.name == file; });
}

bool isPlainName(std::string_view name) {
    const auto bad = [](char c) { return c == '/' || c == '\\' || static_cast<unsigned char>(c) < ' '; };
    constexpr std::size_t Longest = 240;  // leaves room for what is put behind names
    return !name.empty() && name.size() <= Longest && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(), bad);
}

std::string headOf(const Package& package) {
    std::string head = std::string(FirstLine) + "\n";
    for (const TextField& field : textFields)
        head.append(field.word).append(" ").append(package.*field.value).append("\n");
    for (const Shortcut& one : package.shortcuts)
        head.append("shortcut ")
            .append(placeWords[static_cast<std::size_t>(one.place)])
            .append(" ")
            .append(kindWords[static_cast<std::size_t>(one.kind)])
            .append("\n");
    for (const PackedFile& file : package.files)
        head.append(file.executable ? "file x " : "file - ")
            .append(std::to_string(file.size))
            .append(" ")
            .append(file.name)
            .append("\n");
    return head + "\n";
}

std::string readHead(std::string_view head, Package& package) {
    bool first = true;
    while (!head.empty()) {
        const std::size_t end = std::min(head.find('\n'), head.size());
        const std::string_view line = head.substr(0, end);
        head.remove_prefix(std::min(end + 1, head.size()));
        if (line.empty()) break;
        if (first ? line != FirstLine : !readLine(line, package))
            return "the package has a line that is not known: " + std::string(line);
        first = false;
    }
    if (!isPlainName(package.name) || !package.holds(package.program)) return "the package names no program";
    return {};
}

// ---- the one file ----

std::string trailerOf(const Layout& layout, std::uint64_t sum) {
    std::string trailer(Magic);
    for (const std::int64_t part : {layout.first, layout.program, layout.package})
        trailer += littleEndian(static_cast<std::uint64_t>(part));
    sum = addToSum(sum, trailer);
    return trailer + littleEndian(sum);
}

std::uint64_t addToSum(std::uint64_t sum, std::string_view bytes) {
    return ::lzma_crc64(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), sum);
}

namespace {

// The sum of the first bytes of a file; false if it has not as many.
bool sumOfFirst(os::Handle handle, std::int64_t count, std::uint64_t& sum) {
    const auto piece = std::make_unique<char[]>(Piece);
    sum = 0;
    for (std::int64_t at = 0; at < count;) {
        std::size_t got = 0;
        const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(Piece, count - at));
        if (os::readUpTo(handle, at, piece.get(), wanted, got) != os::FileError::None || got == 0)
            return false;
        sum = addToSum(sum, {piece.get(), got});
        at += static_cast<std::int64_t>(got);
    }
    return true;
}

Layout layoutIn(std::string_view trailer) {
    const auto part = [trailer](std::size_t at) {
        return static_cast<std::int64_t>(fromLittleEndian(trailer.substr(at)));
    };
    return {part(8), part(16), part(24)};
}

// Whether the parts are those of so many bytes; no sum of them can overflow.
bool isOf(const Layout& layout, std::int64_t size) {
    for (const std::int64_t part : {layout.first, layout.program, layout.package}) {
        if (part < 0 || part > size) return false;
        size -= part;
    }
    return size == 0;
}

Whole check(os::Handle handle, Layout& layout) {
    std::int64_t size = 0;
    std::array<char, TrailerSize> bytes{};
    std::size_t got = 0;
    constexpr auto Trailer = static_cast<std::int64_t>(TrailerSize);
    if (os::files().size(handle, size) != os::FileError::None || size < Trailer) return Whole::NoPackage;
    if (os::readUpTo(handle, size - Trailer, bytes.data(), bytes.size(), got) != os::FileError::None ||
        got != bytes.size())
        return Whole::Damaged;
    const std::string_view trailer(bytes.data(), bytes.size());
    if (!trailer.starts_with(Magic)) return Whole::NoPackage;
    layout = layoutIn(trailer);
    std::uint64_t sum = 0;
    constexpr std::int64_t SumSize = 8;
    return isOf(layout, size - Trailer) && sumOfFirst(handle, size - SumSize, sum) &&
                   sum == fromLittleEndian(trailer.substr(32))
               ? Whole::Yes
               : Whole::Damaged;
}

}  // namespace

Whole checkInstaller(const std::string& file, Layout& layout) {
    os::Handle handle = -1;
    if (os::files().open(file, os::OpenMode::Read, 0, handle) != os::FileError::None) return Whole::Damaged;
    const Whole whole = check(handle, layout);
    os::files().close(handle);
    return whole;
}

bool sumOf(const std::string& file, std::uint64_t& sum) {
    os::Handle handle = -1;
    std::int64_t size = 0;
    if (os::files().open(file, os::OpenMode::Read, 0, handle) != os::FileError::None) return false;
    const bool ok = os::files().size(handle, size) == os::FileError::None && sumOfFirst(handle, size, sum);
    os::files().close(handle);
    return ok;
}

}  // namespace tarn::setup
