#include "sashba/sysfs/ScsiPages.h"

#include "sashba/sysfs/DeviceText.h"

namespace KDV {
namespace {

std::string textOf(ByteView bytes) { return std::string(trimmed(bytes.chars())); }

// What follows the four-byte header of a VPD page; empty when it is another page.
ByteView vpdBody(ByteView page, std::uint8_t code)
{
    if (page.size() < 4 || page.u8(1) != code) return {};
    return page.part(4, page.u16(2));
}

ByteView logBody(ByteView page, std::uint8_t code)
{
    if (page.size() < 4 || (page.u8(0) & 0x3F) != code ||
        (page.u8(0) & 0x40 && page.u8(1) != 0)) // a subpage is another
        return {};
    return page.part(4, page.u16(2));
}

// The data of the first parameter with this code.
ByteView logParameter(ByteView body, std::uint16_t code)
{
    while (body.size() >= 4) {
        const std::size_t length = body.u8(3);
        if (body.u16(0) == code) return body.part(4, length);
        body = body.from(4 + length);
    }
    return {};
}

// ATA texts hold two characters a word, the first one in the high byte; the page has words with the low byte first.
std::string ataText(ByteView identify, std::size_t firstWord, std::size_t words)
{
    std::string text;
    for (std::size_t word = firstWord; word < firstWord + words; ++word) {
        text += static_cast<char>(identify.u8(word * 2 + 1));
        text += static_cast<char>(identify.u8(word * 2));
    }
    return std::string(trimmed(text));
}

} // namespace

std::optional<InquiryData> parseInquiry(ByteView data)
{
    if (data.size() < 36) return std::nullopt;
    InquiryData inquiry;
    inquiry.type = data.u8(0) & 0x1F;
    inquiry.enclosureServices = (data.u8(6) & 0x40) != 0;
    inquiry.vendor = textOf(data.part(8, 8));
    inquiry.product = textOf(data.part(16, 16));
    inquiry.revision = textOf(data.part(32, 4));
    return inquiry;
}

std::string parseUnitSerialNumber(ByteView page) { return textOf(vpdBody(page, 0x80)); }

std::optional<std::uint64_t> parseNaaName(ByteView page)
{
    ByteView body = vpdBody(page, 0x83);
    while (body.size() >= 4) {
        const std::size_t length = body.u8(3);
        const bool ofLogicalUnit = (body.u8(1) & 0x30) == 0;
        const bool naa = (body.u8(1) & 0x0F) == 3;
        const ByteView name = body.part(4, length);
        if (ofLogicalUnit && naa && length == 8 && name.size() == 8 && name.u64(0) != 0) return name.u64(0);
        body = body.from(4 + length);
    }
    return std::nullopt;
}

std::optional<std::uint16_t> parseRotationRate(ByteView page)
{
    const ByteView body = vpdBody(page, 0xB1);
    if (body.size() < 2) return std::nullopt;
    return body.u16(0);
}

std::optional<AtaIdentity> parseAtaInformation(ByteView page)
{
    constexpr std::size_t identifyAt = 60;
    constexpr std::size_t identifyBytes = 512;
    if (page.size() < identifyAt + identifyBytes || page.u8(1) != 0x89) return std::nullopt;
    const ByteView identify = page.part(identifyAt, identifyBytes);
    AtaIdentity ata;
    ata.serial = ataText(identify, 10, 10);
    ata.firmware = ataText(identify, 23, 4);
    ata.model = ataText(identify, 27, 20);
    ata.rotation = static_cast<std::uint16_t>(identify.u8(217 * 2) | identify.u8(217 * 2 + 1) << 8);
    return ata;
}

std::vector<std::uint8_t> parseSupportedLogPages(ByteView page)
{
    const std::string_view codes = logBody(page, 0x00).chars();
    return {codes.begin(), codes.end()};
}

std::optional<std::uint8_t> parseTemperature(ByteView page)
{
    const ByteView data = logParameter(logBody(page, 0x0D), 0x0000);
    if (data.size() < 2 || data.u8(1) == 0xFF) // FFh: the device cannot tell
        return std::nullopt;
    return data.u8(1);
}

std::optional<std::uint8_t> parseEnduranceUsed(ByteView page)
{
    const ByteView data = logParameter(logBody(page, 0x11), 0x0001);
    if (data.size() < 4) return std::nullopt;
    return data.u8(3);
}

std::optional<std::uint32_t> parsePowerOnMinutes(ByteView page)
{
    const ByteView data = logParameter(logBody(page, 0x15), 0x0000);
    if (data.size() < 4) return std::nullopt;
    return data.u32(0);
}

std::optional<InformationalExceptions> parseInformationalExceptions(ByteView page)
{
    const ByteView data = logParameter(logBody(page, 0x2F), 0x0000);
    if (data.size() < 2) return std::nullopt;
    return InformationalExceptions{data.u8(0), data.u8(1)};
}

} // namespace KDV
