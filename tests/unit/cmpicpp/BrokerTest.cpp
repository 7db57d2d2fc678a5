#include "BrokerTest.h"

using namespace CmpiCpp;
using namespace KDV::Host;

namespace {

constexpr const char* schema = R"(
class Fan {
    [Key] string CreationClassName;
    [Key] string DeviceID;
    [Key] string SystemName;
    boolean Enabled;
    uint8 Bay;
    uint16 HealthState;
    uint32 Speed;
    uint64 Size;
    sint8 Wear;
    string Caption;
    datetime InstallDate;
    uint16 OperationalStatus[];
    string OtherIdentifyingInfo[];
    uint8 Bytes[];
};
class Numbered {
    [Key] uint16 Number;
    [Key] boolean Spare;
    string Caption;
};
class ManyKeys {
    [Key] string K0; [Key] string K1; [Key] string K2; [Key] string K3; [Key] string K4;
    [Key] string K5; [Key] string K6; [Key] string K7; [Key] string K8; [Key] string K9;
    string Caption;
    string Other;
};
class Cooling {
    [Key] Fan REF Antecedent;
    [Key] Fan REF Dependent;
    uint16 ActiveCooling;
};
)";

const ClassRepository& loaded(ClassRepository& repository)
{
    repository.loadText(schema, "root/vnr", "test.mof");
    repository.checkReferences();
    return repository;
}

} // namespace

BrokerTest::BrokerTest() : broker(loaded(_repository), BrokerOptions{GetParam(), true})
{
    CmpiObjectPath::setDefaultNameSpace("root/vnr");
}

BrokerTest::~BrokerTest() = default;

CmpiObjectPath BrokerTest::makeFan(const char* id) const
{
    CmpiObjectPath path = makePath("Fan");
    path.addKey("CreationClassName", "Fan");
    path.addKey("DeviceID", id);
    path.addKey("SystemName", std::string("box"));
    return path;
}

void BrokerTest::expectClean(std::uint64_t left) const
{
    const BrokerStatistics counted = broker.statistics();
    EXPECT_EQ(counted.doubleReleases, 0u);
    EXPECT_EQ(counted.usesAfterRelease, 0u);
    EXPECT_EQ(counted.lentReleases, 0u);
    EXPECT_EQ(counted.foreignReleases, 0u);
    EXPECT_EQ(counted.unattachedCalls, 0u);
    EXPECT_EQ(counted.liveClones, 0);
    EXPECT_EQ(counted.leftToScope, left);
}

std::string profileOfTest(const testing::TestParamInfo<Profile>& parameter)
{
    return std::string(profileName(parameter.param));
}
