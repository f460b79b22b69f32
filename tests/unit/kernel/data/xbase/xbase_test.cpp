// SPDX-License-Identifier: Apache-2.0
//
// Headers of Xbase files: what is read, what is refused and in which words; the declaration of a file.
#include "unit/kernel/xbase_fixture.h"

#include <algorithm>
#include <random>

namespace tarn {
namespace {

using namespace std::string_literals;

constexpr const char* noSignature = "Xbase file does not start with a valid signature byte";
constexpr const char* incomplete = "Xbase file header is incomplete";
constexpr const char* tooSmall = "Xbase file header is too small";
constexpr const char* noDescriptors = "Could not read field descriptors from Xbase file";
constexpr const char* badType = "Field type characters must be A-Z or 0-9";

class XbaseHeaders : public Xbase {};

// ---- reading ----

TEST_F(XbaseHeaders, AWholeHeaderIsRead) {
    XbaseHeader header;
    const std::string bytes = HeadBytes(
        {{"ID", 'N', 5, 2}, {"ELEVENCHARS", 'C', 200}, {"OK", 'L', 1}, {"DAY", 'D', 8}}, 0x81020304);
    EXPECT_EQ(XbaseDecodeHeader(bytes, header), "");
    EXPECT_EQ(header.headerSize, 161);
    EXPECT_EQ(header.recordSize, 215);
    EXPECT_EQ(header.fieldCount, 4);
    EXPECT_EQ(header.records, 0x81020304U);
    EXPECT_STREQ(header.name[0], "ID");
    EXPECT_STREQ(header.name[1], "ELEVENCHARS");
    EXPECT_EQ(std::string(header.type, 4), "NCLD");
    EXPECT_EQ(header.length[0], 5);
    EXPECT_EQ(header.decimals[0], 2);
    EXPECT_EQ(header.length[1], 200);
    EXPECT_EQ(header.name[4][0], 0);
}

TEST_F(XbaseHeaders, SixSignaturesAreValid) {
    for (int first = 0; first < 256; ++first) {
        std::string bytes = HeadBytes({{"A"}});
        bytes[0] = static_cast<char>(first);
        const bool valid =
            first == 3 || first == 4 || first == 5 || first == 48 || first == 131 || first == 139;
        EXPECT_EQ(messageOf(bytes), valid ? "" : noSignature) << first;
    }
}

TEST_F(XbaseHeaders, TheNumberOfFieldsFollowsFromTheSize) {
    const std::string many = HeadBytes(XFields(48, {"A", 'C', 1}));
    const struct {
        int size, fields;
    } cases[] = {{65, 1}, {66, 1}, {67, 1}, {96, 1}, {97, 2}, {98, 2}, {1569, 48}, {1570, 48}, {1600, 48}};
    for (const auto& c : cases) {
        std::string bytes = many;
        bytes.replace(8, 4,
                      LittleEndian(static_cast<std::uint32_t>(c.size), 2) +
                          LittleEndian(static_cast<std::uint32_t>(c.fields) + 1, 2));
        XbaseHeader header;
        EXPECT_EQ(XbaseDecodeHeader(bytes, header), "") << c.size;
        EXPECT_EQ(header.fieldCount, c.fields) << c.size;
        EXPECT_EQ(header.headerSize, c.size);
    }
}

TEST_F(XbaseHeaders, AHeaderMayEndEarly) {
    // Some programs keep other data behind the terminator.
    XbaseHeader header;
    const std::string one = HeadBytes({{"A", 'C', 4}}, 0, 328, 5) + std::string(400, 'x');
    EXPECT_EQ(XbaseDecodeHeader(one, header), "");
    EXPECT_EQ(header.fieldCount, 1);
    EXPECT_EQ(header.headerSize, 328);
    const std::string none = HeadBytes({}, 0, 65, 1) + std::string(40, 'x');
    EXPECT_EQ(XbaseDecodeHeader(none, header), "");
    EXPECT_EQ(header.fieldCount, 0);
    EXPECT_EQ(header.recordSize, 1);
}

TEST_F(XbaseHeaders, NamesEndAtTheFirstZero) {
    XField field{"AB\0CD"s, 'C', 1};
    XbaseHeader header;
    EXPECT_EQ(XbaseDecodeHeader(HeadBytes({field}), header), "");
    EXPECT_EQ(std::string(header.name[0], 12), "AB"s + std::string(10, '\0'));
}

// ---- refusing ----

TEST_F(XbaseHeaders, EachFaultHasItsMessage) {
    const XFields a = {{"A", 'C', 4}};
    const struct {
        const char* what;
        std::string bytes;
        std::string message;
    } cases[] = {
        {"no file", "", noSignature},
        {"another file", "PK\3\4", noSignature},
        {"a signature alone", "\3", incomplete},
        {"31 bytes", HeadBytes(a).substr(0, 31), incomplete},
        {"32 bytes and the end", HeadBytes(a).substr(0, 32), incomplete},
        {"size 32", HeadBytes(a, 0, 32), tooSmall},
        {"size 0", HeadBytes(a, 0, 0), tooSmall},
        {"size 33", HeadBytes(a, 0, 33), "Xbase file has 0 fields (maximum is 48)"},
        {"size 34", HeadBytes(a, 0, 34), "Xbase file has 0 fields (maximum is 48)"},
        {"size 64", HeadBytes(a, 0, 64), "Xbase file has 0 fields (maximum is 48)"},
        {"49 fields", HeadBytes(XFields(49, {"A"})), "Xbase file has 49 fields (maximum is 48)"},
        {"the largest size", HeadBytes(a, 0, 65535), "Xbase file has 2046 fields (maximum is 48)"},
        {"half a descriptor", HeadBytes(a).substr(0, 50), noDescriptors},
        {"one descriptor of two", HeadBytes(a, 0, 97), noDescriptors},
        {"a type in lower case", HeadBytes({{"A", 'c', 4}}), badType},
        {"a type 0", HeadBytes({{"A", '\0', 4}}), badType},
        {"a record too long", HeadBytes(a, 0, -1, 6),
         "Field sizes do not match the size stored in the header (calculated size = 5, size in header = 6)"},
        {"a record too short", HeadBytes(a, 0, -1, 4),
         "Field sizes do not match the size stored in the header (calculated size = 5, size in header = 4)"},
        {"a record of nothing", HeadBytes(a, 0, -1, 0),
         "Field sizes do not match the size stored in the header (calculated size = 5, size in header = 0)"},
    };
    for (const auto& c : cases) {
        XbaseHeader header;
        header.fieldCount = 7;
        EXPECT_EQ(XbaseDecodeHeader(c.bytes, header), c.message) << c.what;
        const XbaseHeader none;
        EXPECT_EQ(std::memcmp(&header, &none, sizeof none), 0) << c.what;
    }
}

TEST_F(XbaseHeaders, OfTwoFaultsTheFirstIsTold) {
    std::string bytes = HeadBytes({{"A", 'c', 4}}, 0, 20, 99);
    bytes[0] = 'x';
    EXPECT_EQ(messageOf(bytes.substr(0, 20)), noSignature);
    bytes[0] = 3;
    EXPECT_EQ(messageOf(bytes.substr(0, 20)), incomplete);
    EXPECT_EQ(messageOf(bytes), tooSmall);
    EXPECT_EQ(messageOf(HeadBytes({{"A", 'c', 4}}, 0, 34, 99)), "Xbase file has 0 fields (maximum is 48)");
    EXPECT_EQ(messageOf(HeadBytes({{"A", 'c', 4}}, 0, 97, 99)), badType);
    EXPECT_EQ(messageOf(HeadBytes({{"A", 'C', 4}}, 0, 97, 99)), noDescriptors);
    EXPECT_EQ(messageOf(HeadBytes({{"A", 'c', 4}}, 0, 65, 99)), badType);
}

TEST_F(XbaseHeaders, TypesAreDigitsAndCapitals) {
    for (int type = 0; type < 256; ++type) {
        const bool valid = (type >= '0' && type <= '9') || (type >= 'A' && type <= 'Z');
        EXPECT_EQ(messageOf(HeadBytes({{"A", static_cast<char>(type), 4}})), valid ? "" : badType) << type;
    }
}

// ---- files ----

// Counts the bytes that are read.
class CountedFiles : public os::SteeredFiles {
public:
    os::FileError read(os::Handle handle, std::int64_t offset, char* into, std::size_t count,
                       std::size_t& got) override {
        const os::FileError error = os::SteeredFiles::read(handle, offset, into, count, got);
        bytes += got;
        return error;
    }
    std::size_t bytes = 0;
};

TEST_F(XbaseHeaders, OnlyTheHeaderOfAFileIsRead) {
    CountedFiles files;
    const os::Steered steered(files);
    files.put("/big.dbf", HeadBytes(XFields(48, {"A"}), 0, 65535) + std::string(3000000, 'x'));
    XbaseHeader header;
    EXPECT_EQ(XbaseReadHeader("/big.dbf", header), "Xbase file has 2046 fields (maximum is 48)");
    EXPECT_LE(files.bytes, 1568U);
    files.put("/big.dbf", HeadBytes(XFields(48, {"A"})) + std::string(3000000, 'x'));
    files.bytes = 0;
    EXPECT_EQ(XbaseReadHeader("/big.dbf", header), "");
    EXPECT_EQ(header.fieldCount, 48);
    EXPECT_LE(files.bytes, 1568U);
    EXPECT_EQ(files.openHandles(), 0);
}

TEST_F(XbaseHeaders, AFileThatCannotBeOpenedSetsTheError) {
    XbaseHeader header;
    header.fieldCount = 3;
    EXPECT_EQ(XbaseReadHeader("/d/none.dbf", header), "Could not open the file (error 651)");
    EXPECT_EQ(takeError(), 651);
    EXPECT_EQ(header.fieldCount, 0);
    EXPECT_EQ(XbaseReadHeader("", header), "Could not open the file (error 657)");
    EXPECT_EQ(takeError(), 657);
    EXPECT_EQ(XbaseReadHeader("/d", header), "Could not open the file (error 651)");
    EXPECT_EQ(takeError(), 651);
    SetError(604);
    EXPECT_EQ(XbaseReadHeader("/d", header), "Could not open the file (error 651)");
    EXPECT_EQ(takeError(), 604);
}

TEST_F(XbaseHeaders, OtherFaultsDoNotSetTheError) {
    XbaseHeader header;
    files_.put("/d/a.dbf", "PK");
    EXPECT_EQ(XbaseReadHeader("/d/a.dbf", header), noSignature);
    files_.put("/d/a.dbf", HeadBytes({{"A"}}));
    files_.failAt(os::FileCall::Read, 1, os::FileError::ReadFailed);
    EXPECT_EQ(XbaseReadHeader("/d/a.dbf", header), incomplete);
    EXPECT_EQ(header.fieldCount, 0);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(XbaseReadHeader("/d/a.dbf", header), "");
}

TEST_F(XbaseHeaders, NamesOfFilesAreToldByTheirExtension) {
    for (const char* name : {"a.dbf", "a.DBF", "a.Xbf", "/d.x/a.b.dBf", "C:\\x\\a.xbf"})
        EXPECT_TRUE(XbaseFileName(name)) << name;
    for (const char* name : {"a.dbf.x", "dbf", "a.db", "/a.dbf/b", "", "a.dbft"})
        EXPECT_FALSE(XbaseFileName(name)) << name;
}

TEST_F(XbaseHeaders, AnEmptyRowIsADeletedOne) {
    std::string row(5, 'x');
    XbaseEmptyRow("a.DBF", row.data(), row.size());
    EXPECT_EQ(row, "*    ");
    XbaseEmptyRow("a.tab", row.data(), row.size());
    EXPECT_EQ(row, std::string(5, '\0'));
    row = "xyz";
    XbaseEmptyRow("a.xbf", row.data(), 1);
    EXPECT_EQ(row, "*yz");
    XbaseEmptyRow("a.xbf", row.data(), 0);
    XbaseEmptyRow("a.xbf", nullptr, 5);
    EXPECT_EQ(row, "*yz");
}

TEST_F(XbaseHeaders, TheNumberOfRecordsCanBeChanged) {
    std::string bytes = HeadBytes({{"A"}}, 1);
    XbaseSetRecords(bytes, 0x01020304);
    EXPECT_EQ(bytes, HeadBytes({{"A"}}, 0x01020304));
    bytes = "1234567";
    XbaseSetRecords(bytes, 5);
    EXPECT_EQ(bytes, "1234567");
}

// ---- declarations ----

class XbaseDeclarations : public Xbase {
protected:
    std::string declared(const XFields& fields, const std::string& name = "/d/a.dbf") {
        files_.put(name, HeadBytes(fields));
        std::string message = "?";
        std::string text = XbaseTypeInfo(name, message);
        EXPECT_EQ(text.empty(), !message.empty() || fields.empty());
        return message.empty() ? text : message;
    }
    static std::string wrapped(const std::string& lines, const std::string& name = "Ta") {
        return name + " : record\n\tdelete_flag : Tchar\n" + lines + "end record\n";
    }
};

TEST_F(XbaseDeclarations, EachTypeHasItsLine) {
    EXPECT_EQ(declared({{"ID", 'N', 5, 2}, {"NAME", 'C', 200}, {"OK", 'L', 1}, {"DAY", 'D', 8}}),
              wrapped("\tID : Tnumeric[1:5]\n\tNAME : Tchars[1:200]\n\tOK : Tlogical[1:1]\n"
                      "\tDAY : Tdate[1:8]\n"));
}

TEST_F(XbaseDeclarations, OtherTypesAreRefused) {
    EXPECT_EQ(declared({{"ID", 'N', 5}, {"NOTE", 'M', 10}}),
              "Xbase field number 2 is type M which is not a standard Xbase type");
    for (const char type : "0123456789ABEFGHIJKMOPQRSTUVWXYZ"s)
        EXPECT_EQ(declared({{"X", type, 4}}),
                  "Xbase field number 1 is type "s + type + " which is not a standard Xbase type");
}

TEST_F(XbaseDeclarations, FaultsOfTheHeaderAreTold) {
    std::string message;
    EXPECT_EQ(XbaseTypeInfo("/d/none.dbf", message), "");
    EXPECT_EQ(message, "Could not open the file (error 651)");
    EXPECT_EQ(takeError(), 651);
    files_.put("/d/a.dbf", HeadBytes({{"A"}}, 0, 32));
    EXPECT_EQ(XbaseTypeInfo("/d/a.dbf", message), "");
    EXPECT_EQ(message, tooSmall);
    files_.put("/d/a.dbf", HeadBytes({}, 0, 65, 1) + std::string(32, ' '));
    EXPECT_EQ(XbaseTypeInfo("/d/a.dbf", message), "");
    EXPECT_EQ(message, "");
}

TEST_F(XbaseDeclarations, TheRecordIsNamedAfterTheFile) {
    const std::string line = "\tA : Tchars[1:1]\n";
    EXPECT_EQ(declared({{"A"}}, "/d/my file-2.old.DBF"), wrapped(line, "Tmy_file_2_old"));
    EXPECT_EQ(declared({{"A"}}, "/d/noext"), wrapped(line, "Tnoext"));
    EXPECT_EQ(declared({{"A"}}, "/d/h\xC3\xA4.dbf"), wrapped(line, "Th__"));
    EXPECT_EQ(declared({{"A"}}, "/d/.dbf"), wrapped(line, "T"));
}

TEST_F(XbaseDeclarations, OddNamesBecomeUsable) {
    const struct {
        std::string name, line;
    } cases[] = {
        {"plain_1", "plain_1"},
        {"_x", "_x"},
        {"", "FIELD1"},
        {"   ", "FIELD1"},
        {"A B", "\"A B\""},
        {" A  ", "A"},
        {"1ST", "1ST"},
        {"A-B", "A-B"},
        {"A:B", "A:B"},
        {"A:", "\"A:\""},
        {":A", "\":A\""},
        {"A,B", "A_B"},
        {"A\"B", "A_B"},
        {"A\nB", "A_B"},
        {"end", "\"end\""},
        {"END", "\"END\""},
        {"\xE4\xF6", "__"},
        {"A.B", "A.B"},
        {"MY-FIELD.1", "MY-FIELD.1"},
        {"-", "-"},
        {"A/B", "\"A/B\""},
        {"delete_flag", "delete_flag_2"},
        {"DELETE_FLAG", "DELETE_FLAG_2"},
        {"a\rb\tc\x7F", "a_b_c_"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(declared({{c.name}}), wrapped("\t" + c.line + " : Tchars[1:1]\n")) << c.name;
}

TEST_F(XbaseDeclarations, NamesThatStandTwiceAreNumbered) {
    EXPECT_EQ(declared({{"X"}, {"x"}, {"X_2"}, {"X"}, {""}, {"FIELD5"}}),
              wrapped("\tX : Tchars[1:1]\n\tx_2 : Tchars[1:1]\n\tX_2_2 : Tchars[1:1]\n"
                      "\tX_3 : Tchars[1:1]\n\tFIELD5 : Tchars[1:1]\n\tFIELD5_2 : Tchars[1:1]\n"));
}

TEST_F(XbaseDeclarations, AFieldWithoutCharactersIsDeclaredWithOne) {
    EXPECT_EQ(declared({{"A", 'C', 0}, {"B", 'N', 0}, {"L", 'L', 0}}),
              wrapped("\tA : Tchars[1:1]\n\tB : Tnumeric[1:1]\n\tL : Tlogical[1:1]\n"));
}

// Whatever names and sizes a header has: its declaration gives a record that can be the row of that file, and
// a table with such rows; but for logical fields of more than one character.
TEST_F(XbaseDeclarations, EveryDeclarationFitsItsFile) {
    std::mt19937 random(20240601);
    for (int step = 0; step < 3000; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        XFields fields(1 + random() % (step % 50 == 0 ? 47 : 6));
        for (XField& field : fields) {
            field.type = "CDLN"[random() % 4];
            field.length = static_cast<int>(random() % (random() % 2 == 0 ? 4 : 256));
            field.name.resize(random() % 12);
            for (char& c : field.name)
                c = random() % 3 == 0 ? static_cast<char>(random() % 256) : "endAB_1"[random() % 7];
            if (!field.name.empty() && field.name[0] == '\r') field.name[0] = 'R';
        }
        const std::string text = declared(fields);
        Typed row(text);
        ASSERT_EQ(row.kind(), KindRecord) << text;
        ASSERT_EQ(RecordFieldCount(row.get<RecordDescriptor>()),
                  static_cast<std::int32_t>(fields.size()) + 1);
        // Logical fields are declared with one character.
        const auto isLong = [](const XField& field) { return field.type == 'L' && field.length > 1; };
        const auto misfit = std::find_if(fields.begin(), fields.end(), isLong) - fields.begin() + 1;
        const bool fits = misfit > static_cast<std::ptrdiff_t>(fields.size());
        EXPECT_EQ(XbaseCheckValue("/d/a.dbf", KindRecord, row.get()), fits ? 0 : misfit);
        EXPECT_TRUE(TypeInfoIsXbaseRecord(row.get<RecordDescriptor>()));
        const DefaultKeys keys = TypeInfoDefaultKeys(row.get<RecordDescriptor>(), "", true);
        EXPECT_EQ(keys.map == 0, false);
        EXPECT_EQ(TypeInfoCountElements(text, 1), static_cast<std::int32_t>(fields.size()) + 1);
    }
}

}  // namespace
}  // namespace tarn
