// How the texts of drives and boxes are taken apart. Nothing here fails: what a text does not hold stays empty. Results
// are views of the text that was given.
#pragma once

#include <string>
#include <string_view>

namespace KDV {

struct VendorModel {
    std::string_view vendor;
    std::string_view model;
};

// Splits an inquiry text: vendor, blanks (the space character), model. A text without a blank after its first word has
// neither. The model keeps its inner and trailing blanks.
VendorModel splitVendorModel(std::string_view inquiry) noexcept;

// Where a drive is: "Port 1I Box 1 Bay 3" or "Port 1I Device 4".
struct DriveLocation {
    std::string_view port;
    std::string_view box;
    std::string_view bay;
    std::string_view device;

    bool inBay() const noexcept { return !box.empty() && !bay.empty(); }
};

DriveLocation parseDriveLocation(std::string_view location) noexcept;

// "Port:1I-Box:1-bay:3", "Port:1I-Device:4" or "Port:1I-Location:unknown".
std::string drivePositionText(const DriveLocation& location);

// Where a box is, from "Port 1E Box 2": "Port:1E-Box:2".
std::string boxPositionText(std::string_view boxName);

} // namespace KDV
