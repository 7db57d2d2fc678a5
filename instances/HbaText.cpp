#include "instances/HbaText.h"

#include "instances/Joined.h"

namespace KDV {
namespace {

constexpr CodeMap<const char*, 12> models{{{2, "SAS HBA"},
                                           {3, "ZT SAS HBA 3"},
                                           {4, "ZT SAS HBA 4"},
                                           {5, "ZT SAS HBA 5"},
                                           {6, "ZT SAS HBA 6"},
                                           {7, "ZT SAS HBA 7"},
                                           {8, "ZT SAS HBA 8"},
                                           {9, "ZT SAS HBA 9"},
                                           {10, "ZT SAS HBA 10"},
                                           {11, "ZT SAS HBA 11"},
                                           {12, "ZT SAS HBA 12"},
                                           {13, "ZT SAS HBA 13"}},
                                          " "}; // a blank on purpose: element names of unknown models start with two

constexpr std::uint8_t embeddedSlot = 0;
constexpr std::uint8_t unknownSlot = 255;

} // namespace

const char* controllerModelText(std::uint8_t modelCode) noexcept { return models[modelCode]; }

std::string controllerSlotText(std::uint8_t slotNumber)
{
    switch (slotNumber) {
    case embeddedSlot:
        return "in Embedded Slot";
    case unknownSlot:
        return "in Slot Unknown";
    default:
        return joined({"in Slot ", slotNumber});
    }
}

std::string hbaElementText(std::string_view modelText, std::string_view slotText)
{
    return joined({modelText, " ", slotText});
}

std::string hbaElementText(const SasHbaRecord& hba)
{
    return hbaElementText(controllerModelText(hba.modelCode), controllerSlotText(hba.slotNumber));
}

} // namespace KDV
