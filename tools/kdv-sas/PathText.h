// Object paths as text: [namespace:]Class.Key="text",Number=3,Ref="path" with backslash escapes (DSP0207).
#pragma once

#include "cim/Instance.h"

#include <string>

namespace KdvSas {

std::string pathText(const Cim::Path& path);

// Throws std::invalid_argument that names the place in the text.
Cim::Path parsePath(const std::string& text);

} // namespace KdvSas
