// Writes a capture as a compressed tar archive that only its owner may read. The archive appears under its name when it
// is whole; until then it grows under a name beside it, which does not stay. Throws std::runtime_error.
#pragma once

#include "capture/Captured.h"

#include <string>

namespace KdvSas {

void writeArchive(const std::string& file, const std::vector<CapturedEntry>& entries);

} // namespace KdvSas
