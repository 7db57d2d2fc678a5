// Every published instance class by name, and how one is made from the records of a golden case.
#pragma once

#include "GivenRecords.h"
#include "common/CmpiManagedInstance.h"
#include "logger/Logger.h"

#include <memory>
#include <string>
#include <vector>

namespace KDV::Test {

struct PublishedClass {
    std::string name;
    std::unique_ptr<CmpiManagedInstance> (*make)(const Logger& logger, const GivenRecords& given);
};

const std::vector<PublishedClass>& publishedClasses();

} // namespace KDV::Test
