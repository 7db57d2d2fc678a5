// The logger of a published object: its creator's source with ":" and the class name appended. Logs "cxtor()" when made
// and "dxtor()" when destroyed, so as an early member it brackets the life of those after it.
#pragma once

#include "logger/Logger.h"

#include <string>

namespace KDV {

class InstanceLog : public Logger {
public:
    InstanceLog(const Logger& creator, const std::string& className) : Logger(creator)
    {
        appendLogSource(":");
        appendLogSource(className);
        info("cxtor()");
    }
    InstanceLog(const InstanceLog&) = delete;
    InstanceLog& operator=(const InstanceLog&) = delete;
    ~InstanceLog() { info("dxtor()"); }
};

} // namespace KDV
