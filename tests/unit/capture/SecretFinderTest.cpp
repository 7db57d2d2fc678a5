// Where secrets are looked for, and pages that are nonsense.
#include "capture/SecretFinder.h"

#include "FakeSysfs.h"
#include "PageBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KdvSas {
namespace {

using KDV::bytesOf;
using KDV::number64;
using KDV::padded;
using KDV::vpdPage;
using testing::ElementsAre;
using testing::IsEmpty;

Secrets secretsIn(const std::string& path, const std::string& content)
{
    return secretsOf({{CapturedEntry::Kind::File, path, content}});
}

std::string designator(int kind, const std::string& name)
{
    return bytesOf({1, kind, 0, static_cast<int>(name.size())}) + name;
}

TEST(SecretsOf, AttributesAreTheirTexts)
{
    EXPECT_THAT(secretsIn("sys/x/board_tracer", "SP91542353\n").texts, ElementsAre("SP91542353"));
    EXPECT_THAT(secretsIn("sys/x/serial_number", " 5402839071 \n").texts, ElementsAre("5402839071"));
    EXPECT_THAT(secretsIn("sys/x/pcba_sn", "AX1234\n").texts, ElementsAre("AX1234"));
    EXPECT_THAT(secretsIn("sys/x/vpd_pg80", vpdPage(0x80, "  K1GXYZ8D  ")).texts, ElementsAre("K1GXYZ8D"));
    EXPECT_THAT(secretsIn("sys/x/sas_address", "0x5000c500aaaa0000\n").addresses, ElementsAre(0x5000c500aaaa0000));
    EXPECT_THAT(secretsIn("sys/x/wwid", "eui.0025385b71b02e2f\n").addresses, ElementsAre(0x0025385b71b02e2f));
    EXPECT_THAT(secretsIn("sys/x/wwid", "t10.ATA     ACME 40   WD-WCC4N7XYZ123\n").texts,
                ElementsAre("WD-WCC4N7XYZ123"));
    EXPECT_THAT(secretsIn("sys/x/unique_id", "5000C5009E8F7A600000000000000000\n").longNames, testing::SizeIs(1));
    EXPECT_THAT(secretsIn("sys/x/unique_id", "3\n").texts, IsEmpty());
    EXPECT_THAT(secretsIn("sys/x/lunid", "0x0000000000000000\n").texts, IsEmpty());
    EXPECT_THAT(secretsIn("sys/x/size", "9876543210\n").texts, IsEmpty());
    EXPECT_THAT(secretsIn("sys/x/model", "K1GXYZ8D\n").texts, IsEmpty());
}

TEST(SecretsOf, InquiryDataAreWordsWithDigitsWhereMakersWriteWhatTheyLike)
{
    const std::string data = std::string(8, '\0') + padded("ACME", 8) + padded("SPINDLE 600", 16) + "SP07" +
                             padded("ZA1BCDEF  00 SP07", 20) + std::string(40, '\0') + "Copyright 2016 PN 81Y93042";
    EXPECT_THAT(secretsOf({{CapturedEntry::Kind::File, "sys/x/inquiry", data},
                           {CapturedEntry::Kind::File, "sys/x/rev", "SP07\n"}})
                    .texts,
                ElementsAre("81Y93042", "ZA1BCDEF"));
    EXPECT_THAT(secretsIn("sys/x/inquiry", "short 12345").texts, IsEmpty());
}

TEST(SecretsOf, DeviceNamesAreOfEveryKind)
{
    const std::string page =
        vpdPage(0x83, designator(0x03, number64(0x5000c500aaaa0000)) + designator(0x02, number64(0x0025385b71b02e2f)) +
                          designator(0x03, number64(0x600508b1001c5e0d) + number64(1)) +
                          designator(0x08, "naa.5000c500aaaa0003" + std::string(4, '\0')) +
                          designator(0x08, "iqn.2001-04.example:disk17") +
                          designator(0x01, padded("ACME", 8) + "SPINDLE XY1234") +
                          designator(0x0A, std::string(2, '\0') + number64(0x123456789abcdef0) + number64(7)) +
                          designator(0x04, bytesOf({0, 0, 0, 1})));
    const Secrets secrets = secretsIn("sys/x/vpd_pg83", page);
    EXPECT_THAT(secrets.addresses, ElementsAre(0x0025385b71b02e2f, 0x5000c500aaaa0000, 0x5000c500aaaa0003));
    EXPECT_THAT(secrets.longNames, testing::SizeIs(2));
    EXPECT_THAT(secrets.texts, ElementsAre("XY1234", "iqn.2001-04.example:disk17"));
}

TEST(SecretsOf, EnclosurePagesAreIdentifiersAddressesAndWordsLikeNumbers)
{
    std::string body = bytesOf({0x11, 0, 0, 52}) + number64(0x500a098000005080) + padded("GLOBEX", 8) +
                       padded("SHELF 24", 16) + "0307" + padded("SHFMS1234567890", 16);
    body += bytesOf({0x11, 1, 0, 36}) + number64(0x500a098000006080) + std::string(28, ' ');
    const Secrets configuration = secretsIn("pages/0:0:8:0/ses_01", KDV::sesPage(0x01, 1, body));
    EXPECT_THAT(configuration.addresses, ElementsAre(0x500a098000005080, 0x500a098000006080));
    EXPECT_THAT(configuration.texts, ElementsAre("SHFMS1234567890"));

    const std::string names = "Slot 01 PSU A1234567 5000CCA26128B1F5 2.5in";
    const Secrets descriptors = secretsIn("pages/0:0:8:0/ses_07", names);
    EXPECT_TRUE(descriptors.texts.count("A1234567"));
    EXPECT_FALSE(descriptors.texts.count("Slot"));
    EXPECT_THAT(descriptors.addresses, ElementsAre(0x5000cca26128b1f5));

    const std::string expander = bytesOf({0x16, 14, 0, 0, 0, 0x40, 0, 0}) + number64(0x500a09800000507f);
    const Secrets additional = secretsIn(
        "pages/0:0:8:0/ses_0a", KDV::sesPage(0x0A, 0, KDV::sesSlotDescriptor(0, 3, 0x5000cca26128b1f5) + expander));
    EXPECT_THAT(additional.addresses, ElementsAre(0x5000cca26128b1f5, 0x500a09800000507f, 0x500a098000005080));

    const std::string nvme = bytesOf({0x1B, 26, 0, 0, 1, 0x20, 0, 0}) + padded("S4YNNE0M123456", 20);
    const std::string fibre =
        bytesOf({0x10, 22, 0, 1, 1, 0, 0, 0}) + number64(0x5000c500aaaa0000) + std::string(8, '\0');
    const Secrets others = secretsIn("pages/0:0:8:0/ses_0a", KDV::sesPage(0x0A, 0, nvme + fibre));
    EXPECT_THAT(others.texts, ElementsAre("S4YNNE0M123456"));
    EXPECT_THAT(others.addresses, testing::Contains(0x5000c500aaaa0000));
}

TEST(SecretsOf, SmartctlOutputAreSerialsAndNames)
{
    const Secrets secrets =
        secretsIn("pages/0:0:2:0/smartctl.json", R"({"serial_number": "WD-1234", "model": "X 4000 Y",
        "logical_unit_id": "0x5000c500aaaa0000", "wwn": {"naa": 5, "oui": 3152, "id": 123},
        "list": [{"port": "0x5000c500aaaa0001"}]})");
    EXPECT_THAT(secrets.texts, ElementsAre("WD-1234"));
    EXPECT_THAT(secrets.addresses, ElementsAre((std::uint64_t{5} << 60) + (std::uint64_t{3152} << 36) + 123,
                                               0x5000c500aaaa0000, 0x5000c500aaaa0001));
    EXPECT_THAT(secretsIn("pages/x/smartctl.json", std::string(100000, '[')).texts, IsEmpty());
    EXPECT_THAT(secretsIn("pages/x/smartctl.json", R"({"wwn": {"naa": -5, "oui": "x", "id": 1e99}})").addresses,
                IsEmpty());
}

