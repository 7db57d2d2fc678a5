#include "sashba/sysfs/PassRequest.h"

// Bound when the library is loaded, to what the process then has: null without it.
extern "C" __attribute__((weak, visibility("default"))) void kdvRequestPass() noexcept;

namespace KDV {

void requestPassIfPossible() noexcept
{
    if (kdvRequestPass) kdvRequestPass();
}

} // namespace KDV
