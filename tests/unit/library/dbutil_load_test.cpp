// SPDX-License-Identifier: Apache-2.0
//
// Data files as tables, without a screen: the columns keep their number and order whatever their names are.
#include "kernel/errors.h"
#include "kernel/runtime.h"
#include "kernel/tables.h"
#include "library/dbutil_grid.h"
#include "library/dbutil_windows.h"
#include "platform/model/view.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class LoadTable : public ::testing::Test {
protected:
    LoadTable() : steered_(files_) { files_.putFolder("/d"); }
    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView());
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before_));
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(files_.openHandles(), 0);
        ClearError();
    }
    using Names = std::vector<std::string>;
    struct Loaded {
        std::string message;
        Names columns;
        std::int32_t rows = 0;
    };
    Loaded load(const std::string& file, std::string_view bytes, const TabOptions* options,
                DataFormat format) {
        files_.put(file, bytes);
        const DataTable data = LOADDATATABLE(file, options, format);
        EXPECT_EQ(data.step, DataTable::Step::Done);
        EXPECT_EQ(data.columns, static_cast<int>(TABLEFIELDNAMES(data.table.get()).size()));
        return {data.message + data.remark, TABLEFIELDNAMES(data.table.get()), TableCount(data.table.get())};
    }

    os::SteeredFiles files_;
    os::Steered steered_;
    std::unique_ptr<platform::View> before_;
};

TEST_F(LoadTable, XmlRowsKeepEveryColumn) {
    const Loaded loaded = load("/d/f.xml",
                               "<rows><r><id>1</id><end>5</end><qty>3</qty></r>"
                               "<r><id>2</id><end>6</end><qty>4</qty></r></rows>",
                               nullptr, FormatXml);
    EXPECT_EQ(loaded.message, "");
    EXPECT_EQ(loaded.columns, (Names{"id", "end_1", "qty"}));
    EXPECT_EQ(loaded.rows, 2);
}

TEST_F(LoadTable, ASingleXmlRecordKeepsEveryColumn) {
    for (const std::string name : {"end", "END", "first-name"}) {
        const Loaded loaded = load("/d/f.xml", "<r><id>1</id><" + name + ">5</" + name + "><qty>3</qty></r>",
                                   nullptr, FormatXml);
        EXPECT_EQ(loaded.message, "") << name;
        EXPECT_EQ(loaded.columns.size(), 3U) << name;
        EXPECT_EQ(loaded.rows, 1) << name;
    }
}

TEST_F(LoadTable, DelimitedTextKeepsEveryColumn) {
    const TabOptions header{1, 0, ',', -1};
    const Loaded loaded =
        load("/d/f.csv", "id,end,\"price : EUR\",order no\n1,2,3,4\n", &header, FormatComma);
    EXPECT_EQ(loaded.message, "");
    EXPECT_EQ(loaded.columns, (Names{"id", "end_1", "price___EUR", "order_no"}));
    EXPECT_EQ(loaded.rows, 1);
}

}  // namespace
}  // namespace tarn
