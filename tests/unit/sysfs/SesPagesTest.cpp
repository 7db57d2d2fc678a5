// Enclosure pages one by one and what they say together.
#include "sashba/sysfs/SesPages.h"

#include "PageBytes.h"

#include <gtest/gtest.h>

namespace KDV {
namespace {

constexpr int slots = SesElement::arrayDeviceSlot;
constexpr int fans = SesElement::cooling;
constexpr int power = SesElement::powerSupply;
constexpr int heat = SesElement::temperatureSensor;

ByteView view(const std::string& bytes) { return ByteView(bytes); }

// Two bays, two fans, a power supply and a sensor.
const std::vector<SesType> types{{slots, 2}, {fans, 2}, {power, 1}, {heat, 1}};

std::string statusWith(int flags, const std::vector<std::string>& elements)
{
    return sesStatus(flags, {{elements[0], elements[1]}, {elements[2], elements[3]}, {elements[4]}, {elements[5]}});
}

std::vector<std::string> allOk() { return std::vector<std::string>(6, sesElement(SesCode::ok)); }

EnclosureState stateOf(const std::string& status, const std::string& additional = "", const std::string& names = "")
{
    const std::string configuration = sesConfiguration(types);
    const auto state = enclosureState(view(configuration), view(status), view(names), view(additional));
    EXPECT_TRUE(state);
    return state.value_or(EnclosureState());
}

TEST(SesConfiguration, TellsTheEnclosureAndItsTypes)
{
    const std::string page = sesConfiguration(types);
    const auto configuration = parseSesConfiguration(view(page));
    ASSERT_TRUE(configuration);
    EXPECT_EQ(configuration->logicalId, 0x500a098000005080U);
    EXPECT_EQ(configuration->vendor, "GLOBEX");
    EXPECT_EQ(configuration->product, "SHELF 24");
    EXPECT_EQ(configuration->revision, "0307");
    EXPECT_EQ(configuration->generation, 1U);
    ASSERT_EQ(configuration->types.size(), 4U);
    EXPECT_EQ(configuration->types[1].type, fans);
    EXPECT_EQ(configuration->types[1].elements, 2);
    for (std::size_t length = 0; length < page.size(); ++length) {
        const auto cut = parseSesConfiguration(view(page.substr(0, length)));
        EXPECT_LE(cut ? cut->types.size() : 0U, (length > 48 ? length - 48 : 0U) / 4) << length;
    }
}

TEST(SesConfiguration, PutsTheTypesOfAllSubenclosuresTogether)
{
    const std::string one = bytesOf({0x11, 0, 1, 36}) + std::string(36, '\0');
    const std::string two = bytesOf({0x11, 1, 2, 36}) + std::string(36, '\0');
    const std::string page = sesPage(0x01, 1, one + two + bytesOf({slots, 4, 0, 0, fans, 1, 1, 0, power, 1, 1, 0}));
    const auto configuration = parseSesConfiguration(view(page));
    ASSERT_TRUE(configuration);
    EXPECT_EQ(configuration->types.size(), 3U);
}

TEST(SesDescriptors, NameTheElements)
{
    const auto descriptor = [](const std::string& text) { return bytesOf({0, 0}) + number16(text.size()) + text; };
    const std::string page = sesPage(0x07, 0,
                                     descriptor("all bays") + descriptor("Bay #1, upper") + descriptor("Bay 2") +
                                         descriptor("") + descriptor("Fan A") + descriptor("Fan B"));
    const auto configuration = parseSesConfiguration(view(sesConfiguration(types)));
    EXPECT_EQ(parseSesDescriptors(view(page), *configuration),
              (std::vector<std::string>{"Bay #1, upper", "Bay 2", "Fan A", "Fan B"}));
}

TEST(SesAdditionalStatus, PutsAddressesToElementsWithAndWithoutIndex)
{
    const auto configuration = parseSesConfiguration(view(sesConfiguration(types)));
    const std::string indexed = sesPage(0x0A, 0, sesSlotDescriptor(1, 7, 0x5000a72001240001));
    auto found = parseSesAdditionalStatus(view(indexed), *configuration);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].element, 1U);
    EXPECT_EQ(found[0].slot, 7);
    EXPECT_EQ(found[0].sasAddresses, (std::vector<std::uint64_t>{0x5000a72001240001}));

    std::string overall = sesSlotDescriptor(2, 7, 0x5000a72001240001);
    overall[2] = 1; // the index counts the overall elements too
    found = parseSesAdditionalStatus(view(sesPage(0x0A, 0, overall)), *configuration);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].element, 1U);

    const std::string phy = std::string(12, '\0') + number64(0x5000a72001240002) + std::string(8, '\0');
    const std::string plain = bytesOf({0x06, 30, 1, 0}) + phy;
    found = parseSesAdditionalStatus(view(sesPage(0x0A, 0, plain + plain)), *configuration);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[1].element, 1U) << "in the order of the bays";
    EXPECT_FALSE(found[1].hasSlot);

    std::string invalid = sesSlotDescriptor(1, 7, 0x5000a72001240001);
    invalid[0] = static_cast<char>(0x96);
    EXPECT_TRUE(parseSesAdditionalStatus(view(sesPage(0x0A, 0, invalid)), *configuration).empty());
    EXPECT_TRUE(parseSesAdditionalStatus(view(sesPage(0x0A, 0, sesSlotDescriptor(99, 7, 1))), *configuration).empty());
}

