#include "capture/Anonymous.h"

#include "capture/ByteReplacer.h"
#include "capture/SmartctlSecrets.h"
#include "sashba/sysfs/ByteView.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/SysfsTree.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace KdvSas {
namespace {

// The slots of a box bear the names that the box gives them; all other names are the kernel's.
std::string replacedPath(const std::string& path, const ByteReplacer& replacer)
{
    constexpr std::string_view slotLink = "enclosure_device:";
    std::string made;
    std::string parent;
    std::string above;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string step = path.substr(at, end - at);
        if (at != 0) made += '/';
        if (step.compare(0, slotLink.size(), slotLink) == 0)
            made.append(slotLink).append(replacer.replaced(step.substr(slotLink.size())));
        else
            made += above == "enclosure" ? replacer.replaced(step) : replacer.replacedNames(step);
        above = std::exchange(parent, step);
        at = end + 1;
    }
    return made;
}

// IDENTIFY DEVICE data have two letters a word, the second one first, and end in a sum.
std::string replacedAtaPage(const std::string& page, const ByteReplacer& replacer)
{
    constexpr std::size_t identifyAt = 60;
    constexpr std::size_t identifyBytes = 512;
    std::string made = replacer.replaced(page);
    if (page.size() < identifyAt + identifyBytes) return made;
    const auto swapped = [](std::string bytes) {
        for (std::size_t at = 0; at + 1 < bytes.size(); at += 2)
            std::swap(bytes[at], bytes[at + 1]);
        return bytes;
    };
    const auto sumOf = [](const std::string& bytes) {
        unsigned sum = 0;
        for (const char each : bytes)
            sum += static_cast<unsigned char>(each);
        return sum & 0xFF;
    };
    const std::string before = page.substr(identifyAt, identifyBytes);
    std::string identify = swapped(replacer.replaced(swapped(before)));
    if (sumOf(before) == 0)
        identify.back() = static_cast<char>(static_cast<unsigned char>(identify.back()) - sumOf(identify));
    return made.replace(identifyAt, identifyBytes, identify);
}

// A count, a size or one of the kernel's own words, which is no secret even where it reads as one.
bool isOfKernel(const std::string& name, const std::string& content)
{
    constexpr std::size_t most = 20;
    static const std::set<std::string_view> words{
        "access_state", "active_mode", "array_state", "cache_type",  "dh_state",       "last_sync_action",
        "layout",       "level",       "proc_name",   "queue_type",  "raid_level",     "ready",
        "slot",         "state",       "status",      "sync_action", "transport_mode", "type"};
    if (words.count(name) != 0) return true;
    const std::string_view text = KDV::trimmed(content);
    const bool mayBeSerial = name == "serial_number" || name == "board_tracer" || name == "pcba_sn";
    return !mayBeSerial && !text.empty() && text.size() <= most &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

void makeAnonymous(Captured& captured, const Secrets& secrets, const Random& random)
{
    const Substitutes substitutes = drawSubstitutes(secrets, random);
    const ByteReplacer replacer(substitutes);
    const auto text = [&replacer](const std::string& bytes) { return replacer.replaced(bytes); };
    const auto address = [&substitutes](std::uint64_t name) {
        const auto found = substitutes.addresses.find(name);
        return found == substitutes.addresses.end() ? name : found->second;
    };
    std::vector<CapturedEntry> kept;
    for (CapturedEntry& entry : captured.entries) {
        const std::string name = KDV::lastOf(entry.path);
        entry.path = replacedPath(entry.path, replacer);
        if (entry.kind == CapturedEntry::Kind::Link) {
            entry.content = replacedPath(entry.content, replacer);
        } else if (name == "smartctl.json") {
            std::optional<std::string> output = replaceInSmartctl(entry.content, text, address);
            if (!output) {
                captured.unread.push_back({entry.path, "left out, since it is no JSON and may hold serial numbers"});
                continue;
            }
            entry.content = std::move(*output);
        } else if (name == "vpd_pg89") {
            entry.content = replacedAtaPage(entry.content, replacer);
        } else if (!isOfKernel(name, entry.content)) {
            entry.content = text(entry.content);
        }
        kept.push_back(std::move(entry));
    }
    captured.entries = std::move(kept);
    for (Unread& unread : captured.unread)
        unread.path = replacedPath(unread.path, replacer);
}

} // namespace KdvSas
