// SPDX-License-Identifier: Apache-2.0
//
// Headers, declarations and rows of Xbase files.
#include "kernel/data/xbase.h"
#include "support/steerable.h"
#include "unit/kernel/table_rows.h"
#include "unit/kernel/values_fixture.h"

namespace tarn {
namespace {

using namespace std::string_literals;

TEST_F(Values, ARowOfCharactersComesBackAsItWas) {
    const Cells like = {ordinal('*'), characters("12", 5), characters("Ann", 10)};
    const RecordValue row = recordOf(like);
    std::int32_t code = 0;
    const std::string bytes = XbaseHeaderBytes(
        row.get(), KindRecord, "delete_flag : Tchar\nid : Tnumeric[1:5]\nname : Tchars[1:10]\n", 0, code);
    ASSERT_EQ(code, 0);
    EXPECT_EQ(bytes.size(), 97U);
    XbaseHeader header;
    ASSERT_EQ(XbaseDecodeHeader(bytes + " ", header), "");
    EXPECT_EQ(header.recordSize, 16);
    EXPECT_EQ(XbaseCheckValue(header, KindRecord, row.get()), 0);
    std::string text;
    EXPECT_EQ(XbaseWriteRow(row.get(), KindRecord, header, text).errorCode, 0);
    EXPECT_EQ(text, "*12   Ann       ");
    RecordValue back = recordOf({ordinal(0), characters("", 5), characters("", 10)});
    EXPECT_EQ(XbaseReadRow(text, header, back.get(), KindRecord).errorCode, 0);
    EXPECT_TRUE(sameCells(cellsOf(back.get(), like), like));
    EXPECT_TRUE(TypeInfoIsXbaseRecord(row.get()));
}

}  // namespace
}  // namespace tarn
