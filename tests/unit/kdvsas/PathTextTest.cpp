#include "kdv-sas/PathText.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace KdvSas {
namespace {

std::string complaint(const std::string& text)
{
    try {
        parsePath(text);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "none";
}

TEST(PathText, ReadsWhatItWrites)
{
    const std::string texts[] = {
        "KDV_SASDiskDrive",
        "KDV_SASDiskDrive.DeviceID=\"S:1,2=3\"",
        "root/vnr:X_Y.A=\"with \\\" and \\\\\",N=12,B=true",
        "X_A.Antecedent=\"root/vnr:X_B.K=\\\"v\\\"\",Dependent=\"X_C.K=\\\"w\\\"\"",
    };
    for (const std::string& text : texts)
        EXPECT_EQ(pathText(parsePath(text)), text);
}

TEST(PathText, TakesNumbersAndBooleansByTheirForm)
{
    const Cim::Path path = parsePath("X_Y.N=12,B=TRUE,T=\"12\"");
    EXPECT_EQ(path.keys[0].valueType, "numeric");
    EXPECT_EQ(path.keys[1].valueType, "boolean");
    EXPECT_EQ(path.keys[2].valueType, "string");
}

TEST(PathText, LeavesTheHostOut)
{
    const Cim::Path path = parsePath("//server/root/vnr:X_Y.K=\"v\"");
    EXPECT_EQ(path.nameSpace, "root/vnr");
    EXPECT_EQ(path.className, "X_Y");
}

TEST(PathText, KeepsAColonInAValue)
{
    const Cim::Path path = parsePath("X_Y.K=\"a:b\"");
    EXPECT_EQ(path.nameSpace, "");
    EXPECT_EQ(path.key("K"), "a:b");
}

TEST(PathText, NamesThePlaceOfWhatIsWrong)
{
    EXPECT_EQ(complaint(""), "\"\", character 1: expected a class name");
    EXPECT_EQ(complaint("X_Y.K"), "\"X_Y.K\", character 6: expected \"=\" behind the key name");
    EXPECT_EQ(complaint("X_Y.K="), "\"X_Y.K=\", character 7: expected a value");
    EXPECT_EQ(complaint("X_Y.K=\"v"), "\"X_Y.K=\"v\", character 9: expected a closing quote");
    EXPECT_EQ(complaint("X_Y.K=\"v\";"), "\"X_Y.K=\"v\";\", character 10: expected \",\" or the end");
}

TEST(PathText, RefusesEndlessReferences)
{
    std::string text = "X_Y.K=\"v\"";
    for (int i = 0; i < 12; ++i) {
        Cim::Path outer;
        outer.className = "X_Y";
        Cim::Key key;
        key.name = "R";
        key.value = text;
        outer.keys.push_back(key);
        text = pathText(outer);
    }
    EXPECT_NE(complaint(text).find("fewer references"), std::string::npos);
}

} // namespace
} // namespace KdvSas
