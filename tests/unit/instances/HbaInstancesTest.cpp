// The adapter's instances: what is easily got wrong, each by a sentence. Whole tables are held elsewhere.
#include "InstanceFixture.h"
#include "instances/KDV_SASArrayController.h"
#include "instances/KDV_SASArraySystem.h"
#include "instances/KDV_SASArraySystemLocation.h"
#include "instances/KDV_SASPrimordialPool.h"
#include "instances/KDV_SASPrimordialPoolNoRaid.h"
#include "instances/KDV_SASStorageCapabilities.h"
#include "instances/KDV_SASStoragePool.h"
#include "instances/KDV_SASStorageSpecificCollection.h"

#include <unistd.h>

namespace KDV::Test {
namespace {

using HbaInstances = InstanceFixture;

TEST_F(HbaInstances, StartTheElementNameOfAnUnknownModelWithTwoBlanks)
{
    hba->slotNumber = 2;
    for (const int code : {1, 14}) {
        hba->modelCode = static_cast<std::uint8_t>(code);
        EXPECT_EQ(publish<KDV_SASArraySystem>(hba).value("ElementName"), "\"  in Slot 2\"");
        EXPECT_EQ(publish<KDV_SASArrayController>(hba).value("ElementName"), "\"  in Slot 2\"");
    }
}

TEST_F(HbaInstances, NameEmbeddedUnknownAndHighSlots)
{
    hba->modelCode = 2;
    const std::pair<int, const char*> slots[] = {
        {0, "\"SAS HBA in Embedded Slot\""}, {255, "\"SAS HBA in Slot Unknown\""}, {254, "\"SAS HBA in Slot 254\""}};
    for (const auto& [slot, text] : slots) {
        hba->slotNumber = static_cast<std::uint8_t>(slot);
        EXPECT_EQ(publish<KDV_SASArraySystem>(hba).value("ElementName"), text);
        EXPECT_EQ(publish<KDV_SASArrayController>(hba).value("ElementName"), text);
    }
}

TEST_F(HbaInstances, AreDegradedAsASystemWhereTheControllerHasFailed)
{
    hba->arraySystemStatus = hba->controllerStatus = 3;
    EXPECT_EQ(publish<KDV_SASArraySystem>(hba).value("OperationalStatus"), "{3}");
    EXPECT_EQ(publish<KDV_SASArrayController>(hba).value("OperationalStatus"), "{6}");
    for (const int status : {0, 1, 5}) {
        hba->arraySystemStatus = hba->controllerStatus = static_cast<std::uint8_t>(status);
        EXPECT_EQ(publish<KDV_SASArraySystem>(hba).value("OperationalStatus"), "{0}");
        EXPECT_EQ(publish<KDV_SASArrayController>(hba).value("OperationalStatus"), "{0}");
    }
}

TEST_F(HbaInstances, RepeatTheNameKeyAsTheOnlyElementOfOtherIdentifyingInfo)
{
    for (const char* name : {"Adapter 7", ""}) {
        put(hba->name, name);
        for (const auto& instance : {publish<KDV_SASArraySystem>(hba), publish<KDV_SASArrayController>(hba)}) {
            EXPECT_EQ(instance.value("Name"), std::string("\"") + name + "\"");
            EXPECT_EQ(instance.value("OtherIdentifyingInfo"), "{" + instance.value("Name") + "}");
        }
    }
}

TEST_F(HbaInstances, HaveTheLocalHostNameOfTheMomentAsHostOfTheirPath)
{
    char host[256] = "";
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    const KDV_SASArraySystem system(logger, "root/vnr", hba);
    EXPECT_EQ(system.getPath().getHost(), KDVUtil::getHostName());
    EXPECT_EQ(system.getPath().getHost(), host);
    EXPECT_EQ(system.getPath().getNameSpace(), "root/vnr");
}

TEST_F(HbaInstances, KeepTheirOwnCopyOfTheNamespace)
{
    std::string nameSpace = "Root/VNR";
    const KDV_SASArraySystem system(logger, nameSpace, hba);
    nameSpace = "other";
    EXPECT_EQ(system.getPath().getNameSpace(), "Root/VNR");
}

TEST_F(HbaInstances, OfferNoRedundancyFromASingleMemberDriveAndMirroringFromTwoOrNone)
{
    for (const std::uint32_t kind : {0u, 2u}) {
        for (const char* drives : {"2:1, 2:1", "none", "3:1, 4:1"}) {
            given.set({"drives", drives});
            const auto several = publish<KDV_SASStorageCapabilities>(hba, kind);
            EXPECT_EQ(several.value("DataRedundancyDefault"), "2") << drives;
            EXPECT_EQ(several.value("NoSinglePointOfFailure"), "true") << drives;
        }
        given.set({"drives", "2:1"});
        const auto single = publish<KDV_SASStorageCapabilities>(hba, kind);
        EXPECT_EQ(single.value("DataRedundancyDefault"), "1");
        EXPECT_EQ(single.value("NoSinglePointOfFailure"), "false");
    }
}

TEST_F(HbaInstances, WrapTheSumOfThePrimordialPoolsButNotOfTheStoragePool)
{
    given.set({"drives", "2:4294967295, 3:4294967295, 4:4294967295, 4:2"});
    EXPECT_EQ(publish<KDV_SASPrimordialPool>(hba).value("TotalManagedSpace"), "4294967294");
    EXPECT_EQ(publish<KDV_SASPrimordialPoolNoRaid>(hba).value("TotalManagedSpace"), "1");
    EXPECT_EQ(publish<KDV_SASStoragePool>(hba).value("TotalManagedSpace"), "8589934590");
}

TEST_F(HbaInstances, FreezeTheTotalOfTheStoragePoolAlone)
{
    given.set({"drives", "2:5"});
    KDV_SASPrimordialPool primordial(logger, "root/vnr", hba);
    KDV_SASStoragePool storage(logger, "root/vnr", hba);
    given.set({"drives", "2:5, 2:6"});
    EXPECT_EQ(published(primordial).value("TotalManagedSpace"), "11");
    EXPECT_EQ(published(storage).value("TotalManagedSpace"), "5");
    EXPECT_EQ(storage.totalManagedSpace(), 5u);
    EXPECT_EQ(KDV_SASStoragePool(logger, "root/vnr", hba).totalManagedSpace(), 11u);
}

TEST_F(HbaInstances, SayNothingOfRedundancyForAnUnknownKindOfPool)
{
    const auto instance = publish<KDV_SASStorageCapabilities>(hba, 3u);
    EXPECT_EQ(instance.value("InstanceID"), "\"\"");
    EXPECT_EQ(instance.properties.size(), 7u);
}

TEST_F(HbaInstances, AreWellTogetherWithoutAnyAdapter)
{
    const auto instance = publish<KDV_SASStorageSpecificCollection>(static_cast<const SasHbaRecord*>(nullptr));
    EXPECT_EQ(instance.value("GroupOperationalStatus"), "{2}");
    EXPECT_EQ(instance.value("GroupStatusDescriptions"),
              "{\"SAS HBA controllers and the attached storage are operating properly.\"}");
}

TEST_F(HbaInstances, AreTogetherTheWorstOfDegradedAndFailed)
{
    for (const char* adapters : {"3, 4", "4, 3"}) {
        given.set({"adapters", adapters});
        EXPECT_EQ(publish<KDV_SASStorageSpecificCollection>(given.adapters).value("GroupOperationalStatus"), "{6}");
    }
}

TEST_F(HbaInstances, AreTogetherUnknownWhenOneOfThemIs)
{
    given.set({"adapters", "2, 1"});
    EXPECT_EQ(publish<KDV_SASStorageSpecificCollection>(given.adapters).value("GroupOperationalStatus"), "{0}");
}

TEST_F(HbaInstances, FollowTheListOfAdaptersInTheConsolidatedStatus)
{
    given.set({"adapters", "2, 2"});
    KDV_SASStorageSpecificCollection collection(logger, "root/vnr", given.adapters);
    EXPECT_EQ(published(collection).value("GroupOperationalStatus"), "{2}");
    given.adapters->next->arraySystemStatus = 4;
    EXPECT_EQ(published(collection).value("GroupOperationalStatus"), "{6}");
}

TEST_F(HbaInstances, PublishTheNumberOfASlotThatTheirTextCallsEmbedded)
{
    hba->modelCode = 2;
    hba->slotNumber = 0;
    const auto location = publish<KDV_SASArraySystemLocation>(hba);
    EXPECT_EQ(location.value("Name"), "\"PCISLOT-0\"");
    EXPECT_EQ(location.value("PhysicalPosition"), "\"0\"");
    EXPECT_EQ(location.value("ElementName"), "\"SAS HBA in Embedded Slot\"");
}

} // namespace
} // namespace KDV::Test
