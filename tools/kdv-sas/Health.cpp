#include "kdv-sas/Health.h"

namespace KdvSas {
namespace {

struct StatusRow {
    unsigned long value;
    Health health;
    const char* text;
};

constexpr StatusRow rows[] = {
    {2, Health::Ok, "OK"},
    {3, Health::Degraded, "Degraded"},
    {5, Health::Degraded, "Predictive Failure"},
    {6, Health::Failed, "Error"},
    {0, Health::Unknown, "Unknown"},
    {4, Health::Degraded, "Stressed"},
    {7, Health::Failed, "Non-Recoverable Error"},
    // A storage box reports its fans, power supplies and temperature in vendor values.
    {32768, Health::Unknown, "Fan Unknown"},
    {32769, Health::Ok, "Fan OK"},
    {32770, Health::Failed, "Fan Failed"},
    {32771, Health::Degraded, "Fan Degraded"},
    {32772, Health::Unknown, "Power Supply Unknown"},
    {32773, Health::Failed, "Power Supply Failed"},
    {32774, Health::Ok, "Power Supply OK"},
    {32775, Health::Degraded, "Power Supply Degraded"},
    {32776, Health::Unknown, "Temperature Unknown"},
    {32777, Health::Ok, "Temperature OK"},
    {32778, Health::Degraded, "Temperature Degraded"},
    {32779, Health::Failed, "Temperature Failed"},
};

const StatusRow* rowOf(unsigned long value)
{
    for (const StatusRow& row : rows)
        if (row.value == value) return &row;
    return nullptr;
}

} // namespace

Health healthOf(const std::vector<unsigned long>& operationalStatus)
{
    if (operationalStatus.empty()) return Health::Unknown;
    const StatusRow* row = rowOf(operationalStatus.front());
    return row ? row->health : Health::Unknown;
}

std::string statusText(const std::vector<unsigned long>& operationalStatus)
{
    if (operationalStatus.empty()) return "not told";
    const StatusRow* row = rowOf(operationalStatus.front());
    return row ? row->text : "status " + std::to_string(operationalStatus.front());
}

const char* word(Health health)
{
    switch (health) {
    case Health::Ok:
        return "OK";
    case Health::Unknown:
        return "UNKNOWN";
    case Health::Degraded:
        return "DEGRADED";
    case Health::Failed:
        return "FAILED";
    }
    return "UNKNOWN";
}

int exitStatus(Health health)
{
    switch (health) {
    case Health::Ok:
        return 0;
    case Health::Degraded:
        return 1;
    case Health::Failed:
        return 2;
    case Health::Unknown:
        return 3;
    }
    return 3;
}

} // namespace KdvSas
