#include "alerts/KDV_SASIndication.h"

#include "AlertFixture.h"
#include "broker/RequestScope.h"
#include "instances/KDV_SASDiskDrive.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace KDV::Test {
namespace {

class Alert : public AlertFixture {
protected:
    Alert() : drive(machine.addDrive(hba, 7, unassignedUsage)), box(machine.addBox(hba, 3)) {}

    const Host::CollectedInstance& only()
    {
        EXPECT_EQ(caught.alerts.size(), 1u);
        static const Host::CollectedInstance none;
        return caught.alerts.empty() ? none : caught.alerts.front();
    }

    // Raises one alert on a machine that was healthy before.
    template <class Change>
    const Host::CollectedInstance& alertAfter(Change change)
    {
        watch();
        eventsOfPass();
        change();
        eventsOfPass();
        return only();
    }

    SasPhysicalDriveRecord& drive;
    SasStorageBoxRecord& box;
};

// The path of the element; the collected form escapes its quotes.
std::string element(const Host::CollectedInstance& alert)
{
    std::string text = alert.value("AlertingManagedElement");
    text.erase(std::remove(text.begin(), text.end(), '\\'), text.end());
    return text;
}

bool unset(const Host::CollectedInstance& alert, const char* name)
{
    const Host::CollectedProperty* property = alert.find(name);
    return !property || property->preset; // some servers give every property of the class beforehand
}

std::vector<std::string> names(const Host::CollectedInstance& alert)
{
    std::vector<std::string> names;
    for (const Host::CollectedProperty& property : alert.properties)
        if (!property.preset) names.push_back(property.name);
    return names;
}

TEST_P(Alert, OfADiskCarriesWhatTheDatabaseTheElementAndTheRecordSay)
{
    put(drive.inquiry, "ACME    DRIVE 9 ");
    put(drive.firmwareRevision, "FW07");
    put(drive.location, "Port 1I Box 3 Bay 2");
    put(drive.serialNumber, "S-42");
    put(hba.name, "HBA-A");
    const Host::CollectedInstance& alert = alertAfter([&] { drive.status = 3; });
    EXPECT_EQ(alert.className, "KDV_SASIndication");
    EXPECT_EQ(caught.nameSpaces.back(), "root/vnr");
    EXPECT_EQ(alert.value("PerceivedSeverity"), "3");
    EXPECT_EQ(alert.value("AlertingElementFormat"), "2");
    EXPECT_EQ(alert.value("AlertType"), "5");
    EXPECT_EQ(alert.value("EventID"), "\"204\"");
    EXPECT_EQ(alert.value("EventCategory"), "4");
    EXPECT_EQ(alert.value("ProbableCause"), "52");
    EXPECT_EQ(alert.value("ProviderName"), "\"KDVSASHBA\"");
    EXPECT_EQ(alert.value("Summary"), "\"Physical drive predicts its failure\"");
    EXPECT_EQ(alert.value("SystemCreationClassName"), "\"KDV_ComputerSystem\"");
    EXPECT_EQ(alert.value("HWFirmwareVersion"), "\"FW07\"");
    EXPECT_EQ(alert.value("HWLogicalLocation"), "\"Port 1I Box 3 Bay 2\"");
    EXPECT_EQ(alert.value("HWManufacturer"), "\"ACME\"");
    EXPECT_EQ(alert.value("HWSerialNumber"), "\"S-42\"");
    EXPECT_EQ(alert.value("DeviceModel"), "\"DRIVE 9 \"");
    EXPECT_EQ(alert.value("OwningEntity"), "\"VNR\"");
    EXPECT_EQ(alert.value("MessageID"), "\"KDVSAS0204\"");
    EXPECT_NE(element(alert).find("/root/vnr:KDV_SASDiskDrive.CreationClassName=\"KDV_SASDiskDrive\",DeviceID=\"S-42\","
                                  "SystemCreationClassName=\"KDV_SASArraySystem\",SystemName=\"HBA-A\""),
              std::string::npos)
        << element(alert);
    EXPECT_TRUE(unset(alert, "VariableNames"));
}

TEST_P(Alert, SetsItsPropertiesInTheOrderOfTheSetters)
{
    EXPECT_EQ(names(alertAfter([&] { drive.status = 3; })), (Lines{"IndicationIdentifier",
                                                                   "IndicationTime",
                                                                   "SystemName",
                                                                   "PerceivedSeverity",
                                                                   "Description",
                                                                   "AlertingManagedElement",
                                                                   "AlertingElementFormat",
                                                                   "AlertType",
                                                                   "EventID",
                                                                   "ProviderName",
                                                                   "RecommendedActions",
                                                                   "SystemCreationClassName",
                                                                   "Summary",
                                                                   "EventCategory",
                                                                   "ProbableCause",
                                                                   "ProbableCauseDescription",
                                                                   "NetworkIPAddress",
                                                                   "HWFirmwareVersion",
                                                                   "HWLogicalLocation",
                                                                   "HWManufacturer",
                                                                   "HWSerialNumber",
                                                                   "DeviceModel",
                                                                   "OwningEntity",
                                                                   "MessageID",
                                                                   "MessageArguments"}));
}

TEST_P(Alert, OfAControllerNamesTheControllerAndItsMaker)
{
    put(hba.firmwareVersion, "4.52");
    put(hba.logicalLocation, "Slot 3");
    put(hba.name, "HBA-A");
    hba.modelCode = 2;
    const Host::CollectedInstance& alert = alertAfter([&] { hba.controllerStatus = 3; });
    EXPECT_EQ(alert.value("EventID"), "\"2\"");
    EXPECT_EQ(alert.value("HWFirmwareVersion"), "\"4.52\"");
    EXPECT_EQ(alert.value("HWLogicalLocation"), "\"Slot 3\"");
    EXPECT_EQ(alert.value("HWManufacturer"), "\"ZT\"");
    EXPECT_EQ(alert.value("HWSerialNumber"), "\"HBA-A\"");
    EXPECT_EQ(alert.value("DeviceModel"), "\"SAS HBA\"");
    EXPECT_NE(alert.value("AlertingManagedElement").find("KDV_SASArrayController."), std::string::npos);
    EXPECT_EQ(linesWith("controller indication"), Lines{"KDV_SASIndication Sent controller indication: 2"});
}

TEST_P(Alert, OfAVolumeCarriesNoHardwareFacts)
{
    SasLogicalDriveRecord& volume = machine.addVolume(hba, 4, {});
    const Host::CollectedInstance& alert = alertAfter([&] { volume.redundancyState = 4; });
    EXPECT_EQ(alert.value("EventID"), "\"103\"");
    for (const char* name :
         {"HWFirmwareVersion", "HWLogicalLocation", "HWManufacturer", "HWSerialNumber", "DeviceModel"})
        EXPECT_TRUE(unset(alert, name)) << name;
    EXPECT_NE(alert.value("AlertingManagedElement").find("KDV_SASStorageVolume."), std::string::npos);
    EXPECT_EQ(linesWith("logical drive indication"), Lines{"KDV_SASIndication Send logical drive indication: 103"});
}

TEST_P(Alert, OfABoxElementNamesTheEnclosureProcessor)
{
    put(box.name, "Port 1E Box 3");
    put(box.serialNumber, "BOX-9");
    put(box.model, "SHELF 12");
    const Host::CollectedInstance& alert = alertAfter([&] { box.fanStatus = 5; });
    EXPECT_EQ(alert.value("EventID"), "\"305\"");
    EXPECT_EQ(alert.value("HWFirmwareVersion"), "\"\"");
    EXPECT_EQ(alert.value("HWLogicalLocation"), "\"Port 1E Box 3\"");
    EXPECT_EQ(alert.value("HWManufacturer"), "\"\"");
    EXPECT_EQ(alert.value("HWSerialNumber"), "\"BOX-9\"");
    EXPECT_EQ(alert.value("DeviceModel"), "\"SHELF 12\"");
    EXPECT_NE(alert.value("AlertingManagedElement").find("KDV_SASStorageEnclosureProcessor."), std::string::npos);
    EXPECT_EQ(linesWith("enclosure indication"), Lines{"KDV_SASIndication Send storage enclosure indication: 305"});
}

TEST_P(Alert, HasAnIdentifierOfItsOwn)
{
    watch();
    drive.status = 3;
    box.fanStatus = 3;
    EXPECT_EQ(eventsOfPass().size(), 2u);
    EXPECT_NE(caught.alerts[0].value("IndicationIdentifier"), caught.alerts[1].value("IndicationIdentifier"));
}

TEST_P(Alert, WritesItsLinesFromTheFirstToTheLast)
{
    alertAfter([&] { drive.status = 3; });
    EXPECT_EQ(linesWith("KDV_SASIndication "),
              (Lines{"KDV_SASIndication cxtor", "KDV_SASIndication indication sent with success",
                     "KDV_SASIndication dxtor"}));
}

TEST_P(Alert, ThatIsNotDeliveredIsLoggedAndNotTriedAgain)
{
    watch();
    eventsOfPass();
    caught.answer = CMPI_RC_ERR_ACCESS_DENIED;
    drive.status = 3;
    eventsOfPass();
    EXPECT_EQ(linesWith("indication send failure"), Lines{"KDV_SASIndication error: indication send failure: 2"});
    EXPECT_EQ(drive.oldStatus, 3);
    caught.answer = CMPI_RC_OK;
    EXPECT_EQ(eventsOfPass(), Events{});
}

TEST_P(Alert, WithoutADatabaseRecordIsNotSent)
{
    const std::string folder = testing::TempDir() + "kdv-alerts-" + std::to_string(::getpid()) + "/";
    ASSERT_EQ(std::system(("mkdir -p " + folder).c_str()), 0);
    std::ofstream(folder + "KDV_SASIndication.json")
        << R"({"class": "KDV_SASIndication", "provider": "P", "owningEntity": "O", "events": []})";
    ::setenv("KDV_CONFIG_DIR", folder.c_str(), 1);
    watch();
    drive.status = 3;
    EXPECT_EQ(eventsOfPass(), Events{});
    EXPECT_EQ(linesWith("No DB record"), Lines{"KDV_SASIndication No DB record for EventID: 204"});
    EXPECT_EQ(drive.oldStatus, 3);
    std::remove((folder + "KDV_SASIndication.json").c_str());
}

// The senders as they are called by hand, for what no machine brings about.
class Sender : public Alert {
protected:
    template <class Call>
    void send(Call call)
    {
        makeProvider(); // sets the broker
        log.clear();
        Host::RequestScope scope(broker, "root/vnr");
        const CmpiCpp::CmpiContext context(&scope.context());
        KDV_SASIndication indication(Logger("T"), "root/vnr");
        call(indication, context);
    }
};

TEST_P(Sender, OfAVolumeWithoutItsInstanceSendsAndWritesNothing)
{
    SasLogicalDriveRecord& record = machine.addVolume(hba, 1, {});
    record.redundancyState = 3;
    send([&](KDV_SASIndication& indication, const CmpiCpp::CmpiContext& context) {
        const SasLogicalDrive volume(Logger("T"), &record);
        indication.sendLogicalDriveIndication(volume, context);
    });
    EXPECT_EQ(caught.alerts.size(), 0u);
    EXPECT_EQ(linesWith("indication"), Lines{});
}

TEST_P(Sender, OfEachOtherElementWithoutItsInstanceSendsNothing)
{
    hba.controllerStatus = 3;
    drive.status = 3;
    box.fanStatus = 3;
    send([&](KDV_SASIndication& indication, const CmpiCpp::CmpiContext& context) {
        indication.sendControllerIndication(SasHba(Logger("T"), &hba), context);
        indication.sendPhysicalDriveIndication(SasPhysicalDrive(Logger("T"), &drive), context);
        indication.sendStorageBoxIndication(SasStorageBox(Logger("T"), &box), context, 1);
    });
    EXPECT_EQ(caught.alerts.size(), 0u);
    EXPECT_EQ(linesWith("indication:"), Lines{});
}

TEST_P(Sender, OfABoxRefusesAnElementCodeThatItDoesNotKnow)
{
    send([&](KDV_SASIndication& indication, const CmpiCpp::CmpiContext& context) {
        indication.sendStorageBoxIndication(SasStorageBox(Logger("T"), &box), context, 3);
    });
    EXPECT_EQ(linesWith("unsupported"), Lines{"KDV_SASIndication unsupported enclosure indicationt type: 3"});
}

TEST_P(Sender, HandsVariablesOnAsThreeArrays)
{
    send([&](KDV_SASIndication& indication, const CmpiCpp::CmpiContext& context) {
        const KDV_SASDiskDrive element(Logger("T"), "root/vnr", &hba, &drive);
        const AlertVariables variables{{"a", "b"}, {2, 65535}, {"x", ""}};
        indication.sendIndication(204, element, nullptr, &variables, context);
    });
    ASSERT_EQ(caught.alerts.size(), 1u);
    const Host::CollectedInstance& alert = caught.alerts.front();
    EXPECT_EQ(alert.value("VariableNames"), "{\"a\", \"b\"}");
    EXPECT_EQ(alert.find("VariableNames")->type, "string[]");
    EXPECT_EQ(alert.value("VariableTypes"), "{2, 65535}");
    EXPECT_EQ(alert.find("VariableTypes")->type, "uint16[]");
    EXPECT_EQ(alert.value("VariableValues"), "{\"x\", \"\"}");
    EXPECT_EQ(alert.properties.back().name, "VariableValues");
}

TEST_P(Sender, ReleasesEverythingItMade)
{
    watch();
    eventsOfPass();
    broker.resetStatistics();
    drive.status = 3;
    eventsOfPass();
    const Host::BrokerStatistics statistics = broker.statistics();
    EXPECT_TRUE(statistics.lifetimesClean());
    EXPECT_EQ(statistics.leftToScope, 0u);
}

KDV_UNDER_EVERY_BROKER(Alert);
KDV_UNDER_EVERY_BROKER(Sender);

} // namespace
} // namespace KDV::Test
