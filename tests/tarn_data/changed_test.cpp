// SPDX-License-Identifier: Apache-2.0
//
// Somebody writes to the file that is read, at any moment: what was found of its rows does not hold for the new ones.
#include "support/steerable.h"
#include "tarn_data/commands/commands.h"
#include "tarn_data/said.h"

#include <gtest/gtest.h>

namespace tarn::datatool {
namespace {

// Another content stands in a file from its n-th opening on.
class ChangingFiles : public os::SteeredFiles {
public:
    os::FileError open(const std::string& path, os::OpenMode mode, std::uint32_t permissions,
                       os::Handle& handle) override {
        if (path == file && ++opens == at) put(file, content);
        return os::SteeredFiles::open(path, mode, permissions, handle);
    }
    std::string file, content;
    int opens = 0, at = 0;
};

class ChangedSource : public ::testing::Test {
protected:
    // Converts, with a change at that opening.
    int convertWithChange(const std::string& from, const std::string& before, const std::string& after,
                          const std::string& to, int opening) {
        files_.put(from, before);
        files_.put(to, "as it was");
        files_.file = from;
        files_.content = after;
        files_.opens = 0;
        files_.at = opening;
        said().clear();
        Arguments arguments;
        arguments.files = {from, to};
        return convert(arguments);
    }
    ChangingFiles files_;

private:
    os::Steered steered_{files_};
};

const std::string before = "id,name\n1,Ann\n2,Bob\n", after = "id,name\none,Ann\n2,Bob\n3,Eve\n";
const std::string beforeXml = "<l><r><id>1</id></r><r><id>2</id></r></l>\n",
                  afterXml = "<l><r><id>one</id><x>2</x></r></l>\n";

TEST_F(ChangedSource, WhereRowsAreReadTwiceTheTargetStaysAsItWas) {
    const struct {
        const char *from, *to;
        const std::string &before, &after;
    } cases[] = {{"/d/a.csv", "/d/b.xml", before, after},
                 {"/d/a.csv", "/d/b.dbf", before, after},
                 {"/d/a.xml", "/d/b.csv", beforeXml, afterXml},
                 {"/d/a.xml", "/d/b.xml", beforeXml, afterXml}};
    for (const auto& one : cases) {
        int opening = 1;
        for (;; ++opening) {
            const int status = convertWithChange(one.from, one.before, one.after, one.to, opening);
            if (files_.opens < opening) break;
            EXPECT_EQ(status, Failed) << one.from << one.to << opening;
            EXPECT_NE(said().find("was changed meanwhile."), std::string::npos) << opening << said();
            EXPECT_EQ(files_.contents(one.to), "as it was");
            EXPECT_EQ(files_.allFiles().size(), 2U);
        }
        EXPECT_GT(opening, 2);
        EXPECT_NE(files_.contents(one.to), "as it was");
        files_.remove(one.from);
        files_.remove(one.to);
    }
}

TEST_F(ChangedSource, LinesThatAreReadOnceAreTakenWithANote) {
    int opening = 1;
    for (;; ++opening) {
        const int status = convertWithChange("/d/a.csv", before, after, "/d/b.tab", opening);
        if (files_.opens < opening) break;
        EXPECT_EQ(status, Well) << opening;
        EXPECT_NE(said().find("was changed while it was read"), std::string::npos) << opening << said();
        EXPECT_EQ(files_.contents("/d/b.tab"), "id\tname\none\tAnn\n2\tBob\n3\tEve\n");
    }
    EXPECT_GT(opening, 1);
    EXPECT_EQ(said(), "");
}

}  // namespace
}  // namespace tarn::datatool
