// Puts stand-ins in the place of all secrets of a capture, in contents, names and links. What could hold a secret that
// nobody can find (a tool's output that is broken off) is left out and listed. Throws std::bad_alloc only.
#pragma once

#include "capture/Captured.h"
#include "capture/Substitutes.h"

namespace KdvSas {

void makeAnonymous(Captured& captured, const Secrets& secrets, const Random& random);

} // namespace KdvSas
