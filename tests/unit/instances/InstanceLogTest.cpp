#include "instances/InstanceLog.h"

#include "InstanceFixture.h"
#include "golden/PublishedClasses.h"
#include "harness/LogCapture.h"

namespace KDV::Test {
namespace {

using Lines = std::vector<std::string>;
using InstanceLogs = InstanceFixture;

Lines under(const std::string& className, Lines lines)
{
    for (std::string& line : lines)
        line.insert(0, className + " ");
    return lines;
}

TEST(InstanceLog, AppendsItsClassAndLeavesItsCreatorAlone)
{
    const Logger creator("KDVSASHBA:1");
    const InstanceLog log(creator, "KDV_SASDiskDrive");
    EXPECT_EQ(log.source(), "KDVSASHBA:1:KDV_SASDiskDrive");
    EXPECT_EQ(creator.source(), "KDVSASHBA:1");
}

TEST_F(InstanceLogs, OfEveryClassTellItsLifeAndItsOperations)
{
    put(drive->inquiry, "ACME    DRIVE 9");
    for (const PublishedClass& published : publishedClasses()) {
        const std::string& name = published.name;
        LogCapture log;
        std::unique_ptr<CmpiManagedInstance> object = published.make(logger, given);
        Lines made{"cxtor()"};
        if (name == "KDV_SASDiskDriveFirmware") made.push_back("disk vendor ACME model DRIVE 9");
        EXPECT_EQ(log.lines(), under(name, made));
        EXPECT_EQ(log.sources().front(), "KDVSASHBA:1:" + name);

        log.clear();
        object->getPath();
        EXPECT_EQ(log.lines(), under(name, {"getPath()"}));

        log.clear();
        object->getInstance();
        Lines read{"getInstance()", "getPath()"};
        if (name == "KDV_SASSmartDriveCarrierAppFirmware") read[0] = "inside getInstance()";
        if (name == "KDV_SASSmartDriveCarrierBootldrFirmware") read.erase(read.begin());
        EXPECT_EQ(log.lines(), under(name, read));

        log.clear();
        object.reset();
        EXPECT_EQ(log.lines(), under(name, {"dxtor()"}));
    }
}

} // namespace
} // namespace KDV::Test
