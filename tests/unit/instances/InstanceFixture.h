// A broker with the shipped schema, records of a machine, and what an instance of them publishes as plain values.
#pragma once

#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/InstanceObject.h"
#include "broker/RequestScope.h"
#include "common/CmpiManagedInstance.h"
#include "common/KDVUtil.h"
#include "golden/GivenRecords.h"
#include "harness/Schema.h"
#include "machine/TestMachine.h"

#include <string>

#include <gtest/gtest.h>

namespace KDV::Test {

class InstanceFixture : public testing::Test {
protected:
    InstanceFixture()
    {
        KDVUtil::setBroker(broker.cmpi());
        CmpiCpp::CmpiObjectPath::setDefaultNameSpace("root/vnr");
        put(hba->name, "Adapter 0");
    }

    static Host::CollectedInstance published(CmpiManagedInstance& object)
    {
        const CmpiCpp::CmpiInstance instance = object.getInstance();
        return Host::collect(*static_cast<const Host::InstanceObject*>(instance.raw()));
    }

    template <class Instance, class... Records>
    Host::CollectedInstance publish(const Records&... of)
    {
        Instance object(logger, "root/vnr", of...);
        return published(object);
    }

    template <class Instance, class... Records>
    std::string pathOf(const Records&... of)
    {
        return Instance(logger, "root/vnr", of...).getPath().str();
    }

    Logger logger{"KDVSASHBA:1"};
    Host::Broker broker{schema(), {Host::Profile::Standard, true}};
    Host::RequestScope scope{broker, "root/vnr"};
    GivenRecords given{logger};
    SasHbaRecord* hba = given.hba;
    SasPhysicalDriveRecord* drive = given.drive;
    SasLogicalDriveRecord* volume = given.volume;
    SasStorageBoxRecord* box = given.box;
};

} // namespace KDV::Test
