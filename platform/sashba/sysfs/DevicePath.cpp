#include "sashba/sysfs/DevicePath.h"

#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace KDV {
namespace {

bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

std::optional<std::uint64_t> decimal(std::string_view text)
{
    const bool digits =
        std::all_of(text.begin(), text.end(), [](char letter) { return letter >= '0' && letter <= '9'; });
    return digits ? wholeNumber(text) : std::nullopt;
}

} // namespace

bool isPciFunction(std::string_view name)
{
    constexpr std::string_view form = "0000:00:00.0"; // some machines have wider domains
    if (name.size() < form.size()) return false;
    const std::string_view domain = name.substr(0, name.size() - 8);
    const std::string_view rest = name.substr(name.size() - 8);
    const auto isHex = [](char letter) { return std::isxdigit(static_cast<unsigned char>(letter)) != 0; };
    return domain.size() <= 8 && std::all_of(domain.begin(), domain.end(), isHex) && rest[0] == ':' && isHex(rest[1]) &&
           isHex(rest[2]) && rest[3] == ':' && isHex(rest[4]) && isHex(rest[5]) && rest[6] == '.' && isHex(rest[7]);
}

std::optional<std::uint32_t> parseHostName(std::string_view name)
{
    if (!startsWith(name, "host")) return std::nullopt;
    const std::optional<std::uint64_t> number = decimal(name.substr(4));
    if (!number || *number > std::numeric_limits<std::uint32_t>::max() || name.substr(4) != std::to_string(*number))
        return std::nullopt; // "host00" is none: a number names one host
    return static_cast<std::uint32_t>(*number);
}

std::optional<ScsiAddress> parseScsiAddress(std::string_view name)
{
    std::uint64_t parts[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t colon = name.find(':');
        if ((colon == std::string_view::npos) != (i == 3)) return std::nullopt;
        const std::optional<std::uint64_t> number = decimal(name.substr(0, colon));
        if (!number || (i < 3 && *number > std::numeric_limits<std::uint32_t>::max())) return std::nullopt;
        parts[i] = *number;
        name.remove_prefix(std::min(colon, name.size() - 1) + 1);
    }
    return ScsiAddress{static_cast<std::uint32_t>(parts[0]), static_cast<std::uint32_t>(parts[1]),
                       static_cast<std::uint32_t>(parts[2]), parts[3]};
}

DevicePath splitDevicePath(const std::string& path)
{
    DevicePath split;
    std::size_t at = 0;
    while (at < path.size() && split.device.empty()) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view name = std::string_view(path).substr(at, end - at);
        const std::string upTo = path.substr(0, end);
        at = end + 1;
        if (split.host.empty() && isPciFunction(name)) {
            split.pciFunction = upTo;
            split.pciFunctions.insert(split.pciFunctions.begin(), std::string(name));
        } else if (split.host.empty()) {
            if (parseHostName(name)) split.host = upTo;
        } else if (startsWith(name, "port-") && split.hbaPort.empty()) {
            split.hbaPort = upTo;
        } else if (startsWith(name, "expander-")) {
            split.expander = upTo;
        } else if (startsWith(name, "end_device-")) {
            split.endDevice = upTo;
        } else if (parseScsiAddress(name)) {
            split.device = upTo;
        }
    }
    return split;
}

} // namespace KDV
