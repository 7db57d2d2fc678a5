// What is said of an HBA in words, and the meaning of its two status bytes. Several classes publish these.
#pragma once

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "records/Records.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace KDV {

// The model's display name; a single blank for a code that no model has. Lives as long as the process.
const char* controllerModelText(std::uint8_t modelCode) noexcept;

// "in Embedded Slot", "in Slot 3", "in Slot Unknown".
std::string controllerSlotText(std::uint8_t slotNumber);

// Model and slot, as in "SAS HBA in Slot 3".
std::string hbaElementText(std::string_view modelText, std::string_view slotText);
std::string hbaElementText(const SasHbaRecord& hba);

// The status of an adapter together with what hangs from it.
inline constexpr CodeMap<std::uint16_t, 3> arraySystemStatus{
    {{2, OperationalStatus::OK}, {3, OperationalStatus::Degraded}, {4, OperationalStatus::Error}},
    OperationalStatus::Unknown};

// A controller is working or failed, never in between: its 3 is an error, and there is no Degraded row.
inline constexpr CodeMap<std::uint16_t, 2> controllerStatus{{{2, OperationalStatus::OK}, {3, OperationalStatus::Error}},
                                                            OperationalStatus::Unknown};

} // namespace KDV
