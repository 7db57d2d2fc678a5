// Every status of every watched element: which event it raises, or which line says that it has none.
#include "AlertFixture.h"

#include <map>

namespace KDV::Test {
namespace {

class EventTable : public AlertFixture {
protected:
    // For every byte but 0: the event from a known state that differs, "" for none, and the line without an event.
    void expectEvents(std::uint8_t& oldByte, std::uint8_t& newByte, const std::map<int, std::string>& events,
                      const std::string& line)
    {
        for (int status = 1; status <= 255; ++status) {
            oldByte = status == 1 ? 200 : 1;
            newByte = static_cast<std::uint8_t>(status);
            const Events raised = eventsOfPass();
            const auto expected = events.find(status);
            if (expected != events.end()) {
                EXPECT_EQ(raised, Events{expected->second}) << "status " << status;
                EXPECT_TRUE(line.empty() || linesWith(line).empty()) << "status " << status;
                continue;
            }
            EXPECT_EQ(raised, Events{}) << "status " << status;
            if (!line.empty())
                EXPECT_EQ(linesWith("unsupport"), Lines{"KDV_SASIndication " + line + std::to_string(status)})
                    << "status " << status;
            else
                EXPECT_EQ(linesWith("KDV_SASIndication "),
                          (Lines{"KDV_SASIndication cxtor", "KDV_SASIndication dxtor"}))
                    << "status " << status;
        }
    }
};

TEST_P(EventTable, OfAControllerIgnoresOtherStatesSilently)
{
    watch();
    expectEvents(hba.oldControllerStatus, hba.controllerStatus, {{2, "1"}, {3, "2"}}, "");
}

TEST_P(EventTable, OfALogicalDrive)
{
    SasLogicalDriveRecord& volume = machine.addVolume(hba, 1, {});
    watch();
    expectEvents(volume.oldRedundancyState, volume.redundancyState,
                 {{2, "101"}, {3, "103"}, {4, "103"}, {5, "102"}, {6, "102"}},
                 "unsupport logical drive indication: status ");
}

TEST_P(EventTable, OfAPhysicalDrive)
{
    SasPhysicalDriveRecord& drive = machine.addDrive(hba, 1, unassignedUsage);
    watch();
    expectEvents(drive.oldStatus, drive.status,
                 {{2, "201"},
                  {3, "204"},
                  {4, "202"},
                  {5, "202"},
                  {6, "202"},
                  {7, "202"},
                  {8, "202"},
                  {9, "202"},
                  {10, "401"},
                  {12, "402"}},
                 "unsupported physical drive indication: status ");
}

TEST_P(EventTable, OfThePowerSupplyOfABox)
{
    SasStorageBoxRecord& box = machine.addBox(hba, 1);
    watch();
    expectEvents(box.oldPowerStatus, box.powerStatus, {{5, "301"}, {2, "302"}, {3, "303"}},
                 "unsupported enclosure power supply indication: status ");
}

TEST_P(EventTable, OfTheFanOfABox)
{
    SasStorageBoxRecord& box = machine.addBox(hba, 1);
    watch();
    expectEvents(box.oldFanStatus, box.fanStatus, {{2, "304"}, {5, "305"}, {3, "306"}},
                 "unsupported enclosure fan indication: status ");
}

TEST_P(EventTable, OfTheTemperatureSensorOfABox)
{
    SasStorageBoxRecord& box = machine.addBox(hba, 1);
    watch();
    expectEvents(box.oldTemperatureStatus, box.temperatureStatus, {{2, "307"}, {3, "308"}, {4, "309"}},
                 "unsupported enclosure temp sensor indication: status ");
}

KDV_UNDER_EVERY_BROKER(EventTable);

} // namespace
} // namespace KDV::Test
