// What the pages of an enclosure say together.
#include "sashba/sysfs/SesPages.h"

#include <algorithm>

namespace KDV {
namespace {

// The codes of the records for one kind of part: what a part that failed is called differs from kind to kind.
struct Worst {
    bool known = false;
    bool unclear = false;
    bool degraded = false;
    bool failed = false;

    void add(std::uint8_t code)
    {
        known = known || code == SesCode::ok;
        unclear = unclear || code >= SesCode::unknown; // the codes above it are ways to not tell, or not defined
        degraded = degraded || code == SesCode::nonCritical;
        failed = failed || code == SesCode::critical || code == SesCode::unrecoverable;
    }

    std::uint8_t as(std::uint8_t failedCode) const
    {
        if (failed) return failedCode;
        if (degraded) return 3;
        return known && !unclear ? 2 : 0;
    }
};

// A sensor tells of heat and cold in bits of its own, whatever its code says.
std::uint8_t temperatureCode(const SesElementStatus& element)
{
    constexpr std::uint8_t failures = 0x0A; // over- and under-temperature failure
    constexpr std::uint8_t warnings = 0x05;
    const bool reads = element.code == SesCode::ok || element.code == SesCode::nonCritical;
    if (reads && (element.bytes[2] & failures) != 0) return SesCode::critical;
    if (element.code == SesCode::ok && (element.bytes[2] & warnings) != 0) return SesCode::nonCritical;
    return element.code;
}

void judgeParts(const SesStatus& status, EnclosureState& state)
{
    Worst fans;
    Worst power;
    Worst temperature;
    for (const SesElementStatus& element : status.elements) {
        if (element.type == SesElement::cooling)
            fans.add(element.code);
        else if (element.type == SesElement::powerSupply)
            power.add(element.code);
        else if (element.type == SesElement::temperatureSensor)
            temperature.add(temperatureCode(element));
    }
    state.fans = fans.as(5);
    state.power = power.as(5);
    state.temperature = temperature.as(4);
    if (status.flags & 0x03)
        state.status = 4;
    else if (status.flags & 0x04)
        state.status = 3;
    else
        state.status = status.elements.empty() ? 0 : 2;
}

SlotHealth judgeSlot(const SesElementStatus& element)
{
    constexpr std::uint8_t faultSensed = 0x40;
    SlotHealth slot;
    slot.failed = element.code == SesCode::critical || element.code == SesCode::unrecoverable ||
                  (element.bytes[2] & faultSensed) != 0;
    slot.failurePredicted = element.predictedFailure;
    return slot;
}

} // namespace

std::optional<EnclosureState> enclosureState(ByteView configurationPage, ByteView statusPage, ByteView descriptorPage,
                                             ByteView additionalPage)
{
    const std::optional<SesConfiguration> configuration = parseSesConfiguration(configurationPage);
    if (!configuration) return std::nullopt;
    EnclosureState state;
    state.logicalId = configuration->logicalId;
    state.vendor = configuration->vendor;
    state.product = configuration->product;
    state.revision = configuration->revision;
    const std::optional<SesStatus> status = parseSesStatus(statusPage, *configuration);
    const bool current = status && status->generation == configuration->generation && (status->flags & 0x10) == 0;
    if (current) judgeParts(*status, state);
    const std::vector<std::string> names = parseSesDescriptors(descriptorPage, *configuration);
    std::vector<SesSlotAddress> addresses;
    if (additionalPage.u32(4) == configuration->generation)
        addresses = parseSesAdditionalStatus(additionalPage, *configuration);

    std::size_t index = 0;
    for (const SesElementType& type : configuration->types) {
        for (std::size_t i = 0; i < type.elements; ++i, ++index) {
            if (type.type != SesElement::deviceSlot && type.type != SesElement::arrayDeviceSlot) continue;
            SlotHealth slot;
            slot.order = state.bays++;
            if (current && index < status->elements.size()) slot = judgeSlot(status->elements[index]);
            if (index < names.size()) slot.name = names[index];
            const auto found = std::find_if(addresses.begin(), addresses.end(), [index](const SesSlotAddress& address) {
                return address.element == index;
            });
            if (found != addresses.end()) {
                slot.sasAddresses = found->sasAddresses;
                if (found->hasSlot) slot.slot = found->slot;
            }
            state.slots.push_back(std::move(slot));
        }
    }
    return state;
}

} // namespace KDV
