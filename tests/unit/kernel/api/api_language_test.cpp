// SPDX-License-Identifier: Apache-2.0
//
// What the text of the language becomes: walks over lines, values for what is not there, operations in the order
// of the language.
#include "kernel/api/api.h"
#include "kernel/values/heap.h"
#include "support/errorcell.h"
#include "unit/kernel/runtime_fixture.h"

#include <string>
#include <vector>

namespace tarn {
namespace {

struct Text {
    explicit Text(const std::string& bytes = {}) {
        tarn_string_init(&string, TARN_UNBOUNDED);
        tarn_string_assign_bytes(&string, bytes.data(), static_cast<int32_t>(bytes.size()));
    }
    ~Text() { tarn_string_free(&string); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    std::string value() const {
        std::string bytes;
        for (int32_t i = 1; i <= tarn_string_length(&string); ++i)
            bytes += static_cast<char>(tarn_string_get(&string, i));
        return bytes;
    }
    tarn_string string{};
};

class LanguageApi : public Runtime {
protected:
    void TearDown() override {
        tarn_scratch_release();
        Runtime::TearDown();
    }
};

std::string forward(const std::string& bytes) {
    const Text text(bytes);
    Text line;
    std::string all;
    int32_t position = 1;
    while (tarn_text_next_line(&text.string, &position, &line.string) != 0) all += "[" + line.value() + "]";
    return all;
}

std::string backward(const std::string& bytes) {
    const Text text(bytes);
    Text line;
    std::string all;
    int32_t position = static_cast<int32_t>(bytes.size()) + 1;
    while (tarn_text_previous_line(&text.string, &position, &line.string) != 0)
        all += "[" + line.value() + "]";
    return all;
}

TEST_F(LanguageApi, LinesAreWalkedBothWays) {
    const struct {
        std::string text, forward, backward;
    } rows[] = {
        {"", "", ""},
        {"a", "[a]", "[a]"},
        {"a\n", "[a]", "[a]"},
        {"\n", "[]", "[]"},
        {"a\nb", "[a][b]", "[b][a]"},
        {"a\n\nb\n", "[a][][b]", "[b][][a]"},
        {"\n\n", "[][]", "[][]"},
        {"a\r\nb\r\n", "[a][b]", "[b][a]"},
        {"a\rb", "[a\rb]", "[a\rb]"},
        {"\r\n", "[]", "[]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(forward(row.text), row.forward) << row.text;
        EXPECT_EQ(backward(row.text), row.backward) << row.text;
    }
}

TEST_F(LanguageApi, AnElementThatIsNotThereIsAValueOfItsOwn) {
    tarn_list list;
    Text shape;
    tarn_list_init(&list, TARN_UNBOUNDED, &shape.string, TARN_STRING, 0);
    auto* const missing = static_cast<tarn_string*>(tarn_list_element(&list, 1));
    EXPECT_EQ(ErrorCell(), 603);
    ClearError();
    tarn_string_assign_bytes(missing, "lost", 4);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(tarn_list_count(&list), 0);
    auto* const other = static_cast<tarn_string*>(tarn_list_element(&list, 2));
    EXPECT_NE(other, missing);
    EXPECT_EQ(tarn_string_length(other), 0);
    ClearError();
    tarn_adt_free(&list, TARN_LIST);
}

TEST_F(LanguageApi, ScratchValuesEndWithTheProgram) {
    const auto before = LiveBlocks();
    tarn_list list;
    const Text shape;
    tarn_list_init(&list, TARN_UNBOUNDED, &shape.string, TARN_STRING, 0);
    for (int i = 0; i < 200; ++i)
        tarn_string_assign_bytes(static_cast<tarn_string*>(tarn_list_element(&list, 1)), "lost", 4);
    ClearError();
    tarn_adt_free(&list, TARN_LIST);
    EXPECT_GT(LiveBlocks(), before);
    tarn_scratch_release();
    EXPECT_EQ(LiveBlocks(), before);
}

TEST_F(LanguageApi, AnEnumHasItsLimits) {
    EXPECT_EQ(tarn_enum_check(2, 3), 2);
    EXPECT_EQ(ErrorCell(), 0);
    for (const int32_t outside : {3, -1, 256}) {
        EXPECT_EQ(tarn_enum_check(outside, 3), 0);
        EXPECT_EQ(ErrorCell(), 682) << outside;
        ClearError();
    }
}

TEST_F(LanguageApi, ATextGrowsByItself) {
    Text text("ab");
    tarn_string_append(&text.string, &text.string);
    EXPECT_EQ(text.value(), "abab");
}

}  // namespace
}  // namespace tarn
