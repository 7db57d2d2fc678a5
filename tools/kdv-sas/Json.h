// The views as JSON, for programs. Invalid UTF-8 in texts is replaced.
#pragma once

#include "cim/Instance.h"
#include "kdv-sas/Machine.h"

#include <string>

namespace KdvSas {

std::string statusJson(const Machine& machine); // also of the tree: everything with its links
std::string instanceJson(const Cim::Instance& instance);
std::string instancesJson(const std::vector<Cim::Instance>& instances);

} // namespace KdvSas
