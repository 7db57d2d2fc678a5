#include "instances/DriveText.h"

#include "instances/Joined.h"

#include <algorithm>

namespace KDV {
namespace {

// Takes one word after another off the front of a text; words are separated by any white space.
class Words {
public:
    explicit Words(std::string_view text) noexcept : _rest(text) {}

    std::string_view next() noexcept
    {
        constexpr std::string_view whiteSpace = " \t\n\v\f\r";
        const std::size_t begin = std::min(_rest.find_first_not_of(whiteSpace), _rest.size());
        _rest.remove_prefix(begin);
        const std::string_view word = _rest.substr(0, _rest.find_first_of(whiteSpace));
        _rest.remove_prefix(word.size());
        return word;
    }

    std::string_view afterNext() noexcept
    {
        next();
        return next();
    }

private:
    std::string_view _rest;
};

bool contains(std::string_view text, std::string_view letters) noexcept
{
    return text.find(letters) != std::string_view::npos;
}

} // namespace

VendorModel splitVendorModel(std::string_view inquiry) noexcept
{
    constexpr char blank = ' ';
    constexpr std::size_t none = std::string_view::npos;
    VendorModel split;
    const std::size_t vendorBegin = inquiry.find_first_not_of(blank);
    if (vendorBegin == none) return split;
    const std::size_t vendorEnd = inquiry.find(blank, vendorBegin);
    if (vendorEnd == none) return split; // a single word could be either
    split.vendor = inquiry.substr(vendorBegin, vendorEnd - vendorBegin);
    const std::size_t modelBegin = inquiry.find_first_not_of(blank, vendorEnd);
    if (modelBegin != none) split.model = inquiry.substr(modelBegin);
    return split;
}

DriveLocation parseDriveLocation(std::string_view location) noexcept
{
    DriveLocation parsed;
    Words words(location);
    if (contains(location, "Box") && contains(location, "Bay")) {
        parsed.port = words.afterNext();
        parsed.box = words.afterNext();
        parsed.bay = words.afterNext();
    } else if (contains(location, "Device")) {
        parsed.port = words.afterNext();
        parsed.device = words.afterNext();
    }
    return parsed;
}

std::string drivePositionText(const DriveLocation& location)
{
    if (location.inBay()) // "bay" is lower case on purpose: the position is a key that clients keep
        return joined({"Port:", location.port, "-Box:", location.box, "-bay:", location.bay});
    if (!location.device.empty()) return joined({"Port:", location.port, "-Device:", location.device});
    return joined({"Port:", location.port, "-Location:unknown"});
}

std::string boxPositionText(std::string_view boxName)
{
    Words words(boxName);
    const std::string_view port = words.afterNext();
    const std::string_view box = words.afterNext();
    return joined({"Port:", port, "-Box:", box});
}

} // namespace KDV
