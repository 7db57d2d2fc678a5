#include "instances/Rows.h"

#include "InstanceFixture.h"
#include "instances/DevicePath.h"
#include "instances/KDV_SASDiskDrive.h"

namespace KDV::Test {
namespace {

using namespace CmpiCpp;

// Lets a test add the rows; the path is that of a class that has properties of nearly every type.
class Disk final : public CmpiManagedInstance {
public:
    Disk() : CmpiManagedInstance("KDV_SASDiskDrive") {}
    CmpiObjectPath getPath() const override { return devicePath("root/vnr", "KDV_SASDiskDrive", "S-1", "A"); }
    CmpiInstance getInstance() override { return PropertyRows(*this).instance(); }
};

class Rows : public InstanceFixture {
protected:
    static std::string rowsOf(const CmpiInstance& instance)
    {
        std::string text;
        for (const auto& row : Host::collect(*static_cast<const Host::InstanceObject*>(instance.raw())).properties)
            text += row.type + " " + row.name + " " + row.value + "\n";
        return text;
    }

    Disk disk;
};

const std::string keyRows = "string CreationClassName \"KDV_SASDiskDrive\"\nstring DeviceID \"S-1\"\n"
                            "string SystemCreationClassName \"KDV_SASArraySystem\"\nstring SystemName \"A\"\n";

TEST_F(Rows, BeginWithTheKeysOfThePath) { EXPECT_EQ(rowsOf(PropertyRows(disk).instance()), keyRows); }

TEST_F(Rows, AddPropertiesOfTheirTypeInTheOrderOfTheCalls)
{
    PropertyRows row(disk);
    row.sint8("SSDWearStatus", -1);
    row.uint64("SSDLifeRemaining", 0xFFFFFFFFFFFFFFFF);
    row.uint32("NegotiatedDataWidth", 0xFFFFFFFF);
    row.uint16("EnabledState", 0xFFFF);
    row.boolean("DriveHasMNPData", true);
    row.string("ElementName", "text");
    row.uint16Array("OperationalStatus", {2, 0xFFFF});
    row.stringArray("StatusDescriptions", {"", "b"});
    EXPECT_EQ(rowsOf(row.instance()),
              keyRows + "sint8 SSDWearStatus -1\nuint64 SSDLifeRemaining 18446744073709551615\n"
                        "uint32 NegotiatedDataWidth 4294967295\nuint16 EnabledState 65535\n"
                        "boolean DriveHasMNPData true\nstring ElementName \"text\"\n"
                        "uint16[] OperationalStatus {2, 65535}\nstring[] StatusDescriptions {\"\", \"b\"}\n");
}

TEST_F(Rows, GoOnWithAnInstanceThatHasRows)
{
    PropertyRows begun(disk);
    begun.string("ElementName", "first");
    PropertyRows row(begun.instance());
    row.string("Name", "second");
    EXPECT_EQ(rowsOf(row.instance()), keyRows + "string ElementName \"first\"\nstring Name \"second\"\n");
}

// Whether keys are properties then is the server's affair; in the path they are always.
TEST_F(Rows, AddNothingButKeysBesideWhatThePropertyListAsksFor)
{
    drive->status = 2;
    put(drive->serialNumber, "S-1");
    put(drive->location, "here");
    const char* const names[] = {"elementname", "OperationalStatus", "SSDWearStatus", nullptr};
    const PropertyList list(names);
    KDV_SASDiskDrive object(logger, "root/vnr", hba, drive);
    const auto instance = published(object);
    std::vector<std::string> found;
    for (const auto& row : instance.properties)
        if (keyRows.find(" " + row.name + " ") == std::string::npos) found.push_back(row.name);
    EXPECT_EQ(found, (std::vector<std::string>{"ElementName", "OperationalStatus"}));
    EXPECT_EQ(instance.path, object.getPath().str());
}

TEST_F(Rows, MakeNoArrayThatThePropertyListLeavesOut)
{
    const char* const names[] = {"StatusDescriptions", nullptr};
    const PropertyList list(names);
    broker.resetStatistics();
    {
        const Host::RequestScope request(broker, "root/vnr");
        PropertyRows row(disk);
        row.uint16Array("OperationalStatus", {2});
        row.stringArray("IdentifyingDescriptions", {"a"});
        row.stringArray("StatusDescriptions", {"a"});
    }
    EXPECT_EQ(broker.statistics().of(broker.statistics().made, Host::ObjectKind::Array), 1u);
}

TEST_F(Rows, LeaveElementsOfAnEmptyArrayNull)
{
    PropertyRows row(disk);
    row.array("OperationalStatus", emptyUint16Array(2));
    EXPECT_EQ(rowsOf(row.instance()), keyRows + "uint16[] OperationalStatus {NULL, NULL}\n");
}

} // namespace
} // namespace KDV::Test
