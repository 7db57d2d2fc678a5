// How well an element is, from its OperationalStatus values; the words and the exit status of the tool.
#pragma once

#include <string>
#include <vector>

namespace KdvSas {

// From best to worst.
enum class Health { Ok, Unknown, Degraded, Failed };

// CIM_ManagedSystemElement.OperationalStatus and the vendor values of storage boxes. The first value counts; an empty
// list is unknown.
Health healthOf(const std::vector<unsigned long>& operationalStatus);
std::string statusText(const std::vector<unsigned long>& operationalStatus);

inline Health worse(Health a, Health b) { return a < b ? b : a; }

const char* word(Health health); // "OK", "UNKNOWN", "DEGRADED", "FAILED"
int exitStatus(Health health);   // 0, 3, 1, 2: as monitoring plugins have it

} // namespace KdvSas
