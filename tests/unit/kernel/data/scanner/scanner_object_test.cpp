// SPDX-License-Identifier: Apache-2.0
//
// Scanners as objects: any number of them at work at once, one inside another, beside that of the process.
#include "unit/kernel/scanner_fixture.h"

#include <memory>
#include <random>

using namespace tarn;

namespace {

const Entries words = {{1, "##ID"},      {2, "##UINT"},       {3, "<"},     {4, "include"},
                       {5, "##MLDQSTR"}, {0, "##WHITESPACE"}, {0, "##EOL"}, {6, "(*", "*)"}};
const Entries numbers = {{7, "##ID"}, {8, "##UFIXED"},     {9, "##UINT"},
                         {10, ","},   {0, "##WHITESPACE"}, {11, "##EOL"}};

class ScannerObjects : public ScannerFixture {
protected:
    void SetUp() override {
        ScannerFixture::SetUp();
        table = tableOf(words);
        other = tableOf(numbers);
    }
    static Scanned currentOf(const Scanner& s, ScanStatus status) {
        return {s.symbol(), std::string(s.symbolStr()), status, s.symbolLine()};
    }
    // All symbols before the end of the file.
    static ScannedList all(Scanner& s, const std::string& path, const SymbolTable& of) {
        ScannedList found;
        for (Scanned one = currentOf(s, s.open(path, &of, false)); one.symbol != SymbolEndOfFile;
             one = currentOf(s, s.next(&of)))
            found.push_back(one);
        s.close();
        return found;
    }
    ScannedList all(const std::string& path, const SymbolTable& of) {
        Scanner s;
        return all(s, path, of);
    }

