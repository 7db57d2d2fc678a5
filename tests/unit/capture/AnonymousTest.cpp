// Nothing of what tells one machine from another stays in a capture, however it is written there.
#include "capture/Anonymous.h"

#include "ExampleMachine.h"
#include "capture/SecretFinder.h"

#include <algorithm>
#include <cctype>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace KdvSas {
namespace {

std::string digitsOf(const std::string& bytes, bool upper)
{
    std::string text;
    for (const char each : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, upper ? "%02X" : "%02x", static_cast<unsigned char>(each));
        text += digits;
    }
    return text;
}

std::string bytesOf(std::uint64_t value)
{
    std::string bytes;
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

std::string swapped(std::string text)
{
    for (std::size_t at = 0; at + 1 < text.size(); at += 2)
        std::swap(text[at], text[at + 1]);
    return text;
}

// Everything that one of the example's secrets may look like.
std::set<std::string> forms()
{
    std::set<std::string> forms;
    for (const std::string& text : exampleSerials()) {
        for (const std::string& padded : {text, " " + text}) { // swapped in pairs, it depends on where it begins
            const std::string even = padded.substr(0, padded.size() & ~std::size_t{1});
            forms.insert(swapped(even));
        }
        forms.insert({text, digitsOf(text, false), digitsOf(text, true)});
    }
    for (const std::uint64_t address : exampleAddresses()) {
        std::string bytes = bytesOf(address);
        forms.insert({bytes, digitsOf(bytes, false), digitsOf(bytes, true), swapped(bytes)});
        forms.insert(std::to_string(address));
        forms.insert(std::to_string(address & 0xFFFFFFFFF)); // as smartctl divides it
        std::reverse(bytes.begin(), bytes.end());
        forms.insert(bytes);
    }
    return forms;
}

struct Found {
    std::string where, what;
};

std::vector<Found> secretsLeft(const std::vector<CapturedEntry>& entries)
{
    std::vector<Found> found;
    const std::set<std::string> all = forms();
    for (const CapturedEntry& entry : entries) {
        for (const std::string& form : all) {
            if (entry.content.find(form) != std::string::npos) found.push_back({entry.path, form});
            if (entry.path.find(form) != std::string::npos) found.push_back({"name of " + entry.path, form});
        }
    }
    return found;
}

class AnonymousCapture : public testing::Test {
protected:
    AnonymousCapture() { buildExampleMachine(machine); }

    Captured anonymous()
    {
        Captured captured = captureOf(machine).captured;
        makeAnonymous(captured, secretsOf(captured.entries), systemRandom());
        return captured;
    }

    KDV::FakeSysfs machine;
};

TEST_F(AnonymousCapture, HasNoSecretAnywhere)
{
    const Captured asItIs = captureOf(machine).captured;
    std::set<std::string> seen;
    for (const Found& each : secretsLeft(asItIs.entries))
        seen.insert(each.what);
    EXPECT_GE(seen.size(), exampleSerials().size() + exampleAddresses().size() - 1) << "the search finds what is there";

    for (const Found& left : secretsLeft(anonymous().entries))
        ADD_FAILURE() << left.where << " still has " << testing::PrintToString(left.what);
}

TEST_F(AnonymousCapture, HasNoneInTheNamesOfWhatWasNotRead)
{
    const std::string slot = "devices/pci0000:00/0000:00:01.0/0000:01:00.0/host0/target0:0:9/0:0:9:0/enclosure/0:0:9:0/"
                             "Slot K1GXYZ8D0000R712 5000CCA26128B1F5";
    machine.file(slot + "/slot", std::string(300000, '1'));
    const Captured captured = anonymous();
    ASSERT_EQ(captured.unread.size(), 1U);
    EXPECT_THAT(captured.unread.front().path, testing::HasSubstr("/enclosure/0:0:9:0/Slot "));
    EXPECT_THAT(captured.unread.front().path, testing::Not(testing::HasSubstr("K1GXYZ8D")));
    EXPECT_THAT(captured.unread.front().path, testing::Not(testing::HasSubstr("CCA26128B1F5")));
}

TEST_F(AnonymousCapture, KeepsAllLengths)
{
    const Captured asItIs = captureOf(machine).captured;
    const Captured captured = anonymous();
    ASSERT_EQ(captured.entries.size(), asItIs.entries.size());
    for (std::size_t i = 0; i < captured.entries.size(); ++i) {
        const CapturedEntry& entry = captured.entries[i];
        EXPECT_EQ(entry.path.size(), asItIs.entries[i].path.size()) << entry.path;
        if (entry.path.find("smartctl.json") == std::string::npos) {
            EXPECT_EQ(entry.content.size(), asItIs.entries[i].content.size()) << entry.path;
        }
    }
}

TEST_F(AnonymousCapture, IsAnotherOneEachTime)
{
    const auto serialIn = [](const Captured& captured) {
        for (const CapturedEntry& entry : captured.entries) {
            if (entry.path.find("/board_tracer") != std::string::npos) return entry.content;
        }
        return std::string();
    };
    const std::string one = serialIn(anonymous());
    EXPECT_EQ(one.size(), std::string("SP91542353\n").size());
    EXPECT_NE(one, serialIn(anonymous()));
}

TEST_F(AnonymousCapture, LeavesOutOutputThatIsNoJson)
{
    machine.page("0:0:2:0", "smartctl.json", R"({"smartctl": {}, "serial_number": "WD-WCC4N7XY)");
    const Captured captured = anonymous();
    for (const CapturedEntry& entry : captured.entries)
        EXPECT_EQ(entry.path.find("smartctl.json"), std::string::npos) << "it is left out";
    ASSERT_EQ(captured.unread.size(), 1U);
    EXPECT_EQ(captured.unread.front().path, "pages/0:0:2:0/smartctl.json");
}

TEST_F(AnonymousCapture, HasARightSumInAtaData)
{
    for (const CapturedEntry& entry : anonymous().entries) {
        if (entry.path.find("vpd_pg89") == std::string::npos) continue;
        unsigned sum = 0;
        for (std::size_t at = 60; at < 572; ++at)
            sum += static_cast<unsigned char>(entry.content.at(at));
        EXPECT_EQ(sum & 0xFF, 0U);
        return;
    }
    FAIL() << "no ATA page";
}

} // namespace
} // namespace KdvSas
