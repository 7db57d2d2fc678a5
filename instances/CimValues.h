// Values of the schema by the names that it gives them, and texts that several classes publish.
#pragma once

#include <cstdint>

namespace KDV {

inline constexpr char arraySystemClass[] = "KDV_SASArraySystem";

namespace OperationalStatus {
inline constexpr std::uint16_t Unknown = 0;
inline constexpr std::uint16_t OK = 2;
inline constexpr std::uint16_t Degraded = 3;
inline constexpr std::uint16_t PredictiveFailure = 5;
inline constexpr std::uint16_t Error = 6;
} // namespace OperationalStatus

// The vendor's values of OperationalStatus: three groups of four for the elements of a box, each starting with what no
// code is known for; a disk uses two of the same numbers with meanings of its own.
namespace BoxStatus {
inline constexpr std::uint16_t FanUnknown = 0x8000;
inline constexpr std::uint16_t FanOK = 0x8001;
inline constexpr std::uint16_t FanFailed = 0x8002;
inline constexpr std::uint16_t FanDegraded = 0x8003;
inline constexpr std::uint16_t PowerUnknown = 0x8004;
inline constexpr std::uint16_t PowerFailed = 0x8005;
inline constexpr std::uint16_t PowerOK = 0x8006;
inline constexpr std::uint16_t PowerDegraded = 0x8007;
inline constexpr std::uint16_t TemperatureUnknown = 0x8008;
inline constexpr std::uint16_t TemperatureOK = 0x8009;
inline constexpr std::uint16_t TemperatureDegraded = 0x800A;
inline constexpr std::uint16_t TemperatureFailed = 0x800B;
} // namespace BoxStatus
namespace DriveStatus {
inline constexpr std::uint16_t SecondPredictiveFailure = 0x8006;
inline constexpr std::uint16_t SecondDegraded = 0x8007;
} // namespace DriveStatus

namespace EnabledDefault {
inline constexpr std::uint16_t Enabled = 2;
}
namespace EnabledState {
inline constexpr std::uint16_t NotApplicable = 5;
}
namespace RequestedState {
inline constexpr std::uint16_t NotApplicable = 12;
}

namespace ExtentStatus {
inline constexpr std::uint16_t None = 2;
inline constexpr std::uint16_t Rebuild = 11;
} // namespace ExtentStatus

namespace RemovalConditions {
inline constexpr std::uint16_t NotApplicable = 2;
inline constexpr std::uint16_t RemovableWhenOff = 3;
inline constexpr std::uint16_t RemovableWhenOnOrOff = 4;
} // namespace RemovalConditions

// What ElementLocationTag holds.
namespace LocationTag {
inline constexpr std::uint16_t Enclosure = 19;
inline constexpr std::uint16_t Bay = 20;
inline constexpr std::uint16_t Device = 21;
inline constexpr std::uint16_t Slot = 23;
} // namespace LocationTag

namespace Classification {
inline constexpr std::uint16_t Firmware = 10;
}

} // namespace KDV
