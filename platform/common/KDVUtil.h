// What the instance classes need from their process: the broker, the host's name and its computer system, and two small
// rules, which of two states is worse and what a version text says. Functions may be called from any thread; setBroker
// is called before requests.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace KDV {

// CIM_ManagedSystemElement.OperationalStatus, the values in use here.
enum operationalStatus : std::uint16_t {
    OperationalStatusUnknown = 0,
    OperationalStatusOK = 2,
    OperationalStatusDegraded = 3,
    OperationalStatusPredictiveFailure = 5,
    OperationalStatusError = 6,
};

class KDV_COMMON_API KDVUtil {
public:
    static void setBroker(const CMPIBroker* broker) noexcept;
    static const CMPIBroker* getBroker() noexcept;

    // The local host name at this moment, give or take a few milliseconds.
    static std::string getHostName();

    // The path of the computer system that hosts the storage. Class and namespace can be set in the configuration
    // directory (computer-system.conf), so that a server's own computer system is used; nobody here serves the
    // instance.
    static CmpiCpp::CmpiObjectPath getComputerSystemPath();

    // From best to worst: OK, Unknown, Predictive Failure, Degraded, Error; anything else counts as Unknown. Equal
    // ranks keep the first.
    static operationalStatus updateWorst(operationalStatus first, operationalStatus second) noexcept;

    // Digits, a point, digits, optionally further points and digits; each part fits 16 bits.
    static bool validateVersion(std::string_view version) noexcept;
    static bool stringVersionToMajor(std::string_view version, std::uint16_t& major) noexcept;
    static bool stringVersionToMinor(std::string_view version, std::uint16_t& minor) noexcept;

    // "/etc/cim/zt-kdv/", or what KDV_CONFIG_DIR names; ends with a slash.
    static std::string configurationDirectory();
};

} // namespace KDV
