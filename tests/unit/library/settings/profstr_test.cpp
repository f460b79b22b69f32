// SPDX-License-Identifier: Apache-2.0
//
// Profile strings: reading, the places where entries go, hostile files, and a random comparison with a simple model.
#include "os/text/ascii.h"
#include "unit/library/settings/profstr_fixture.h"

#include <random>

namespace tarn {
namespace {

// ---- reading ----

TEST_F(Profile, ValuesAreFoundAsTheFileRulesSay) {
    start("; head\r\n"
          "[Main]\r\n"
          "key =blank\r\n"
          ";Hidden=comment\r\n"
          "Hidden=real\r\n"
          "Plain=a = b ;c \r\n"
          "Quoted=\" x \"\r\n"
          "EmptyQuoted=\"\"\r\n"
          "OneQuote=\"\r\n"
          "Half=\"x\r\n"
          "Nested=\"\"x\"\"\r\n"
          "\r\n"
          "BehindBlank=found\r\n"
          " Indented=no\r\n"
          "Twice=1\r\nTwice=2\r\n"
          "CrEnds=v\r\r\n"
          "[bad-name]\r\nInBad=1\r\n"
          "[Next.one_2 x]\nLf=unix\nLast=end");
    struct Case {
        const char *section, *key, *value;
    };
    const Case cases[] = {
        {"Main", "key", ""},
        {"Main", "Hidden", "real"},
        {"Main", ";Hidden", ""},
        {"Main", "Plain", "a = b ;c "},
        {"Main", "Quoted", " x "},
        {"Main", "EmptyQuoted", ""},
        {"Main", "OneQuote", "\""},
        {"Main", "Half", "\"x"},
        {"Main", "Nested", "\"x\""},
        {"Main", "BehindBlank", "found"},
        {"Main", "Indented", ""},
        {"Main", " Indented", ""},
        {"Main", "Twice", "1"},
        {"Main", "CrEnds", "v"},
        {"MAIN", "pLAIN", "a = b ;c "},
        {"Main", "Plai", ""},
        {"Main", "Plainx", ""},
        {"Main", "InBad", ""},
        {"Main", "Lf", ""},
        {"bad-name", "InBad", ""},
        {"next.ONE_2 X", "lf", "unix"},
        {"Next.one_2 x", "Last", "end"},
        {"Absent", "key", ""},
        {"", "Plain", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(get(c.section, c.key), c.value) << c.section << "/" << c.key;
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Profile, OnlyWholeHeaderLinesInColumnOneAreSections) {
    start("[One]\r\n [Two]\r\n[]\r\n[Three\r\n[Four]x\r\n[Fi-ve]\r\n[Six\xC3]\r\nx[Seven]\n[Eight]\n[ONE]");
    EXPECT_EQ(PROFILESTRSECTIONS(File), "One\nEight\nONE\n");
}

TEST_F(Profile, UmlautsAreComparedByteByByteAndOnlyAsciiLettersFold) {
    start("[Main]\r\nk\xE4=1\r\n_A9=2\r\n");
    EXPECT_EQ(get("Main", "k\xE4"), "");
    EXPECT_EQ(get("Main", "_a9"), "2");
}

TEST_F(Profile, KeysAreThoseOfTheValuesLineByLineWithoutBlanks) {
    start("[A]\r\nkey =no\r\n\tb\t= x\r\n;c=1\r\nk=v\r\n");
    EXPECT_EQ(get("A", ""), "no\n x\nv\n");
    EXPECT_EQ(PROFILESTRKEYS(File, "A"), "key\nb\nk\n");
    EXPECT_EQ(get("A", "key"), "") << "which makes it no entry";
}

TEST_F(Profile, AWholeSectionReadEndsAtABlankLineWhileKeysGoOn) {
    start(
        "[L]\r\n1=\"first\"\r\n;2=no\r\nno equals\r\n =odd\r\n3=a=b\r\n4=\r\n\r\n5=behind\r\n[M]\r\n6=x\r\n");
    EXPECT_EQ(get("L", ""), "first\nodd\na=b\n\n");
    EXPECT_EQ(PROFILESTRKEYS(File, "L"), "1\n\n3\n4\n5\n");
    EXPECT_EQ(get("L", "5"), "behind");
    EXPECT_EQ(PROFILESTRKEYS(File, "Absent"), "");
    EXPECT_EQ(get("Absent", ""), "");
}

TEST_F(Profile, NumbersThatDoNotConvertReadAsZero) {
    start("[N]\na=12\nb=-7\nc=+3\nd=12x\ne=\nf=99999999999\ng= "
          "5\nh=\"8\"\ni=2147483647\nj=-2147483648\nk=2147483648\n");
    const std::pair<const char*, int> cases[] = {
        {"a", 12}, {"b", -7}, {"c", 3}, {"d", 0},          {"e", 0},
        {"f", 0},  {"g", 0},  {"h", 8}, {"i", 2147483647}, {"j", -2147483647 - 1},
        {"k", 0},  {"z", 0}};
    for (const auto& [key, value] : cases) EXPECT_EQ(PROFILESTRGETINT(File, "N", key), value) << key;
}

TEST_F(Profile, AMissingFileAnEmptyNameAndAFileInTheWayReadAsEmpty) {
    EXPECT_EQ(get("Main", "x"), "");
    EXPECT_EQ(PROFILESTRGET("", "Main", "x"), "");
    EXPECT_EQ(PROFILESTRSECTIONS(File), "");
    start("[Main]\nx=1\n");
    EXPECT_EQ(PROFILESTRGET(File + "/deeper", "Main", "x"), "");
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- writing ----

struct Put {
    const char *what, *before, *section, *key, *value, *after;
};
const Put puts[] = {
    {"empty file", "", "S", "k", "v", "\r\n[S]\r\nk=v\r\n"},
    {"absent section", "[A]\r\nx=1\r\n", "B", "k", "v", "[A]\r\nx=1\r\n\r\n[B]\r\nk=v\r\n"},
    {"absent section, no final newline", "[A]\r\nx=1", "B", "k", "v", "[A]\r\nx=1\r\n[B]\r\nk=v\r\n"},
    {"new key behind the last entry", "[A]\r\nx=1\r\n;c\r\ny=2\r\n\r\n[B]\r\n", "a", "K", "v",
     "[A]\r\nx=1\r\n;c\r\ny=2\r\nK=v\r\n\r\n[B]\r\n"},
    {"new key before text that is no entry", "[A]\r\nx=1\r\n text\r\ny=2\r\n", "A", "k", "v",
     "[A]\r\nx=1\r\nk=v\r\n text\r\ny=2\r\n"},
    {"new key in an empty section", "[A]\r\n[B]\r\n", "A", "k", "v", "[A]\r\nk=v\r\n[B]\r\n"},
    {"new key behind a header without newline", "[A]", "A", "k", "v", "[A]\r\nk=v\r\n"},
    {"new key behind a last line without newline", "[A]\nx=1", "A", "k", "v", "[A]\nx=1\r\nk=v\r\n"},
    {"present key keeps its place and takes the new spelling", "[A]\r\nkey=1\r\ny=2\r\n", "A", "KEY", "3",
     "[A]\r\nKEY=3\r\ny=2\r\n"},
    {"present key behind a blank line", "[A]\r\n\r\nk=1\r\n", "A", "k", "2", "[A]\r\n\r\nk=2\r\n"},
    {"present key in the last line", "[A]\nx=1\nk=1", "A", "k", "2", "[A]\nx=1\nk=2\r\n"},
    {"commented entry stays, the new one follows", "[A]\r\n;k=1\r\n", "A", "k", "2",
     "[A]\r\n;k=1\r\nk=2\r\n"},
    {"first of two equal sections", "[A]\r\nx=1\r\n[A]\r\nk=1\r\n", "A", "k", "2",
     "[A]\r\nx=1\r\nk=2\r\n[A]\r\nk=1\r\n"},
    {"header with a hyphen ends the section", "[A]\r\n[b-c]\r\nk=1\r\n", "A", "k", "2",
     "[A]\r\nk=2\r\n[b-c]\r\nk=1\r\n"},
    {"section with a hyphen is never found again", "[b-c]\r\nk=1\r\n", "b-c", "k", "2",
     "[b-c]\r\nk=1\r\n\r\n[b-c]\r\nk=2\r\n"},
    {"line ends in a value become blanks", "[A]\r\n", "A", "k", "a\n[B]\r\nc\n", "[A]\r\nk=a [B]  c\r\n"},
    {"list in an absent section", "x", "L", "", "a\nb\n", "x\r\n[L]\r\n1=a\r\n2=b\r\n"},
    {"shorter list over a longer one", "[L]\r\n1=a\r\n2=b\r\n3=c\r\n4=d\r\n5=e\r\n\r\n[M]\r\n", "L", "",
     "x\r\ny\nz", "[L]\r\n1=x\r\n2=y\r\n3=z\r\n\r\n[M]\r\n"},
    {"list drops comments and keeps what follows", "[L]\r\n;c\r\nk=1\r\n rest\r\n2=b\r\n", "L", "", "x\n",
     "[L]\r\n1=x\r\n rest\r\n2=b\r\n"},
    {"empty list", "[L]\r\n1=a\r\n[M]\r\n", "L", "", "", "[L]\r\n[M]\r\n"},
    {"list with empty lines", "[L]\r\n", "L", "", "\n\nx\n", "[L]\r\n1=\r\n2=\r\n3=x\r\n"},
    {"list behind a header without newline", "[L]", "L", "", "a", "[L]\r\n1=a\r\n"},
};

TEST_F(Profile, EntriesAndListsAreWrittenWhereTheyBelong) {
    for (const Put& c : puts) {
        start(c.before);
        PROFILESTRPUT(File, c.section, c.key, c.value);
        EXPECT_EQ(text(), c.after) << c.what;
    }
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Profile, AMissingFileIsMade) {
    files.putFolder("/home/user");
    PROFILESTRPUT(File, "Main", "LastPath", "\"/tmp\"");
    EXPECT_EQ(text(), "\r\n[Main]\r\nLastPath=\"/tmp\"\r\n");
    EXPECT_EQ(get("main", "lastpath"), "/tmp");
}

TEST_F(Profile, AnEmptyNameOrSectionWritesNothing) {
    start("[A]\r\nk=1\r\n");
    files.clearLog();
    PROFILESTRPUT("", "A", "k", "2");
    PROFILESTRPUT(File, "", "k", "2");
    PROFILESTRDEL("", "A", "k");
    PROFILESTRDEL(File, "", "k");
    EXPECT_EQ(files.calls(), 0);
    EXPECT_EQ(text(), "[A]\r\nk=1\r\n");
    EXPECT_EQ(ErrorCell(), 0);
}

struct Del {
    const char *what, *before, *section, *key, *after;
};
const Del dels[] = {
    {"entry", "[A]\r\nx=1\r\nk=2\r\ny=3\r\n", "a", "K", "[A]\r\nx=1\r\ny=3\r\n"},
    {"entry in the last line", "[A]\nx=1\nk=2", "A", "k", "[A]\nx=1\n"},
    {"only the first of two", "[A]\nk=1\nk=2\n", "A", "k", "[A]\nk=2\n"},
    {"absent entry", "[A]\nx=1\n[B]\nk=1\n", "A", "k", "[A]\nx=1\n[B]\nk=1\n"},
    {"last section", "[A]\r\nx=1\r\n\r\n[B]\r\nk=1\r\n", "B", "", "[A]\r\nx=1\r\n\r\n"},
    {"middle section with its blank lines", "[A]\nx=1\n[B]\nk=1\n\nl=2\n\n[C]\n", "b", "", "[A]\nx=1\n[C]\n"},
    {"only section", "[A]\nx=1\n", "A", "", ""},
    {"absent section", "[A]\nx=1\n", "B", "", "[A]\nx=1\n"},
    {"section up to an unreadable header", "[A]\nx=1\n[b-c]\ny=1\n", "A", "", "[b-c]\ny=1\n"},
};

TEST_F(Profile, EntriesAndSectionsAreDeleted) {
    for (const Del& c : dels) {
        start(c.before);
        PROFILESTRDEL(File, c.section, c.key);
        EXPECT_EQ(text(), c.after) << c.what;
    }
}

TEST_F(Profile, DeletingFromAMissingFileDoesNotMakeIt) {
    files.putFolder("/home/user");
    PROFILESTRDEL(File, "A", "k");
    PROFILESTRDEL(File, "A", "");
    EXPECT_FALSE(files.has(File));
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- hostile files ----

TEST_F(Profile, HostileFilesAreReadAndKeptByteForByte) {
    const std::string nul("[A]\r\nx=\0a\0\r\n\0=1\r\n", 18);
    start(nul);
    EXPECT_EQ(get("A", "x"), std::string("\0a\0", 3));
    PROFILESTRPUT(File, "A", "k", "v");
    EXPECT_EQ(text(), nul.substr(0, 12) + "k=v\r\n" + nul.substr(12));

    start("[A]\rk=1\r[B]\rk=2\r");  // CR alone ends no line
    EXPECT_EQ(PROFILESTRSECTIONS(File), "");
    PROFILESTRPUT(File, "A", "k", "v");
    EXPECT_EQ(text(), "[A]\rk=1\r[B]\rk=2\r\r\n[A]\r\nk=v\r\n");

    for (const char* shape :
         {"", "\n", "\r\n", "[", "]", "[]", "=", ";", "[A", "[A]", "[A]\n=", "[A]\n[", "\n\n\n"}) {
        start(shape);
        EXPECT_EQ(get("A", "k"), "") << shape;
        PROFILESTRPUT(File, "A", "k", "v");
        EXPECT_EQ(get("A", "k"), "v") << shape;
        PROFILESTRDEL(File, "A", "k");
        EXPECT_EQ(get("A", "k"), "") << shape;
    }
}

TEST_F(Profile, HugeLinesAndManyBracketsStayLinear) {
    const std::string line(10'000'000, '[');
    start("[A]\nx=" + line + "\nk=1\n" + line + "\n[B]\nk=2\n");
    EXPECT_EQ(get("A", "k"), "1");
    EXPECT_EQ(get("B", "k"), "2");
    EXPECT_EQ(get("A", "x").size(), line.size());
    std::string many;
    for (int i = 0; i < 300'000; ++i) many += "[\n";
    start(many + "[A]\nk=1\n");
    EXPECT_EQ(get("A", "k"), "1");
}

// ---- a model ----

struct Entry {
    std::string key, value;
};
struct ModelSection {
    std::string name;
    std::vector<Entry> entries;
};

class Model {
public:
    void put(const std::string& section, const std::string& key, const std::string& value) {
        std::vector<Entry>& entries = make(section).entries;
        for (Entry& e : entries) {
            if (!ascii::equal(e.key, key)) continue;
            e = {key, value};
            return;
        }
        entries.push_back({key, value});
    }
    void putList(const std::string& section, const std::vector<std::string>& lines) {
        std::vector<Entry>& entries = make(section).entries;
        entries.clear();
        for (const std::string& line : lines) entries.push_back({std::to_string(entries.size() + 1), line});
    }
    void remove(const std::string& section, const std::string& key) {
        for (std::size_t i = 0; i < sections.size(); ++i) {
            if (!ascii::equal(sections[i].name, section)) continue;
            if (key.empty()) {
                sections.erase(sections.begin() + static_cast<std::ptrdiff_t>(i));
                return;
            }
            std::erase_if(sections[i].entries, [&](const Entry& e) { return ascii::equal(e.key, key); });
            return;
        }
    }
    std::vector<ModelSection> sections;

private:
    ModelSection& make(const std::string& name) {
        for (ModelSection& s : sections)
            if (ascii::equal(s.name, name)) return s;
        sections.push_back({name, {}});
        return sections.back();
    }
};

std::string unquoted(const std::string& value) {
    return value.size() >= 2 && value.front() == '"' && value.back() == '"'
               ? value.substr(1, value.size() - 2)
               : value;
}

TEST_F(Profile, RandomChangesAgreeWithASimpleModel) {
    const char* sections[] = {"Main", "MAIN", "MRU", "Hilite.cls", "two words", "x_1"};
    const char* keys[] = {"a", "A", "key", "Key_2", "1", "2"};
    const char* values[] = {"",   "v",   "\"quoted\"", "\"",       "a=b",
                            ";c", "[x]", " blank ",    "\xC3\xA4", "long long text"};
    files.putFolder("/home/user");
    std::mt19937 random(7);
    const auto pick = [&](auto& from) { return std::string(from[random() % std::size(from)]); };
    Model model;
    for (int step = 0; step < 3000; ++step) {
        const std::string section = pick(sections), key = pick(keys);
        switch (random() % 8) {
        case 0: model.remove(section, ""), PROFILESTRDEL(File, section, ""); break;
        case 1: model.remove(section, key), PROFILESTRDEL(File, section, key); break;
        case 2: {
            std::vector<std::string> lines;
            std::string text;
            for (auto n = random() % 4; n > 0; --n)
                text += (lines.emplace_back(pick(values)), lines.back()) + "\n";
            model.putList(section, lines);
            PROFILESTRPUT(File, section, "", text);
            break;
        }
        default: {
            const std::string value = pick(values);
            model.put(section, key, value);
            PROFILESTRPUT(File, section, key, value);
        }
        }
        std::string names;
        for (const ModelSection& s : model.sections) {
            names += s.name + "\n";
            std::string allKeys, all;
            for (const Entry& e : s.entries) {
                allKeys += e.key + "\n";
                all += unquoted(e.value) + "\n";
                ASSERT_EQ(get(s.name, e.key), unquoted(e.value)) << step << " " << text();
            }
            ASSERT_EQ(PROFILESTRKEYS(File, s.name), allKeys) << step << " " << text();
            ASSERT_EQ(get(s.name, ""), all) << step << " " << text();
        }
        ASSERT_EQ(PROFILESTRSECTIONS(File), names) << step << " " << text();
    }
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
}  // namespace tarn