// Every page cut at every length, under the sanitizers.
TEST(SecretsOf, PagesMayEndAnywhere)
{
    const std::vector<std::pair<std::string, std::string>> pages{
        {"sys/x/vpd_pg80", vpdPage(0x80, "K1GXYZ8D")},
        {"sys/x/vpd_pg83",
         vpdPage(0x83, designator(0x03, number64(0x5000c500aaaa0000)) + designator(0x01, "ACME    A 12"))},
        {"sys/x/vpd_pg89", vpdPage(0x89, std::string(568, 'A'))},
        {"sys/x/inquiry", std::string(110, 'B')},
        {"pages/x/ses_01", KDV::sesConfiguration({{0x17, 2}})},
        {"pages/x/ses_0a", KDV::sesPage(0x0A, 0, KDV::sesSlotDescriptor(0, 3, 0x5000cca26128b1f5))},
        {"pages/x/smartctl.json", R"({"wwn": {"naa": 5, "oui": 3152, "id": 123}})"}};
    for (const auto& [path, page] : pages) {
        const Secrets whole = secretsIn(path, page);
        for (std::size_t length = 0; length < page.size(); ++length)
            EXPECT_LE(secretsIn(path, page.substr(0, length)).addresses.size(), whole.addresses.size() + 1) << path;
    }
    for (int length = 0; length < 256; ++length) { // a length in the page that has nothing to do with it
        const std::string page = bytesOf({0x0A, 0, 0, length, 0, 0, 0, 1, 0x16, length, 0, length, length, 0});
        EXPECT_THAT(secretsIn("pages/x/ses_0a", page).addresses, IsEmpty());
        EXPECT_THAT(secretsIn("pages/x/ses_01", page).addresses, IsEmpty());
        EXPECT_THAT(secretsIn("sys/x/vpd_pg83", page).addresses, IsEmpty());
    }
}

} // namespace
} // namespace KdvSas
