// The names that the provider is known by, and those that it shares with the other providers of its kind on a host; not
// every one of the shared names is used here.
#pragma once

#include <string>

namespace KDV {

inline const std::string providerName = "KDVSASHBA"; // the only name that the library answers to
inline const std::string sasNameSpace = "root/vnr";  // where everything is published

inline constexpr char computerSystemClass[] = "KDV_ComputerSystem";
inline constexpr char fcHbaComputerSystemClass[] = "KDV_FCHBAComputerSystem";
inline constexpr char computerSystemChassisClass[] = "KDV_ComputerSystemChassis";
inline constexpr char workerMethod[] = "PerformWork";
inline constexpr char configurationDirectory[] = "/etc/cim/zt-kdv/";

} // namespace KDV
