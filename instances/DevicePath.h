// The paths that several classes make in exactly the same way.
#pragma once

#include "cmpicpp/CmpiObjectPath.h"
#include "instances/FieldText.h"

#include <string>

namespace KDV {

// Class in namespace, on this host, without keys yet.
CmpiCpp::CmpiObjectPath hostPath(const std::string& nameSpace, const std::string& className);

// A device of an array system: CreationClassName, DeviceID, SystemCreationClassName and SystemName.
CmpiCpp::CmpiObjectPath devicePath(const std::string& nameSpace, const std::string& className,
                                   const FieldText& deviceId, const FieldText& systemName);

} // namespace KDV
