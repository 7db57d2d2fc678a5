// The whole machine as a tree: adapters, boxes with their disks, volumes with their members.
#pragma once

#include "kdv-sas/Machine.h"

#include <iosfwd>

namespace KdvSas {

void printTree(std::ostream& out, const Machine& machine, bool colours);

} // namespace KdvSas
