#include "hostxml/XmlText.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

std::string textOf(const std::string& bytes)
{
    ReplyBuffer out;
    appendText(out, bytes);
    return std::string(out.view());
}

std::string attributeOf(const std::string& bytes)
{
    ReplyBuffer out;
    appendAttribute(out, bytes);
    return std::string(out.view());
}

template <class Number>
std::string numberOf(Number number)
{
    ReplyBuffer out;
    appendNumber(out, number);
    return std::string(out.view());
}

const std::string replaced = "\xEF\xBF\xBD";

// The slow and obvious way, for ASCII only.
std::string expectedText(const std::string& bytes)
{
    std::string text;
    for (char c : bytes)
        switch (c) {
        case '&':
            text += "&amp;";
            break;
        case '<':
            text += "&lt;";
            break;
        case '>':
            text += "&gt;";
            break;
        case '"':
            text += "&quot;";
            break;
        case '\r':
            text += "&#13;";
            break;
        default:
            text += c;
        }
    return text;
}

} // namespace

TEST(XmlText, LeavesPlainTextOfEveryLengthAsItIs)
{
    std::string text;
    for (int length = 0; length < 70; ++length) {
        EXPECT_EQ(textOf(text), text);
        text += static_cast<char>(' ' + length % 2 + 7 * (length % 5) + 40);
    }
}

TEST(XmlText, EscapesASpecialCharacterAtEveryPlaceOfEveryLength)
{
    for (char special : {'&', '<', '>', '"', '\r'})
        for (std::size_t length = 1; length < 34; ++length)
            for (std::size_t place = 0; place < length; ++place) {
                std::string text(length, 'a');
                text[place] = special;
                EXPECT_EQ(textOf(text), expectedText(text)) << length << ' ' << place;
            }
}

TEST(XmlText, EscapesATextOfSpecialCharactersOnly)
{
    EXPECT_EQ(textOf(std::string(1000, '"')), expectedText(std::string(1000, '"')));
}

TEST(XmlText, KeepsLineFeedsAndTabsInElementsAndRefersToThemInAttributes)
{
    EXPECT_EQ(textOf("a\n\tb"), "a\n\tb");
    EXPECT_EQ(attributeOf("a\n\tb\r"), "a&#10;&#9;b&#13;");
}

TEST(XmlText, ReplacesEveryControlCharacterThatXmlForbids)
{
    for (int c = 0; c < 0x20; ++c)
        if (c != '\t' && c != '\n' && c != '\r') {
            const std::string text(1, static_cast<char>(c));
            EXPECT_EQ(textOf(text), replaced) << c;
            EXPECT_EQ(textOf("0123456" + text + "89"), "0123456" + replaced + "89") << c;
        }
    EXPECT_EQ(textOf("\x7F"), "\x7F") << "DEL is allowed";
}

TEST(XmlText, KeepsWellFormedUtf8)
{
    for (const char* text : {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBD",
                             "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF",
                             "Stra\xC3\x9F"
                             "e \xE2\x82\xAC 5"})
        EXPECT_EQ(textOf(text), text);
}

TEST(XmlText, ReplacesEachIllFormedSequenceOnce)
{
    EXPECT_EQ(textOf("a\x80z"), "a" + replaced + "z") << "a trail byte alone";
    EXPECT_EQ(textOf("\xC3"), replaced) << "cut at the end";
    EXPECT_EQ(textOf("\xE2\x82"), replaced) << "cut after two of three";
    EXPECT_EQ(textOf("\xF0\x9F\x98z"), replaced + "z") << "cut after three of four";
    EXPECT_EQ(textOf("\xC3("), replaced + "(");
    EXPECT_EQ(textOf("\xC0\xAF"), replaced + replaced) << "overlong";
    EXPECT_EQ(textOf("\xE0\x80\xAF"), replaced + replaced + replaced) << "overlong";
    EXPECT_EQ(textOf("\xED\xA0\x80"), replaced + replaced + replaced) << "half of a surrogate pair";
    EXPECT_EQ(textOf("\xF4\x90\x80\x80"), replaced + replaced + replaced + replaced) << "beyond Unicode";
    EXPECT_EQ(textOf("\xFF\xFE"), replaced + replaced);
    EXPECT_EQ(textOf("\xEF\xBF\xBE"), replaced) << "U+FFFE";
    EXPECT_EQ(textOf("\xEF\xBF\xBF"), replaced) << "U+FFFF";
}

TEST(XmlText, StopsAtTheGivenLengthAndTakesNulAsAByte)
{
    EXPECT_EQ(textOf(std::string("a\0b", 3)), "a" + replaced + "b");
}

TEST(XmlText, WritesNumbersAtTheirLimits)
{
    EXPECT_EQ(numberOf(std::uint64_t{0}), "0");
    EXPECT_EQ(numberOf(std::uint64_t{9}), "9");
    EXPECT_EQ(numberOf(std::uint64_t{10}), "10");
    EXPECT_EQ(numberOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(numberOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(numberOf(std::int64_t{-1}), "-1");
}

TEST(XmlText, WritesRealsWithAPointAndTheirSpecialValuesAsWords)
{
    EXPECT_EQ(numberOf(1.0), "1.0e+00");
    EXPECT_EQ(numberOf(-0.125), "-1.25e-01");
    EXPECT_EQ(numberOf(1.5f), "1.5e+00");
    EXPECT_EQ(numberOf(std::numeric_limits<double>::infinity()), "INF");
    EXPECT_EQ(numberOf(-std::numeric_limits<double>::infinity()), "-INF");
    EXPECT_EQ(numberOf(std::numeric_limits<double>::quiet_NaN()), "NaN");
}

TEST(XmlText, WritesCharactersOfSixteenBits)
{
    const auto character = [](std::uint16_t value) {
        ReplyBuffer out;
        appendChar16(out, value);
        return std::string(out.view());
    };
    EXPECT_EQ(character('<'), "&lt;");
    EXPECT_EQ(character(0xE4), "\xC3\xA4");
    EXPECT_EQ(character(0x20AC), "\xE2\x82\xAC");
    EXPECT_EQ(character(0xFFFF), replaced);
    EXPECT_NE(character(0xD800).find(replaced), std::string::npos);
    EXPECT_EQ(character(0), replaced);
}

TEST(ReplyBuffer, KeepsItsContentWhileItGrowsAndShrinks)
{
    ReplyBuffer buffer;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        buffer.append(std::to_string(i));
        expected += std::to_string(i);
    }
    EXPECT_EQ(buffer.view(), expected);
    buffer.truncate(10);
    buffer.trim(4096);
    EXPECT_EQ(buffer.view(), expected.substr(0, 10));
    buffer.append(std::string(10000, 'x'));
    EXPECT_EQ(buffer.size(), 10010u);
}
