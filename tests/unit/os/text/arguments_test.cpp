// SPDX-License-Identifier: Apache-2.0
#include "os/text/arguments.h"

#include <gtest/gtest.h>

#include <random>

namespace tarn::os {
namespace {

using Arguments = std::vector<std::string>;

TEST(Arguments, AreSplitAtBlanksOutsideOfQuotes) {
    struct Case {
        const char* line;
        Arguments arguments;
    };
    const Case cases[] = {{"", {}},
                          {" \t\r\n", {}},
                          {"a b", {"a", "b"}},
                          {"\"a b\"c", {"a bc"}},
                          {"\"\"", {""}},
                          {"\"a\"\"b\"", {"a\"b"}},
                          {"\"\"\"\"", {"\""}},
                          {"a\"\"b", {"ab"}},
                          {"\"open end", {"open end"}},
                          {"\"line\nend\"", {"line\nend"}},
                          {"$HOME;`ls`", {"$HOME;`ls`"}}};
    for (const Case& c : cases) EXPECT_EQ(splitArguments(c.line), c.arguments) << c.line;
}

TEST(Arguments, StandInQuotesOnlyWhereTheyNeedThem) {
    EXPECT_EQ(quotedArgument("plain$;'`\\"), "plain$;'`\\");
    EXPECT_EQ(quotedArgument(""), "\"\"");
    EXPECT_EQ(quotedArgument("a b"), "\"a b\"");
    EXPECT_EQ(quotedArgument("say \"x\""), "\"say \"\"x\"\"\"");
    EXPECT_EQ(joinedArguments({"a", "", "b c"}), "a \"\" \"b c\"");
    EXPECT_EQ(joinedArguments({}), "");
}

TEST(Arguments, AnyListComesBackFromItsLine) {
    std::mt19937 random(1);
    const std::string_view letters("ab \t\n\r\"\\'$;%\0\xFF<>", 16);
    for (int round = 0; round < 5000; ++round) {
        Arguments list(random() % 4);
        for (std::string& one : list)
            for (std::size_t n = random() % 6; n > 0; --n) one += letters[random() % letters.size()];
        EXPECT_EQ(splitArguments(joinedArguments(list)), list) << joinedArguments(list);
    }
}

}  // namespace
}  // namespace tarn::os
