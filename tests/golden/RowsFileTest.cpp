#include "RowsFile.h"

#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

std::vector<GoldenCase> read(const std::string& text)
{
    std::istringstream stream(text);
    return readRows(stream, "x.rows");
}

const std::string base = "# a comment\ngiven\n  hba.name \"a; b\"\n\nkeys\n  string Name \"a; b\"\n"
                         "rows\n  string Name \"a; b\"\n  uint16[] Status {2, 3}\n";

TEST(RowsFile, TakesEveryCaseFromTheBaseAndChangesWhatItNames)
{
    const auto cases = read(base + "when hba.status 3; hba.slot 4\nlater hba.name \"c\"\n  uint16[] Status {5}\n"
                                   "when hba.status 4\n  absent Status\n  key string Name \"d\"\n");
    ASSERT_EQ(cases.size(), 3u);
    EXPECT_EQ(cases[0].before[0].value, "\"a; b\"");
    EXPECT_EQ(cases[1].title, "x.rows:10 when hba.status 3; hba.slot 4 later hba.name \"c\"");
    ASSERT_EQ(cases[1].before.size(), 3u);
    EXPECT_EQ(cases[1].before[2].field, "hba.slot");
    ASSERT_EQ(cases[1].after.size(), 1u);
    EXPECT_EQ(cases[1].rows[1].value, "{5}");
    EXPECT_EQ(cases[1].keys[0].value, "\"a; b\"");
    ASSERT_EQ(cases[2].rows.size(), 1u);
    EXPECT_EQ(cases[2].keys[0].value, "\"d\"");
}

TEST(RowsFile, RefusesWhatWouldTestNothing)
{
    for (const char* text : {"", "given\n  a.b 1\n", "rows\n  string Name \"a\"\nwhen a.b 1\n  same\n"})
        EXPECT_THROW(read(text), std::runtime_error) << text;
    for (const char* more :
         {"", "when a.b 1\n", "when a.b 1\n  string Name \"a; b\"\n", "when a.b 1\n  absent Other\n",
          "when a.b 1\n  uint32 Name 5\n", "when a.b\n  same\n", "if a.b 1\n  same\n", "when a.b 1\n  string Name\n"})
        EXPECT_THROW(read(base + more), std::runtime_error) << more;
}

} // namespace
} // namespace KDV::Test
