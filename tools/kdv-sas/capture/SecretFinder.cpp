#include "capture/SecretFinder.h"

#include "capture/SmartctlSecrets.h"
#include "sashba/sysfs/ByteView.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/ScsiPages.h"
#include "sashba/sysfs/SysfsTree.h"

#include <algorithm>
#include <cctype>

namespace KdvSas {
namespace {

using KDV::ByteView;

// Texts of many devices of one make, which must not be taken for the serial number of one.
using CommonTexts = std::set<std::string>;

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isCommon(std::string_view text, const CommonTexts& common)
{
    return std::any_of(common.begin(), common.end(),
                       [text](const std::string& each) { return each.find(text) != std::string::npos; });
}

// Words that look like serial numbers among others that nobody explains.
void addWordsLikeNumbers(std::string_view bytes, std::size_t letters, std::size_t digits, const CommonTexts& common,
                         Secrets& secrets)
{
    const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    for (std::size_t at = 0; at < bytes.size();) {
        std::size_t end = at;
        while (end < bytes.size() && isWord(bytes[end]))
            ++end;
        const std::string_view word = bytes.substr(at, end - at);
        const auto found = std::count_if(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (word.size() >= letters && found >= static_cast<std::ptrdiff_t>(digits) && !isCommon(word, common))
            secrets.addText(word);
        at = end + 1;
    }
}

void addName(ByteView name, Secrets& secrets)
{
    if (name.size() == 8) secrets.addAddress(name.u64(0));
    if (name.size() == 16) secrets.addLongName(name.chars());
    if (name.size() == 12) secrets.addAddress(name.u64(0)); // an identifier with an extension after it
}

// The last word of a name that a maker put together of texts.
void addLastWord(std::string_view text, const CommonTexts& common, Secrets& secrets)
{
    const std::string_view inner = KDV::trimmed(text);
    const std::size_t blank = inner.find_last_of(' ');
    const std::string_view word = blank == std::string_view::npos ? inner : inner.substr(blank + 1);
    if (!isCommon(word, common)) secrets.addText(word);
}

void findInDeviceNames(ByteView page, const CommonTexts& common, Secrets& secrets)
{
    for (ByteView list = page.from(4); list.size() >= 4; list = list.from(std::size_t{4} + list.u8(3))) {
        const ByteView name = list.part(4, list.u8(3));
        switch (list.u8(1) & 0x0F) {
        case 0x1: // the vendor, then what it likes
            addLastWord(name.from(8).chars(), common, secrets);
            break;
        case 0x2: // EUI-64
        case 0x3: // NAA
            addName(name, secrets);
            break;
        case 0x8: // "naa.5000..." or another text
            if (!secrets.addHexName(KDV::trimmed(name.chars()))) addLastWord(name.chars(), common, secrets);
            break;
        case 0xA: // a UUID after two bytes
            addName(name.from(2), secrets);
            break;
        default:
            break;
        }
    }
}

// Of all subenclosures: the identifier, and what makers write after the texts of the standard.
void findInConfiguration(ByteView page, const CommonTexts& common, Secrets& secrets)
{
    constexpr std::size_t vendorPart = 40;
    std::size_t at = 8;
    for (std::size_t left = std::size_t{1} + page.u8(1); left > 0 && at + 12 <= page.size(); --left) {
        const std::size_t bytes = std::size_t{4} + page.u8(at + 3);
        secrets.addAddress(page.part(at, bytes).u64(4));
        if (bytes > vendorPart)
            addWordsLikeNumbers(page.part(at + vendorPart, bytes - vendorPart).chars(), 7, 4, common, secrets);
        at += bytes;
    }
}

// Other protocols have names and serial numbers in fields of their own.
void findInOtherProtocol(ByteView descriptor, const CommonTexts& common, Secrets& secrets)
{
    addWordsLikeNumbers(descriptor.chars(), 6, 3, common, secrets);
    for (std::size_t at = 0; at + 8 <= descriptor.size(); ++at) {
        const std::uint8_t kind = descriptor.u8(at) >> 4;
        if (kind == 5 || kind == 2) secrets.addAddress(descriptor.u64(at));
    }
}

void findInAdditionalStatus(ByteView page, const CommonTexts& common, Secrets& secrets)
{
    constexpr std::size_t slotPhy = 28; // the attached address, then the own one
    constexpr std::size_t portPhy = 12; // likewise for initiators and targets: one address
    for (std::size_t at = 8; at + 2 <= page.size(); at += std::size_t{2} + page.u8(at + 1)) {
        const ByteView whole = page.part(at, std::size_t{2} + page.u8(at + 1));
        const bool hasIndex = (whole.u8(0) & 0x10) != 0;
        const ByteView body = whole.from(hasIndex ? 4 : 2);
        if ((whole.u8(0) & 0x0F) != 6) { // SAS
            findInOtherProtocol(body, common, secrets);
            continue;
        }
        const ByteView list = body.from(hasIndex ? 4 : 2);
        const bool slot = body.u8(1) >> 6 == 0;
        if (!slot) secrets.addAddress(body.u64(4)); // of an expander
        for (std::size_t phy = 0; phy < body.u8(0); ++phy) {
            if (slot && (phy + 1) * slotPhy <= list.size()) {
                secrets.addAddress(list.u64(phy * slotPhy + 4));
                secrets.addAddress(list.u64(phy * slotPhy + 12));
            } else if (!slot && (phy + 1) * portPhy <= list.size() && list.u8(phy * portPhy + 4) >> 4 == 5) {
                secrets.addAddress(list.u64(phy * portPhy + 4));
            }
        }
    }
}

void findInInquiry(ByteView data, const CommonTexts& common, Secrets& secrets)
{
    addWordsLikeNumbers(data.part(36, 20).chars(), 5, 1, common, secrets);
    addWordsLikeNumbers(data.from(96).chars(), 8, 4, common, secrets);
}

void findInAtaPage(ByteView page, Secrets& secrets)
{
    constexpr std::size_t nameAt = 60 + 108 * 2; // words 108 to 111, each with its low byte first
    const auto ata = KDV::parseAtaInformation(page);
    if (!ata) return;
    secrets.addText(ata->serial);
    std::uint64_t name = 0;
    for (std::size_t word = 0; word < 4; ++word)
        name = name << 16 | std::uint64_t{page.u8(nameAt + word * 2 + 1)} << 8 | page.u8(nameAt + word * 2);
    if (name >> 60 == 5) secrets.addAddress(name);
}

void findInAttribute(std::string_view name, std::string_view content, const CommonTexts& common, Secrets& secrets)
{
    const ByteView bytes(content);
    if (name == "vpd_pg80") {
        secrets.addText(KDV::parseUnitSerialNumber(bytes));
    } else if (name == "vpd_pg83") {
        findInDeviceNames(bytes, common, secrets);
    } else if (name == "vpd_pg89") {
        findInAtaPage(bytes, secrets);
    } else if (name == "inquiry") {
        findInInquiry(bytes, common, secrets);
    } else if (isOneOf(name, {"board_tracer", "serial_number", "pcba_sn", "uuid"})) {
        secrets.addText(content);
    } else if (isOneOf(name, {"wwid", "sas_address", "host_sas_address", "enclosure_identifier", "id", "lunid",
                              "unique_id"})) {
        const std::string_view text = KDV::trimmed(content);
        if (secrets.addHexName(text)) return;
        if (name == "wwid") addLastWord(text, common, secrets);
        if (name == "unique_id" || name == "lunid") addWordsLikeNumbers(text, 12, 1, common, secrets);
    }
}

void findInPage(std::string_view name, std::string_view content, const CommonTexts& common, Secrets& secrets)
{
    const ByteView bytes(content);
    if (name == "ses_01") findInConfiguration(bytes, common, secrets);
    if (name == "ses_07") addWordsLikeNumbers(content, 8, 5, common, secrets);
    if (name == "ses_0a") findInAdditionalStatus(bytes, common, secrets);
    if (name == "smartctl.json") findInSmartctl(content, secrets);
}

bool isPage(const std::string& path) { return path.compare(0, 6, "pages/") == 0; }

} // namespace

Secrets secretsOf(const std::vector<CapturedEntry>& entries)
{
    CommonTexts common;
    for (const CapturedEntry& entry : entries) {
        const std::string name = KDV::lastOf(entry.path);
        if (entry.kind == CapturedEntry::Kind::File &&
            isOneOf(name, {"vendor", "model", "rev", "vendor_id", "product_id", "product_rev", "board_name",
                           "board_assembly", "version_fw", "firmware_version", "fw_version", "proc_name"}))
            common.emplace(KDV::trimmed(entry.content));
    }
    Secrets secrets;
    for (const CapturedEntry& entry : entries) {
        secrets.addHexNamesIn(entry.path);
        secrets.addHexNamesIn(entry.content);
        if (entry.kind != CapturedEntry::Kind::File) continue;
        const std::string name = KDV::lastOf(entry.path);
        if (isPage(entry.path))
            findInPage(name, entry.content, common, secrets);
        else
            findInAttribute(name, entry.content, common, secrets);
    }
    return secrets;
}

} // namespace KdvSas
