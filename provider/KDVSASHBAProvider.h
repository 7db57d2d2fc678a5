// The provider of the SAS host-bus adapters of this machine. It reads the hardware once when it is made, fills its
// collection with everything that it publishes, answers every read from the collection and follows the hardware with
// one pass of the worker at each call of "PerformWork". It is read-only.
//
// Locks: every read and every pass holds _mutex for its whole length; the mutex is not recursive, so nothing below
// calls back into these operations. The indication operations take no lock.
// Errors: CmpiStatus for what the client or the broker did wrong, standard exceptions otherwise. Made by the process's
// registry, which keeps it until the process ends.
#pragma once

#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"
#include "common/CmpiManagedInstanceCollection.h"
#include "logger/Logger.h"
#include "provider/DeviceObjects.h"
#include "provider/DriveLookup.h"
#include "provider/Names.h"
#include "records/Records.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <pthread.h>
#include <utility>
#include <vector>

namespace KDV {

class KDV_SASStorageExtent;

class KDVSASHBAProvider final : public CmpiCpp::CmpiInstanceProvider,
                                public CmpiCpp::CmpiAssociationProvider,
                                public CmpiCpp::CmpiIndicationProvider,
                                public CmpiCpp::CmpiMethodProvider {
public:
    KDVSASHBAProvider(const CMPIBroker* broker, const Logger& logger);
    ~KDVSASHBAProvider() override;

    void enumInstanceNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath,
                           const CmpiCpp::CmpiObjectPathResult& result) override;
    void enumInstances(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& classPath,
                       const char* const* properties, const CmpiCpp::CmpiInstanceResult& result) override;
    void getInstance(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                     const char* const* properties, const CmpiCpp::CmpiInstanceResult& result) override;

    // It may be cleaned up exactly when the server is ending.
    bool cleanup(const CmpiCpp::CmpiContext& context, bool terminating) override;

    void associators(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                     const CmpiCpp::CmpiName& associationClass, const CmpiCpp::CmpiName& resultClass,
                     const CmpiCpp::CmpiName& role, const CmpiCpp::CmpiName& resultRole, const char* const* properties,
                     const CmpiCpp::CmpiInstanceResult& result) override;
    void associatorNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                         const CmpiCpp::CmpiName& associationClass, const CmpiCpp::CmpiName& resultClass,
                         const CmpiCpp::CmpiName& role, const CmpiCpp::CmpiName& resultRole,
                         const CmpiCpp::CmpiObjectPathResult& result) override;
    void references(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                    const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role, const char* const* properties,
                    const CmpiCpp::CmpiInstanceResult& result) override;
    void referenceNames(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                        const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role,
                        const CmpiCpp::CmpiObjectPathResult& result) override;

    void authorizeFilter(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiSelectExp& filter,
                         const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& classPath,
                         const char* owner) override;
    void mustPoll(const CmpiCpp::CmpiContext& context) override;
    void activateFilter(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiSelectExp& filter,
                        const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& classPath,
                        bool firstActivation) override;
    void deactivateFilter(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiSelectExp& filter,
                          const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& classPath,
                          bool lastDeactivation) override;
    void enableIndications(const CmpiCpp::CmpiContext& context) override;
    void disableIndications(const CmpiCpp::CmpiContext& context) override;

    void invokeMethod(const CmpiCpp::CmpiContext& context, const CmpiCpp::CmpiObjectPath& path,
                      const CmpiCpp::CmpiName& method, const CmpiCpp::CmpiArgs& arguments,
                      const CmpiCpp::CmpiMethodResult& result) override;

    bool unloadOK(const CmpiCpp::CmpiContext& context) override;

private:
    // Population.cpp
    void _cmpiManagedInstanceFactory();
    void _createHbaInstances(SasHba& hba);
    void _createLogDrvInstances(SasHba& hba, SasLogicalDrive& logicalDrive);
    void _createEnclosureInstances(SasHba& hba, SasStorageBox& box);
    void _createPhyDrvInstances(SasHba& hba, SasPhysicalDrive& drive, const DriveLookup& lookup);
    void _createPoolAndVolumeLinks(SasHba& hba, const SasPhysicalDriveRecord& record, KDV_SASStorageExtent* extent,
                                   const DriveLookup& lookup);
    void _createSmartCarrierInstances(SasHba& hba, SasPhysicalDrive& drive);
    void _createCollectionInstances();
    void _populate(SasHba& hba);

    // RefreshPass.cpp
    std::uint32_t _backgroundWorker(const CmpiCpp::CmpiContext& context);
    bool _followHotPlug();
    void _addDrives(SasHba& hba);
    bool _removeDrives(SasHba& hba);
    void _checkSasIndications(const CmpiCpp::CmpiContext& context);

    // Makes an instance and hands it over to the collection.
    template <class Instance, class... Arguments>
    Instance* publish(Arguments&&... arguments)
    {
        auto* instance = new Instance(_logger, sasNameSpace, std::forward<Arguments>(arguments)...);
        _collection.createInstance(instance); // the owner from here on, also when it throws
        return instance;
    }

    // The same for an instance that goes when the disk is pulled, if the disk is one that can be pulled.
    template <class Instance, class... Arguments>
    Instance* publishFor(SasPhysicalDrive& drive, Arguments&&... arguments)
    {
        if (drive.hotPlugTracked) drive.trackedInstances.reserve(trackedInstancesOfADrive);
        auto* instance = publish<Instance>(std::forward<Arguments>(arguments)...);
        if (drive.hotPlugTracked) drive.trackedInstances.push_back(instance);
        return instance;
    }
    static constexpr std::size_t trackedInstancesOfADrive = 12;

    std::unique_ptr<DeviceObjects> _devices; // first, so that it outlasts the instances, which point at devices
    Logger _logger;
    CmpiManagedInstanceCollection _collection;
    std::atomic<bool> _indicationsEnabled; // written by requests without the lock, read by the pass
    SasDataRoot _sasData;
    std::vector<SasHba*> _hbas; // in the order of the records
    pthread_mutex_t _mutex;
    std::atomic<bool> _ending{false}; // the server ends: a pass in progress makes no more calls
    bool _cleanupDue = false;         // something hidden waits to be disposed of
};

static_assert(sizeof(std::atomic<bool>) == 1);

} // namespace KDV
