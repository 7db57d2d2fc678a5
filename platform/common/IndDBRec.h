// One event of the indication database: everything about an alert that does not come from the element it is about.
// Default-constructed by the caller and filled by IndicationDB::getRecord.
#pragma once

#include "common/Export.h"

#include <cstdint>
#include <string>

namespace KDV {

struct KDV_COMMON_API IndDBRec {
    std::string eventId;
    std::string providerName;
    std::string description;
    std::string summary;
    std::string recommendedActions;
    std::string probableCauseDescription;
    int perceivedSeverity = 0; // CIM_AlertIndication.PerceivedSeverity
    int eventCategory = 0;
    std::uint16_t alertType = 0;     // CIM_AlertIndication.AlertType
    std::uint16_t probableCause = 0; // CIM_AlertIndication.ProbableCause
    std::string owningEntity;        // with messageId: the message of a registry, so that a client can translate
    std::string messageId;
};

} // namespace KDV
