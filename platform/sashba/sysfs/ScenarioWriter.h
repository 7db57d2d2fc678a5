// Writes records as the text of a scenario file that gives the same records when it is read. The caller holds whatever
// guards the records. Throws std::bad_alloc only.
#pragma once

#include "records/Records.h"

#include <string>

namespace KDV {

std::string scenarioOf(const SasHbaRecord* head);

} // namespace KDV
