#include "sashba/sysfs/SesPages.h"

#include "sashba/sysfs/DeviceText.h"

namespace KDV {
namespace {

constexpr std::size_t headerBytes = 8;
constexpr std::uint8_t sasProtocol = 6;

// What the page says that it has, as far as it is there; empty when it is another page.
ByteView pageOf(ByteView page, std::uint8_t code)
{
    if (page.size() < headerBytes || page.u8(0) != code) return {};
    return page.part(0, std::size_t{4} + page.u16(2));
}

std::string textOf(ByteView bytes) { return std::string(trimmed(bytes.chars())); }

std::size_t elementCount(const SesConfiguration& configuration)
{
    std::size_t count = 0;
    for (const SesElementType& type : configuration.types)
        count += type.elements;
    return count;
}

bool isSlot(std::uint8_t type) { return type == SesElement::deviceSlot || type == SesElement::arrayDeviceSlot; }

// Indices of the elements that stand for bays.
std::vector<std::size_t> slotElements(const SesConfiguration& configuration)
{
    std::vector<std::size_t> slots;
    std::size_t index = 0;
    for (const SesElementType& type : configuration.types) {
        for (std::size_t i = 0; i < type.elements; ++i, ++index) {
            if (isSlot(type.type)) slots.push_back(index);
        }
    }
    return slots;
}

// An index that counts the overall elements too, as one without them.
std::optional<std::size_t> withoutOverall(std::size_t index, const SesConfiguration& configuration)
{
    std::size_t before = 0;
    for (const SesElementType& type : configuration.types) {
        if (index == 0) return std::nullopt; // the overall element itself
        if (index <= type.elements) return before + index - 1;
        index -= std::size_t{1} + type.elements;
        before += type.elements;
    }
    return std::nullopt;
}

SesSlotAddress parseSasDescriptor(ByteView body, bool hasIndex)
{
    constexpr std::size_t phyBytes = 28;
    SesSlotAddress address;
    const std::size_t phys = body.u8(0);
    if (body.u8(1) >> 6 != 0) // a descriptor of expanders or initiators, not of a slot
        return address;
    if (hasIndex) {
        address.slot = body.u8(3);
        address.hasSlot = body.size() > 3;
    }
    const ByteView list = body.from(hasIndex ? 4 : 2);
    for (std::size_t phy = 0; phy < phys && list.size() >= (phy + 1) * phyBytes; ++phy) {
        const std::uint64_t sasAddress = list.u64(phy * phyBytes + 12);
        if (sasAddress != 0) address.sasAddresses.push_back(sasAddress);
    }
    return address;
}

} // namespace

std::optional<SesConfiguration> parseSesConfiguration(ByteView whole)
{
    const ByteView page = pageOf(whole, 0x01);
    if (page.size() < headerBytes + 40) // the descriptor of the primary subenclosure
        return std::nullopt;
    SesConfiguration configuration;
    configuration.generation = page.u32(4);
    std::size_t at = headerBytes;
    std::size_t types = 0;
    const std::size_t subenclosures = std::size_t{1} + page.u8(1);
    for (std::size_t i = 0; i < subenclosures && at + 4 <= page.size(); ++i) {
        const ByteView descriptor = page.part(at, std::size_t{4} + page.u8(at + 3));
        types += descriptor.u8(2);
        if (i == 0) {
            configuration.logicalId = descriptor.u64(4);
            configuration.vendor = textOf(descriptor.part(12, 8));
            configuration.product = textOf(descriptor.part(20, 16));
            configuration.revision = textOf(descriptor.part(36, 4));
        }
        at += std::size_t{4} + page.u8(at + 3);
    }
    for (std::size_t i = 0; i < types && at + 4 <= page.size(); ++i, at += 4)
        configuration.types.push_back({page.u8(at), page.u8(at + 1)});
    return configuration;
}

std::optional<SesStatus> parseSesStatus(ByteView whole, const SesConfiguration& configuration)
{
    const ByteView page = pageOf(whole, 0x02);
    if (page.empty()) return std::nullopt;
    SesStatus status;
    status.flags = page.u8(1);
    status.generation = page.u32(4);
    std::size_t at = headerBytes;
    for (const SesElementType& type : configuration.types) {
        at += 4; // the overall one
        for (std::size_t i = 0; i < type.elements; ++i, at += 4) {
            if (at + 4 > page.size()) return status;
            SesElementStatus element;
            element.type = type.type;
            element.code = page.u8(at) & 0x0F;
            element.predictedFailure = (page.u8(at) & 0x40) != 0;
            for (std::size_t byte = 0; byte < 3; ++byte)
                element.bytes[byte] = page.u8(at + 1 + byte);
            status.elements.push_back(element);
        }
    }
    return status;
}

std::vector<std::string> parseSesDescriptors(ByteView whole, const SesConfiguration& configuration)
{
    const ByteView page = pageOf(whole, 0x07);
    std::vector<std::string> texts;
    std::size_t at = headerBytes;
    const auto next = [&page, &at] {
        const std::size_t length = page.u16(at + 2);
        std::string text = textOf(page.part(at + 4, length));
        at += 4 + length;
        return text;
    };
    for (const SesElementType& type : configuration.types) {
        if (at + 4 > page.size()) return texts;
        next(); // the overall one
        for (std::size_t i = 0; i < type.elements && at + 4 <= page.size(); ++i)
            texts.push_back(next());
    }
    return texts;
}

std::vector<SesSlotAddress> parseSesAdditionalStatus(ByteView whole, const SesConfiguration& configuration)
{
    const ByteView page = pageOf(whole, 0x0A);
    const std::size_t count = elementCount(configuration);
    const std::vector<std::size_t> slots = slotElements(configuration);
    std::vector<SesSlotAddress> addresses;
    std::size_t order = 0;
    for (std::size_t at = headerBytes; at + 2 <= page.size(); at += std::size_t{2} + page.u8(at + 1), ++order) {
        const ByteView descriptor = page.part(at, std::size_t{2} + page.u8(at + 1));
        const bool invalid = (descriptor.u8(0) & 0x80) != 0;
        const bool hasIndex = (descriptor.u8(0) & 0x10) != 0;
        if (invalid || (descriptor.u8(0) & 0x0F) != sasProtocol) continue;
        SesSlotAddress address = parseSasDescriptor(descriptor.from(hasIndex ? 4 : 2), hasIndex);
        if (!hasIndex)
            address.element = order < slots.size() ? std::optional<std::size_t>(slots[order]) : std::nullopt;
        else if ((descriptor.u8(2) & 0x03) == 1)
            address.element = withoutOverall(descriptor.u8(3), configuration);
        else
            address.element = descriptor.u8(3);
        if (address.element && *address.element < count) addresses.push_back(std::move(address));
    }
    return addresses;
}

} // namespace KDV
