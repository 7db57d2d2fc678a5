// Asks the provider that uses the records for a pass at once. The common library offers the C function kdvRequestPass
// for that; this one does not link it, so it works with a provider that has none too. Any thread, never blocks.
#pragma once

namespace KDV {

void requestPassIfPossible() noexcept;

} // namespace KDV
