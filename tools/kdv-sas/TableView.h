// Instances as text: a property a line, as "kdv-sas list" and "kdv-sas show" print them.
#pragma once

#include "cim/Instance.h"

#include <iosfwd>

namespace KdvSas {

void printInstance(std::ostream& out, const Cim::Instance& instance);
std::string valueText(const Cim::Property& property);

} // namespace KdvSas
