#include "instances/HbaText.h"

#include <map>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

TEST(HbaText, HasAModelTextForEveryCode)
{
    const std::map<int, std::string> models{{2, "SAS HBA"},        {3, "ZT SAS HBA 3"},   {4, "ZT SAS HBA 4"},
                                            {5, "ZT SAS HBA 5"},   {6, "ZT SAS HBA 6"},   {7, "ZT SAS HBA 7"},
                                            {8, "ZT SAS HBA 8"},   {9, "ZT SAS HBA 9"},   {10, "ZT SAS HBA 10"},
                                            {11, "ZT SAS HBA 11"}, {12, "ZT SAS HBA 12"}, {13, "ZT SAS HBA 13"}};
    for (int code = 0; code < 256; ++code) {
        const auto known = models.find(code);
        EXPECT_EQ(controllerModelText(static_cast<std::uint8_t>(code)), known == models.end() ? " " : known->second)
            << code;
    }
}

TEST(HbaText, NamesEverySlot)
{
    EXPECT_EQ(controllerSlotText(0), "in Embedded Slot");
    for (int slot = 1; slot < 255; ++slot)
        EXPECT_EQ(controllerSlotText(static_cast<std::uint8_t>(slot)), "in Slot " + std::to_string(slot));
    EXPECT_EQ(controllerSlotText(255), "in Slot Unknown");
}

TEST(HbaText, StartsWithTwoBlanksForAnUnknownModel)
{
    SasHbaRecord hba{};
    hba.slotNumber = 2;
    for (const int code : {1, 14}) {
        hba.modelCode = static_cast<std::uint8_t>(code);
        EXPECT_EQ(hbaElementText(hba), "  in Slot 2");
    }
}

TEST(HbaText, JoinsModelAndSlot)
{
    SasHbaRecord hba{};
    hba.modelCode = 2;
    EXPECT_EQ(hbaElementText(hba), "SAS HBA in Embedded Slot");
    hba.slotNumber = 255;
    EXPECT_EQ(hbaElementText(hba), "SAS HBA in Slot Unknown");
    hba.slotNumber = 254;
    EXPECT_EQ(hbaElementText(hba), "SAS HBA in Slot 254");
}

TEST(HbaText, ReadsTheTwoStatusBytesDifferently)
{
    const std::map<int, int> array{{2, 2}, {3, 3}, {4, 6}};
    const std::map<int, int> controller{{2, 2}, {3, 6}};
    for (int code = 0; code < 256; ++code) {
        const auto byte = static_cast<std::uint8_t>(code);
        EXPECT_EQ(arraySystemStatus[byte], array.count(code) ? array.at(code) : 0) << code;
        EXPECT_EQ(controllerStatus[byte], controller.count(code) ? controller.at(code) : 0) << code;
    }
}

} // namespace
} // namespace KDV::Test
