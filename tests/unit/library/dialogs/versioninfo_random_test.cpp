// SPDX-License-Identifier: Apache-2.0
//
// Version blocks of every shape, at random: words on one line or on lines of their own, braces, several languages, comments,
// joined and escaped strings. One field changes; all else of the block and of its file stays, byte by byte.
#include "library/dialogs/versioninfo.h"

#include "kernel/windows/resources.h"
#include "library/system/system.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace tarn {
namespace {

// A part of the text. One with a key says something that a change may replace.
struct Piece {
    std::string written, key = {}, says = {};
    bool null = false;
};

struct Field {
    const char* key;
    std::string VersionFields::*field;
};
constexpr Field textFields[] = {
    {"Comments", &VersionFields::comments},        {"CompanyName", &VersionFields::company},
    {"LegalCopyright", &VersionFields::copyright}, {"LegalTrademarks", &VersionFields::trademarks},
    {"ProductName", &VersionFields::product},      {"FileDescription", &VersionFields::description}};

class Maker {
public:
    explicit Maker(unsigned seed) : random_(seed) {}
    std::vector<Piece> block();
    std::string statements();
    std::size_t below(std::size_t n) { return random_() % n; }
    bool one() { return below(2) == 0; }
    std::string any(std::initializer_list<const char*> of) { return *(of.begin() + below(of.size())); }
    std::string text() {
        return any({"", "Ann", "a b", "x \"q\"", "END", "}", "{ BEGIN", "// none", "\\", "C:\\d\\", "\\\"",
                    "a\\0b", "\xc3\xa4\xff", "VALUE", " blanks ", "\"", "FILEVERSION 9,9"});
    }
    static std::string encoded(const std::string& text, bool null, bool escaped);

private:
    void add(const std::string& written) { pieces_.push_back({written}); }
    std::string part() {
        return any({" ", " ", "\n", "\n", "\t", "\n  ", "\n\n", " // END of \"it\n", "\n// BEGIN {\n\t"});
    }
    void value();
    void numbers(const char* word);
    void table();
    void open() { add((one() ? "BEGIN" : "{") + part()); }
    void close() { add((one() ? "END" : "}") + part()); }
    std::mt19937 random_;
    std::vector<Piece> pieces_;
};

std::string Maker::encoded(const std::string& text, bool null, bool escaped) {
    std::string value;
    std::size_t run = 0;
    for (const char c : text) {
        if (c == '"') value += std::string(run, '\\') + (escaped ? '\\' : '"');
        value += c;
        run = c == '\\' ? run + 1 : 0;
    }
    return '"' + value + (null ? "\\0" : std::string(run, '\\')) + '"';
}

void Maker::value() {
    add(any({"VALUE", "value"}) + any({" ", "\t", "\n"}));
    if (below(8) == 0) return add("\"Translation\", 0x809, 1200" + part());
    const bool version = below(5) == 0;
    const std::string key = version         ? any({"FileVersion", "ProductVersion"})
                            : below(5) == 0 ? any({"InternalName", "PrivateBuild"})
                                            : textFields[below(std::size(textFields))].key;
    const std::string says = version ? any({"1.2.3.4", "1, 2, 3, 4", "1.2 beta", "1.2.3.4.5", ""}) : text();
    add("\"" + key + "\"" + any({"", " "}) + "," + any({"", " ", "\n\t", " // the text\n"}));
    const bool null = one();
    std::string written = encoded(says, null, one());
    const bool more = below(6) == 0;
    if (more) written += " " + encoded("more", null, false);
    pieces_.push_back({written, key, version && more ? "joined" : says, null});
    add(part());
}

void Maker::numbers(const char* word) {
    const std::string says = word == std::string("FILEVERSION") || one() ? "1 2 3 4" : "1 2 0 0";
    std::string written;
    for (const char c : says)
        written += c == ' ' ? any({",", ", ", " ,", ",\n ", ", // next\n"}) : std::string(1, c);
    add(word + any({" ", "\t", "  "}));
    pieces_.push_back({written, word, says});
    add(part());
}

void Maker::table() {
    add("BLOCK \"StringFileInfo\"" + part());
    open();
    for (std::size_t languages = below(3); languages > 0; --languages) {
        add("BLOCK \"040904E4\"" + part());
        open();
        for (std::size_t values = below(6); values > 0; --values) value();
        close();
    }
    close();
}

std::vector<Piece> Maker::block() {
    pieces_.clear();
    add("1 VERSIONINFO" + any({"", "", " FIXED"}) + part());
    if (below(4) > 0) numbers("FILEVERSION");
    if (one()) numbers("PRODUCTVERSION");
    if (one()) add("FILEFLAGS 0x1L" + part());
    open();
    for (std::size_t tables = below(3); tables > 0; --tables) table();
    if (one()) {
        add("BLOCK \"VarFileInfo\"" + part());
        open();
        add("VALUE \"Translation\", 0x809, 1200" + part());
        close();
    }
    add((one() ? "END" : "}") + any({"\n", "\n", " // of all\n"}));
    return pieces_;
}

std::string Maker::statements() {
    std::string text;
    for (std::size_t n = below(4); n > 0; --n) {
        const std::string name = "n" + std::to_string(random_());
        text += any({"// BEGIN\n", "#define A 3\n", "what is this {\n", "\n"});
        text += name +
                any({" DIALOG\n  Label a 1\nEND\n", " BITMAP \"x\"\n", " VERSIONINFO { }\n", " MENU\nEND\n"});
    }
    return text;
}

std::string joined(const std::vector<Piece>& pieces) {
    std::string text;
    for (const Piece& piece : pieces) text += piece.written;
    return text;
}

std::string ended(const std::string& text, bool pairs) {
    return pairs ? STRREPLACE(text, "\n", "\r\n") : text;
}

// Numbers that take the place of others keep the comments between them.
std::string newNumbers(const std::string& old) {
    std::string text = "5,6,7,8";
    for (std::size_t at = 0; (at = old.find("// next", at)) != std::string::npos; ++at) text += " // next\n";
    return text;
}

// Whether the new text is the old one with something put in at one place.
bool isInsertion(const std::string& before, const std::string& after) {
    if (after.size() < before.size()) return false;
    const auto front = std::mismatch(before.begin(), before.end(), after.begin()).first - before.begin();
    const auto back = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first - before.rbegin();
    return static_cast<std::size_t>(front + back) >= before.size();
}

class VersionRandom : public testing::TestWithParam<unsigned> {
protected:
    void SetUp() override {
        view = platform::useView(platform::makeHeadlessView());
        main = folder / "a.cls";
        rc = folder / "a.rc";
        ASSERT_TRUE(os::saveFile(main, "").ok());
    }
    void TearDown() override { platform::useView(std::move(view)); }
    void make() {
        pieces = maker.block();
        ahead = maker.statements();
        behind = maker.statements();
        pairs = maker.one();
        ASSERT_TRUE(os::saveFile(rc, ended(ahead + joined(pieces) + behind, pairs)).ok());
        names = ResourceInfo(rc, "*", "*").text;
    }
    // Reads, and holds what was read against what was written.
    VersionFields load() {
        const LoadedVersion loaded = LOADVERSIONINFO(main, "1");
        EXPECT_TRUE(loaded.ok && loaded.found);
        VersionFields wanted;
        for (const Piece& piece : pieces) {
            if (piece.key == "FILEVERSION") wanted.version = piece.says;
            for (const Field& field : textFields)
                if (piece.key == field.key) wanted.*field.field = piece.says;
        }
        EXPECT_EQ(loaded.fields, wanted);
        return loaded.fields;
    }
    // `added`: something was to be put in, too.
    void save(const VersionFields& fields, bool added) {
        ASSERT_TRUE(SAVEVERSIONINFO(main, "1", fields));
        EXPECT_EQ(LOADVERSIONINFO(main, "1").fields, fields);
        EXPECT_EQ(ResourceInfo(rc, "*", "*").text, names);
        std::string text;
        os::readFile(rc, text);
        const std::string wanted = ended(ahead + joined(pieces) + behind, pairs);
        if (added) {
            EXPECT_TRUE(isInsertion(wanted, text)) << text << "\n-- from --\n" << wanted;
            EXPECT_TRUE(text.starts_with(ended(ahead, pairs)) && text.ends_with(ended(behind, pairs)))
                << text;
        } else {
            EXPECT_EQ(text, wanted);
        }
    }
    void changeText(const Field& field) {
        VersionFields fields = load();
        const std::string before = fields.*field.field, after = maker.text() + "!";
        bool found = false;
        for (Piece& piece : pieces) {
            if (piece.key != field.key || piece.says != before) continue;
            piece.written = Maker::encoded(after, piece.null, false);
            found = true;
        }
        fields.*field.field = after;
        save(fields, !found);
    }
    void changeVersion() {
        VersionFields fields = load();
        const bool numbered = !fields.version.empty();
        for (Piece& piece : pieces) {
            const bool number = piece.key == "FILEVERSION" || piece.key == "PRODUCTVERSION";
            if (number && numbered && piece.says == fields.version) piece.written = newNumbers(piece.written);
            const bool old =
                numbered ? piece.says == "1.2.3.4" || piece.says == "1, 2, 3, 4" : piece.says.empty();
            if ((piece.key == "FileVersion" || piece.key == "ProductVersion") && old)
                piece.written = Maker::encoded("5.6.7.8", piece.null, false);
        }
        fields.version = "5 6 7 8";
        save(fields, !numbered);
    }
    Maker maker{GetParam()};
    TempFolder folder;
    std::unique_ptr<platform::View> view;
    std::string main, rc, ahead, behind, names;
    std::vector<Piece> pieces;
    bool pairs = false;
};

TEST_P(VersionRandom, AChangedFieldChangesNothingElse) {
    for (int round = 0; round < 60 && !HasFailure(); ++round) {
        make();
        SCOPED_TRACE("round " + std::to_string(round) + ":\n" + joined(pieces));
        const std::size_t which = maker.below(std::size(textFields) + 2);
        if (which < std::size(textFields))
            changeText(textFields[which]);
        else
            changeVersion();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, VersionRandom, testing::Range(1U, 6U));

}  // namespace
}  // namespace tarn
