// Stand-ins of secrets: what they keep of them and what they do not, and where they are put in.
#include "capture/Substitutes.h"

#include "capture/ByteReplacer.h"

#include <algorithm>
#include <cctype>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KdvSas {
namespace {

Random seeded(unsigned seed)
{
    return [engine = std::mt19937_64(seed)]() mutable { return engine(); };
}

Secrets withAddresses(const std::set<std::uint64_t>& addresses)
{
    Secrets secrets;
    for (const std::uint64_t address : addresses)
        secrets.addAddress(address);
    return secrets;
}

Secrets withTexts(const std::vector<std::string>& texts)
{
    Secrets secrets;
    for (const std::string& text : texts)
        secrets.addText(text);
    return secrets;
}

TEST(SubstitutesOfAddresses, KeepMakerOrderAndNeighbours)
{
    const std::set<std::uint64_t> addresses{
        0x500062b2047b51c0, 0x500062b2047b51c4, 0x5000c500aaaa00ff, 0x5000c500aaaa0100, 0x5000c500aaaa0101,
        0x5000c500ffffffff, 0x500a098000005080, 0x0025385b71b02e2f, 0x3000000000001234, 0x20000025b5000001};
    for (unsigned seed = 0; seed < 200; ++seed) {
        const auto drawn = drawSubstitutes(withAddresses(addresses), seeded(seed)).addresses;
        ASSERT_EQ(drawn.size(), addresses.size());
        std::uint64_t before = 0;
        for (const auto& [address, substitute] : drawn) {
            EXPECT_GT(substitute, before) << "order, and each another one";
            before = substitute;
            EXPECT_EQ(addresses.count(substitute), 0U);
            EXPECT_EQ(substitute >> 60, address >> 60);
            EXPECT_EQ(substitute & 15, address & 15);
            if (address >> 60 == 5) {
                EXPECT_EQ(substitute >> 36, address >> 36) << "the maker";
            }
        }
        EXPECT_EQ(drawn.at(0x500062b2047b51c0) >> 4, drawn.at(0x500062b2047b51c4) >> 4);
        EXPECT_EQ(drawn.at(0x5000c500aaaa0100) - drawn.at(0x5000c500aaaa00ff), 1U);
        EXPECT_EQ(drawn.at(0x5000c500aaaa0101) - drawn.at(0x5000c500aaaa00ff), 2U);
    }
}

TEST(SubstitutesOfAddresses, OfAWholeRackAreDistinct)
{
    std::set<std::uint64_t> addresses;
    for (std::uint64_t i = 0; i < 5000; ++i)
        addresses.insert(0x5000c50010000000 + i * 977);
    const auto drawn = drawSubstitutes(withAddresses(addresses), seeded(1)).addresses;
    std::set<std::uint64_t> substitutes;
    for (const auto& [address, substitute] : drawn) {
        substitutes.insert(substitute);
        EXPECT_EQ(substitute >> 36, address >> 36);
    }
    EXPECT_EQ(substitutes.size(), addresses.size());
}

TEST(SubstitutesOfAddresses, AreOthersInEachCapture)
{
    const Secrets secrets = withAddresses({0x5000c500aaaa0000});
    std::set<std::uint64_t> seen;
    for (int i = 0; i < 20; ++i)
        seen.insert(drawSubstitutes(secrets, systemRandom()).addresses.begin()->second);
    EXPECT_EQ(seen.size(), 20U);
}

TEST(SubstitutesOfLongNames, ShareTheirFrontAsTheOriginalsDo)
{
    Secrets secrets;
    ASSERT_TRUE(secrets.addHexName("naa.600508b1001c5e0d77aa3f0912b4c6d8"));
    ASSERT_TRUE(secrets.addHexName("600508b1001c5e0dffffffffffffffff"));
    ASSERT_TRUE(secrets.addHexName("5000C500AAAA00000000000000000000"));
    secrets.addAddress(0x5000c500aaaa0000);
    const Substitutes drawn = drawSubstitutes(secrets, seeded(1));
    ASSERT_EQ(drawn.longNames.size(), 3U);
    const std::string field = drawn.longNames.begin()->second;
    EXPECT_EQ(field.substr(8), std::string(8, '\0')) << "a short name in a long field";
    const auto second = std::next(drawn.longNames.begin());
    const auto third = std::next(second);
    EXPECT_EQ(second->second.substr(0, 8), third->second.substr(0, 8));
    EXPECT_NE(second->second.substr(8), third->second.substr(8));
    const std::string line = ByteReplacer(drawn).replaced("5000C500AAAA0000 5000C500AAAA00000000000000000000");
    EXPECT_EQ(line.substr(0, 16), line.substr(17, 16));
}

TEST(SubstitutesOfTexts, AreOfTheSameLengthAndLetters)
{
    const std::vector<std::string> texts{"WD-WCC4N7XYZ123", "0001", "0002", "0003", "ab:cd:01", "Rack 7/K1GXYZ8D"};
    for (unsigned seed = 0; seed < 200; ++seed) {
        const auto drawn = drawSubstitutes(withTexts(texts), seeded(seed)).texts;
        ASSERT_EQ(drawn.size(), texts.size());
        std::set<std::string> substitutes;
        for (const auto& [text, substitute] : drawn) {
            ASSERT_EQ(substitute.size(), text.size());
            EXPECT_THAT(texts, testing::Not(testing::Contains(substitute)));
            substitutes.insert(substitute);
            for (std::size_t at = 0; at < text.size(); ++at) {
                const auto was = static_cast<unsigned char>(text[at]);
                const auto is = static_cast<unsigned char>(substitute[at]);
                EXPECT_EQ(std::isdigit(was) != 0, std::isdigit(is) != 0);
                EXPECT_EQ(std::isupper(was) != 0, std::isupper(is) != 0);
                if (std::isalnum(was) == 0) {
                    EXPECT_EQ(was, is);
                }
            }
        }
        EXPECT_EQ(substitutes.size(), texts.size());
        EXPECT_LT(drawn.at("0001"), drawn.at("0002"));
        EXPECT_LT(drawn.at("0002"), drawn.at("0003"));
        EXPECT_EQ(drawn.at("ab:cd:01").find_first_of("ghijklmnopqrstuvwxyz"), std::string::npos) << "digits in base 16";
    }
}

TEST(SubstitutesOfTexts, AreDistinctWhereMoreAreNeededThanThereAreOfTheirKind)
{
    std::vector<std::string> texts;
    for (int i = 1000; i < 7000; ++i)
        texts.push_back(std::to_string(i));
    const Secrets secrets = withTexts(texts);
    std::set<std::string> all = secrets.texts;
    ASSERT_GT(all.size(), 5900U);
    for (const auto& [text, substitute] : drawSubstitutes(secrets, seeded(1)).texts)
        EXPECT_TRUE(all.insert(substitute).second) << substitute;
}

TEST(SubstitutesOfTexts, HaveThoseOfTheTextsInThem)
{
    const auto drawn = drawSubstitutes(withTexts({"K1GXYZ8D", "K1GXYZ8D0000R712", "X-K1GXYZ8D"}), seeded(3)).texts;
    EXPECT_EQ(drawn.at("K1GXYZ8D0000R712").substr(0, 8), drawn.at("K1GXYZ8D"));
    EXPECT_NE(drawn.at("K1GXYZ8D0000R712").substr(8), "0000R712");
    EXPECT_EQ(drawn.at("X-K1GXYZ8D").substr(2), drawn.at("K1GXYZ8D"));
}

TEST(SubstitutesOfTexts, ThatAreAddressesAreTheAddresses)
{
    Secrets secrets = withAddresses({0x5000c500aaaa0000});
    secrets.addText("5000C500AAAA0000");
    const Substitutes drawn = drawSubstitutes(secrets, seeded(1));
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llX", static_cast<unsigned long long>(drawn.addresses.begin()->second));
    EXPECT_EQ(drawn.texts.begin()->second, digits);
}

TEST(Secrets, AreNotTextsThatSayNothing)
{
    const Secrets secrets =
        withTexts({"", "N/A", "  ", "0000000000", "None", "Not Specified", "x", "-----", "bad\nline 17"});
    EXPECT_TRUE(secrets.texts.empty());
    Secrets addresses = withAddresses({0, 1, 0xFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF});
    addresses.addLongName(std::string(16, '\0'));
    addresses.addLongName("short");
    EXPECT_TRUE(addresses.addresses.empty());
    EXPECT_TRUE(addresses.longNames.empty());
}

TEST(Secrets, AreNamesOfTheUsualFormAnywhereInAText)
{
    Secrets secrets;
    secrets.addHexNamesIn("Drive Slot #24_5000CCA26128B1F5 0x500062b2047b51c4,naa.600508b1001c5e0d77aa3f0912b4c6d8 "
                          "15000cca26128b1f5 9000cca26128b1f5 5000cca2");
    EXPECT_EQ(secrets.addresses, (std::set<std::uint64_t>{0x5000cca26128b1f5, 0x500062b2047b51c4}));
    EXPECT_EQ(secrets.longNames.size(), 1U);
}

class Replacing : public testing::Test {
protected:
    Substitutes substitutes{{{0x5000c500aaaa0001, 0x5000c500bbbb0009}},
                            {},
                            {{"K1GXYZ8D", "A2BCDE3F"}, {"1234", "9876"}, {"12345678", "99887766"}},
                            {{"storage", "abcdefg"}}};
    ByteReplacer replacer{substitutes};
};

TEST_F(Replacing, KnowsAddressesInEveryForm)
{
    EXPECT_EQ(replacer.replaced("0x5000c500aaaa0001"), "0x5000c500bbbb0009");
    EXPECT_EQ(replacer.replaced("x5000C500AAAA0001y"), "x5000C500BBBB0009y");
    EXPECT_EQ(replacer.replaced("50:00:c5:00:aa:aa:00:01"), "50:00:c5:00:bb:bb:00:09");
    EXPECT_EQ(replacer.replaced(std::string("a\x50\x00\xc5\x00\xaa\xaa\x00\x01z", 10)),
              std::string("a\x50\x00\xc5\x00\xbb\xbb\x00\x09z", 10));
    EXPECT_EQ(replacer.replaced(std::string("\x01\x00\xaa\xaa\x00\xc5\x00\x50", 8)),
              std::string("\x09\x00\xbb\xbb\x00\xc5\x00\x50", 8));
    EXPECT_EQ(replacer.replaced("5000c500aaaa000"), "5000c500aaaa000") << "not all of it";
    EXPECT_EQ(replacer.replacedNames("K1GXYZ8D 5000c500aaaa0001"), "K1GXYZ8D 5000c500bbbb0009");
}

TEST_F(Replacing, TakesShortAndPlainNumbersOnlyWhereTheyStandAlone)
{
    EXPECT_EQ(replacer.replaced("SN:K1GXYZ8DX"), "SN:A2BCDE3FX");
    EXPECT_EQ(replacer.replaced("1234 x1234 1234_ 12345678 123456789"), "9876 x1234 9876_ 99887766 123456789");
    EXPECT_EQ(replacer.replaced("storage storages"), "abcdefg storages");
    EXPECT_EQ(replacer.replaced("4b314758595a3844"), "4132424344453346") << "digits of the letters";
}

TEST_F(Replacing, GoesOverItsOwnResultNotAgain)
{
    const Substitutes turn{{}, {}, {{"AAAAAA", "BBBBBB"}, {"BBBBBB", "CCCCCC"}}, {}};
    EXPECT_EQ(ByteReplacer(turn).replaced("AAAAAABBBBBB"), "BBBBBBCCCCCC");
}

} // namespace
} // namespace KdvSas