    SymbolTable other{};
};

TEST_F(ScannerObjects, OneThatWasNeverOpenedIsAtItsEnd) {
    Scanner s;
    EXPECT_FALSE(s.isOpen());
    EXPECT_EQ(s.position(), 0);
    EXPECT_EQ(s.lineNumber(), 0);
    EXPECT_EQ(s.symbol(), 0);
    EXPECT_EQ(s.symbolLine(), 0);
    EXPECT_EQ(s.bytesRead(), 0);
    EXPECT_EQ(s.fileError(), os::FileError::None);
    EXPECT_EQ(s.symbolStr(), "");
    EXPECT_EQ(s.previousSymbolStr(), "");
    EXPECT_EQ(s.line(), "");
    EXPECT_EQ(s.remainder(), "");
    EXPECT_EQ(s.character(), 0);
    EXPECT_EQ(s.extraChar(), 0);
    EXPECT_EQ(s.extraChar2(), 0);
    char dump[200];
    s.dump(dump, sizeof dump);
    EXPECT_TRUE(std::string_view(dump).starts_with("Char = \\x00\n"));
    EXPECT_EQ(s.skipChar(), ScanClean);
    s.skipBytes(3);
    s.close();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(currentOf(s, s.next(&table)), (Scanned{SymbolEndOfFile, "\\x1A", 0, 0}));
}

TEST_F(ScannerObjects, TwoTextsAreScannedAtOnce) {
    disk.put("/data/a", "one 2\n\"three\nfour\" < five");
    disk.put("/data/b", "1.5,2,\nx,.5");
    const ScannedList a = all("/data/a", table), b = all("/data/b", other);
    ASSERT_EQ(a.size(), 5U);
    ASSERT_EQ(b.size(), 9U);
    Scanner first, second;
    ScannedList gotA{currentOf(first, first.open("/data/a", &table, false))};
    ScannedList gotB{currentOf(second, second.open("/data/b", &other, false))};
    for (std::size_t i = 1; i < b.size(); ++i) {
        if (i < a.size()) gotA.push_back(currentOf(first, first.next(&table)));
        gotB.push_back(currentOf(second, second.next(&other)));
    }
    EXPECT_EQ(gotA, a);
    EXPECT_EQ(gotB, b);
    EXPECT_EQ(first.lineNumber(), 3);
    EXPECT_EQ(second.lineNumber(), 2);
    EXPECT_EQ(first.previousSymbolStr(), "<");
    EXPECT_EQ(second.previousSymbolStr(), ".5");
}

// A file that includes others, the way the reader of such a language would go.
class Includes {
public:
    Includes(const SymbolTable& table, std::string& text) : table_(table), text_(text) {}
    void read(const std::string& path) {
        Scanner s;
        for (s.open(path, &table_, false); s.symbol() != SymbolEndOfFile; s.next(&table_)) {
            if (s.symbol() != 4) {
                text_.append(s.symbolStr()).append(" ");
                continue;
            }
            s.next(&table_);
            const std::string inner(s.symbolStr().substr(1, s.symbolStr().size() - 2));
            const std::string line(s.line());
            const std::int32_t number = s.lineNumber();
            read(inner);
            EXPECT_EQ(s.symbolStr(), '"' + inner + '"');
            EXPECT_EQ(s.line(), line);
            EXPECT_EQ(s.lineNumber(), number);
        }
    }

private:
    const SymbolTable& table_;
    std::string& text_;
};

TEST_F(ScannerObjects, AScanGoesOnInsideAScan) {
    disk.put("/data/a", "a include \"/data/b\" d\n\ninclude \"/data/c\" g");
    disk.put("/data/b", "b (* include\n\"/data/a\" *) include \"/data/c\" c");
    disk.put("/data/c", "1 2\n3");
    std::string text;
    Includes(table, text).read("/data/a");
    EXPECT_EQ(text, "a b (* include\n\"/data/a\" *) 1 2 3 c d 1 2 3 g ");
}

TEST_F(ScannerObjects, AHundredScansInsideOneAnotherKeepTheirPlaces) {
    disk.put("/data/0", "last");
    for (int i = 1; i <= 100; ++i) {
        const std::string n = std::to_string(i);
        disk.put("/data/" + n, "< include \"/data/" + std::to_string(i - 1) + "\" " + n);
    }
    std::string text, expected;
    Includes(table, text).read("/data/100");
    for (int i = 100; i >= 1; --i) expected += "< ";
    expected += "last ";
    for (int i = 1; i <= 100; ++i) expected += std::to_string(i) + " ";
    EXPECT_EQ(text, expected);
}

TEST_F(ScannerObjects, TheOneOfTheProcessIsAnother) {
    disk.put("/data/b", "1.5,2");
    ASSERT_EQ(open("one (* two *) three"), ScanClean);
    EXPECT_EQ(all("/data/b", other).size(), 4U);
    EXPECT_EQ(ScannerSymbolStr(), "one");
    Scanner s;
    EXPECT_EQ(s.open(file, &table, false), ScanClean);  // the same file, twice
    EXPECT_EQ(next().text, "(* two *)");
    EXPECT_EQ(s.symbolStr(), "one");
    ScannerClose();
    EXPECT_TRUE(s.isOpen());
    EXPECT_EQ(s.next(&table), ScanClean);
    EXPECT_EQ(s.symbolStr(), "(* two *)");
}

TEST_F(ScannerObjects, ATableThatChangesInsideAScanIsSeenByAll) {
    disk.put("/data/a", "now now now now");
    Scanner first, second;
    first.open("/data/a", &table, false);
    second.open("/data/a", &table, false);
    EXPECT_EQ(first.symbol(), 1);
    SymbolAdd(&table, 20, "now", "");
    for (Scanner* const s : {&first, &second}) {
        s->next(&table);
        EXPECT_EQ(s->symbol(), 20);
    }
    SymbolRemove(&table, "now");
    for (Scanner* const s : {&first, &second}) {
        s->next(&table);
        EXPECT_EQ(s->symbol(), 1);
    }
}

TEST_F(ScannerObjects, FindingsAreToldWithThePlaceOfTheScannerThatHasThem) {
    disk.put("/data/a", "x\n\n(* never");
    disk.put("/data/b", "x y");
    Scanner first, second;
    first.open("/data/a", &table, false);
    second.open("/data/b", &table, false);
    const ScanStatus status = first.next(&table);
    ErrorRecord record;
    first.reportStatus(status, record);
    EXPECT_EQ(record.code, 672);
    EXPECT_EQ(record.message, "Comment which started on line 3 was not terminated");
    record = {};
    second.checkSymbol(&table, second.symbol(), nullptr, record);
    EXPECT_EQ(record.line, 1);
    EXPECT_EQ(record.position, 1);
    EXPECT_EQ(record.message, "Symbol \"<Identifier>\" is not allowed here");
}

TEST_F(ScannerObjects, ItsEndClosesTheFile) {
    disk.put("/data/a", "x");
    {
        Scanner s;
        s.open("/data/a", &table, false);
        EXPECT_EQ(disk.openHandles(), 1);
    }
    EXPECT_EQ(disk.openHandles(), 0);
    Scanner again;  // one file after another
    EXPECT_EQ(all(again, "/data/a", table).size(), 1U);
    EXPECT_EQ(all(again, "/data/a", table).size(), 1U);
}

TEST_F(ScannerObjects, AFileThatCannotBeReadIsToldByItsScannerAlone) {
    disk.put("/data/a", "x");
    Scanner good, bad;
    good.open("/data/a", &table, false);
    bad.open("/data/none", &table, false);
    EXPECT_FALSE(bad.isOpen());
    EXPECT_NE(bad.fileError(), os::FileError::None);
    EXPECT_EQ(good.fileError(), os::FileError::None);
    EXPECT_EQ(currentOf(bad, bad.next(&table)), (Scanned{SymbolEndOfFile, "\\x1A", 0, 0}));
    EXPECT_EQ(good.symbolStr(), "x");
}

// However their moves are mixed, each gives what it gives alone.
TEST_F(ScannerObjects, AnyMixtureOfMovesIsThatOfEachAlone) {
    std::mt19937 random(7);
    constexpr std::string_view bytes = "ab1.5 <\"(*)\n,'";
    for (int round = 0; round < 300; ++round) {
        constexpr std::size_t count = 4;
        std::vector<std::unique_ptr<Scanner>> scanners;
        std::vector<ScannedList> expected, got(count);
        std::vector<std::string> paths;
        for (std::size_t i = 0; i < count; ++i) {
            std::string text(random() % 60, ' ');
            for (char& c : text) c = bytes[random() % bytes.size()];
            paths.push_back("/data/" + std::to_string(i));
            disk.put(paths.back(), text);
            expected.push_back(all(paths.back(), i % 2 == 0 ? table : other));
            scanners.push_back(std::make_unique<Scanner>());
        }
        for (std::size_t left = count; left > 0;) {
            const std::size_t i = random() % count;
            Scanner& s = *scanners[i];
            const SymbolTable& of = i % 2 == 0 ? table : other;
            if (s.symbol() == SymbolEndOfFile) continue;
            const ScanStatus status = s.isOpen() ? s.next(&of) : s.open(paths[i], &of, false);
            if (s.symbol() == SymbolEndOfFile)
                --left;
            else
                got[i].push_back(currentOf(s, status));
        }
        ASSERT_EQ(got, expected);
    }
}

}  // namespace
