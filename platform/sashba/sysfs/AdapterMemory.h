// Keeps adapters that were there once. The driver of one may be loaded anew, or it may be pulled; clients have its
// number and its name, and a provider that was told of no adapter at all would never look again. So an adapter that
// goes stays as one that failed, without anything behind it, and when it comes back, maybe under another number of the
// kernel's, it is the same one. One thread at a time. Throws std::bad_alloc only.
#pragma once

#include "sashba/Machine.h"

#include <map>

namespace KDV {

class AdapterMemory {
public:
    // Called with each machine that was found, in the order of the findings.
    void complete(Machine& machine);

private:
    std::map<std::uint32_t, SasHbaRecord> _known; // by number, as they were last
};

} // namespace KDV
