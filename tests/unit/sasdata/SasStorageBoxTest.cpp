#include "sasdata/SasStorageBox.h"

#include "harness/LogCapture.h"
#include "machine/TestMachine.h"

#include <memory>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

static_assert(!std::is_copy_constructible_v<SasStorageBox> && !std::is_polymorphic_v<SasStorageBox>);

TEST(SasStorageBox, RemembersItsNumberUnsignedAndItsRecord)
{
    const Logger logger("KDVSASHBA:1");
    TestMachine machine;
    SasStorageBoxRecord& record = machine.addBox(machine.addHba(0), 255);
    const SasStorageBox box(logger, &record);
    record.boxNumber = 1;
    EXPECT_EQ(box.boxNumber, 255u);
    EXPECT_EQ(box.record, &record);
    EXPECT_EQ(box.driveCage, nullptr);
    EXPECT_EQ(box.enclosureProcessor, nullptr);
}

TEST(SasStorageBox, LogsItsLifeUnderItsSource)
{
    const Logger logger("KDVSASHBA:1");
    TestMachine machine;
    LogCapture log;
    std::make_unique<SasStorageBox>(logger, &machine.addBox(machine.addHba(0), 1));
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"SASStorageBox cxtor()", "SASStorageBox dxtor()"}));
    EXPECT_EQ(log.sources().front(), "KDVSASHBA:1:SASStorageBox");
}

} // namespace
} // namespace KDV::Test
