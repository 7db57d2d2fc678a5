// The events of one indication class, from "<class>.json" in the configuration directory. The file is read and checked
// once for the process and again only when it changed on disk, however many objects are made; anything wrong in it is
// logged once with file and place, and the class then has no events. An object is cheap; use it on one thread.
#pragma once

#include "common/Export.h"
#include "common/IndDBRec.h"
#include "logger/Logger.h"

#include <map>
#include <memory>
#include <string>

namespace KDV {

// Event ID to event.
using IndicationEvents = std::map<int, IndDBRec>;

class KDV_COMMON_API IndicationDB {
public:
    IndicationDB(const Logger& logger, const std::string& className);
    ~IndicationDB();

    // 0 when the event is there and the record was filled, 1 when it is not.
    int getRecord(int eventId, IndDBRec& record) const;

private:
    std::shared_ptr<const IndicationEvents> _events;
};

// Reads the text of a database; place is the file's name for messages. Throws std::runtime_error with file, JSON
// pointer (or line and column) and what was expected.
KDV_COMMON_API IndicationEvents parseIndicationEvents(const std::string& text, const std::string& place);

} // namespace KDV
