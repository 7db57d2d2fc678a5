// One alert: maps the new status of an element to an event, fills an alert indication from the event database, the
// element's managed instance and the facts of its record, and delivers it. Made for one sender call and destroyed
// after it; runs on the thread of the pass, under the provider's mutex. Failures of the broker while the alert is built
// pass through; a failed delivery is logged and not tried again.
#pragma once

#include "cmpicpp/CmpiContext.h"
#include "common/CmpiManagedInstance.h"
#include "common/IndicationDB.h"
#include "logger/Logger.h"
#include "sasdata/SasHba.h"
#include "sasdata/SasLogicalDrive.h"
#include "sasdata/SasPhysicalDrive.h"
#include "sasdata/SasStorageBox.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KDV {

// What the hardware says of itself in an alert.
struct AlertHardwareInfo {
    std::string firmwareVersion;
    std::string logicalLocation;
    std::string manufacturer;
    std::string serialNumber;
    std::string deviceModel;
};

// Variable bindings of an alert: three lists of one length.
struct AlertVariables {
    std::vector<std::string> names;
    std::vector<std::uint32_t> types; // published as uint16
    std::vector<std::string> values;
};

// The watched elements of a storage box.
enum class StorageBoxElement : int { PowerSupply = 0, Fan = 1, TemperatureSensor = 2 };

class KDV_SASIndication {
public:
    KDV_SASIndication(const Logger& logger, const std::string& nameSpace);
    KDV_SASIndication(const KDV_SASIndication&) = delete;
    KDV_SASIndication& operator=(const KDV_SASIndication&) = delete;
    ~KDV_SASIndication();

    void sendControllerIndication(const SasHba& hba, const CmpiCpp::CmpiContext& context);
    void sendLogicalDriveIndication(const SasLogicalDrive& drive, const CmpiCpp::CmpiContext& context);
    void sendPhysicalDriveIndication(const SasPhysicalDrive& drive, const CmpiCpp::CmpiContext& context);
    void sendStorageBoxIndication(const SasStorageBox& box, const CmpiCpp::CmpiContext& context, int element);

    // hw and vars may be null. An event that the database does not have sends nothing.
    void sendIndication(int eventId, const CmpiManagedInstance& element, const AlertHardwareInfo* hw,
                        const AlertVariables* vars, const CmpiCpp::CmpiContext& context);

private:
    std::string _nameSpace;
    Logger _logger;
    std::unique_ptr<IndicationDB> _indicationDb;
};

} // namespace KDV
