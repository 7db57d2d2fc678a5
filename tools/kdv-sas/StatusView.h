// One screen: the worst first, then adapters with what hangs on them.
#pragma once

#include "kdv-sas/Machine.h"

#include <iosfwd>
#include <string>

namespace KdvSas {

void printStatus(std::ostream& out, const Machine& machine, bool colours);

// One line as monitoring plugins print it: state, numbers, what is wrong, performance data behind the bar.
std::string checkLine(const Machine& machine);

// The word of a state, coloured for a terminal or plain.
std::string coloured(Health health, const std::string& text, bool colours);

} // namespace KdvSas
