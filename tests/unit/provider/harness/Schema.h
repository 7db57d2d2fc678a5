// The shipped classes, read from the shipped MOF once for the process.
#pragma once

#include "hostschema/ClassRepository.h"

namespace KDV::Test {

const Host::ClassRepository& schema();

} // namespace KDV::Test