TEST(EnclosureState, OfAHealthyBox)
{
    const EnclosureState state = stateOf(statusWith(0, allOk()), sesPage(0x0A, 0, sesSlotDescriptor(1, 7, 0x5000a7)));
    EXPECT_EQ(state.status, 2);
    EXPECT_EQ(state.fans, 2);
    EXPECT_EQ(state.power, 2);
    EXPECT_EQ(state.temperature, 2);
    EXPECT_EQ(state.bays, 2U);
    ASSERT_EQ(state.slots.size(), 2U);
    EXPECT_EQ(state.slots[1].slot, 7);
    EXPECT_EQ(state.slots[1].sasAddresses.size(), 1U);
    EXPECT_FALSE(state.slots[1].failed || state.slots[1].failurePredicted);
}

TEST(EnclosureState, OfPartsByTheirWorst)
{
    struct {
        int code, fan, supply, sensor;
    } const cases[] = {{SesCode::ok, 2, 2, 2},
                       {SesCode::nonCritical, 3, 3, 3},
                       {SesCode::critical, 5, 5, 4},
                       {SesCode::unrecoverable, 5, 5, 4},
                       {SesCode::notInstalled, 2, 0, 0},
                       {SesCode::unsupported, 2, 0, 0},
                       {SesCode::unknown, 0, 0, 0},
                       {SesCode::notAvailable, 0, 0, 0},
                       {SesCode::noAccessAllowed, 0, 0, 0},
                       {15, 0, 0, 0}};
    for (const auto& one : cases) {
        std::vector<std::string> elements = allOk();
        elements[3] = elements[4] = elements[5] = sesElement(one.code); // one of the two fans, the others alone
        const EnclosureState state = stateOf(statusWith(0, elements));
        EXPECT_EQ(state.fans, one.fan) << one.code;
        EXPECT_EQ(state.power, one.supply) << one.code;
        EXPECT_EQ(state.temperature, one.sensor) << one.code;
    }
}

TEST(EnclosureState, OfASensorByItsBitsToo)
{
    const std::pair<int, int> cases[] = {{0x08, 4}, {0x02, 4}, {0x04, 3}, {0x01, 3}, {0x00, 2}, {0x10, 2}};
    for (const auto& [bits, code] : cases) {
        std::vector<std::string> elements = allOk();
        elements[5] = sesElement(SesCode::ok, 0, 60, bits);
        EXPECT_EQ(stateOf(statusWith(0, elements)).temperature, code) << bits;
    }
}

TEST(EnclosureState, OfTheWholeByTheFlagsOfItsPage)
{
    const std::pair<int, int> cases[] = {{0x00, 2}, {0x08, 2}, {0x04, 3}, {0x02, 4}, {0x01, 4}, {0x06, 4}, {0x10, 0}};
    for (const auto& [flags, status] : cases)
        EXPECT_EQ(stateOf(statusWith(flags, allOk())).status, status) << flags;
}

TEST(EnclosureState, OfBaysThatFailedOrWill)
{
    std::vector<std::string> elements = allOk();
    elements[0] = sesElement(SesCode::nonCritical | 0x40);
    elements[1] = sesElement(SesCode::ok, 0, 0, 0x40);
    const EnclosureState state = stateOf(statusWith(0, elements));
    EXPECT_TRUE(state.slots[0].failurePredicted);
    EXPECT_FALSE(state.slots[0].failed);
    EXPECT_TRUE(state.slots[1].failed) << "the box sensed a fault";
    elements[1] = sesElement(SesCode::ok, 0, 0, 0x20);
    EXPECT_FALSE(stateOf(statusWith(0, elements)).slots[1].failed) << "somebody only asked for the light";
}

TEST(EnclosureState, IsUnknownFromAPageOfAnotherGenerationOrNone)
{
    std::string status = statusWith(0, allOk());
    status[7] = 2;
    EXPECT_EQ(stateOf(status).status, 0);
    EXPECT_EQ(stateOf(status).fans, 0);
    EXPECT_EQ(stateOf("").status, 0);
    EXPECT_EQ(stateOf("").bays, 2U) << "the configuration alone tells them";
    EXPECT_FALSE(enclosureState({}, view(statusWith(0, allOk())), {}, {}));
}

TEST(EnclosureState, FromPagesCutAnywhereIsNeverBetterThanKnown)
{
    const std::string whole = statusWith(0, allOk());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const EnclosureState state = stateOf(whole.substr(0, length));
        EXPECT_EQ(state.temperature, 0) << length << ": its sensor is the last element";
    }
}

} // namespace
} // namespace KDV
