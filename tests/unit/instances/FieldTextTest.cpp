#include "instances/FieldText.h"

#include <memory>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

struct Fields {
    char text[8];
    char next[8];
};

TEST(FieldText, PointsAtATextThatEndsInItsField)
{
    Fields fields{"seven77", "next"};
    EXPECT_EQ(FieldText(fields.text).c_str(), fields.text);
    EXPECT_STREQ(FieldText("literal").c_str(), "literal");
    const std::string text = "a string";
    EXPECT_EQ(FieldText(text).c_str(), text.c_str());
    const char* const pointer = "a pointer";
    EXPECT_EQ(FieldText(pointer).c_str(), pointer);
}

TEST(FieldText, EndsATextThatFillsItsFieldAtTheFieldsEnd)
{
    Fields fields{{'e', 'i', 'g', 'h', 't', '8', '8', '8'}, "next"};
    const FieldText text(fields.text);
    EXPECT_STREQ(text.c_str(), "eight888");
    EXPECT_NE(text.c_str(), fields.text);
}

TEST(FieldText, IgnoresWhatFollowsTheNulInTheField)
{
    Fields fields{{'a', 'b', '\0', 'c', 'd', 'e', 'f', 'g'}, "next"};
    EXPECT_STREQ(FieldText(fields.text).c_str(), "ab");
    fields.text[0] = '\0';
    EXPECT_STREQ(FieldText(fields.text).c_str(), "");
}

TEST(FieldText, ReadsNothingBehindTheRecord)
{
    // At the end of a heap block, so that the address sanitizer sees a read too many.
    const auto record = std::make_unique<SasHbaRecord>();
    std::memset(record->name, 'x', sizeof record->name);
    EXPECT_EQ(FieldText(record->name).c_str(), std::string(sizeof record->name, 'x'));
}

} // namespace
} // namespace KDV::Test
