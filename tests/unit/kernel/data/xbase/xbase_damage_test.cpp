// SPDX-License-Identifier: Apache-2.0
//
// Xbase files that are cut or changed anywhere.
#include "unit/kernel/xbase_files_fixture.h"

namespace tarn {
namespace {

// ---- damage ----

// Every way to cut a small file, and every byte of it changed: a message, or values of legal shape.
class XbaseDamage : public XbaseFiles {
protected:
    void SetUp() override {
        XbaseFiles::SetUp();
        whole_ = FileBytes(peopleFile, {person("1", "Ann", 'T'), person("22", "Bob", 'F', '*')});
    }
    void use(const std::string& bytes) {
        files_.put("/d/a.dbf", bytes);
        const DataFileInfo info = GetDataFileInfo("/d/a.dbf", nullptr);
        EXPECT_EQ(info.typeText.empty(), !info.message.empty());
        for (const char* declaration : {people, "s : string[9]\n", "s : set[1:50]\n"}) {
            Typed value(declaration);
            const DataResult result = XbaseLoad("/d/a.dbf", value.get(), value.kind(), message);
            EXPECT_EQ(AdtCheck(value.get(), value.kind()), "");
            EXPECT_EQ(ErrorCell(), 0);
            EXPECT_EQ(message.empty(), result.code != 661);
            if (result.code == 661 || result.code == 655) {
                EXPECT_EQ(result.rows, 0);
            }
        }
    }
    std::string whole_;
};

TEST_F(XbaseDamage, EveryTruncationIsAMessageOrValues) {
    for (std::size_t size = 0; size <= whole_.size(); ++size) {
        SCOPED_TRACE(size);
        use(whole_.substr(0, size));
    }
}

TEST_F(XbaseDamage, EveryChangedByteIsAMessageOrValues) {
    for (std::size_t at = 0; at < whole_.size(); ++at) {
        for (const int change : {0x01, 0x02, 0x10, 0x80, 0xFF, 0x0D, 0x20}) {
            SCOPED_TRACE(std::to_string(at) + " ^ " + std::to_string(change));
            std::string bytes = whole_;
            bytes[at] = static_cast<char>(bytes[at] ^ change);
            use(bytes);
        }
    }
}

}  // namespace
}  // namespace tarn
