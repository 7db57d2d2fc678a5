#include "common/IndicationDB.h"

#include "common/KDVUtil.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

namespace KDV {
namespace {

using Json = nlohmann::json;

constexpr std::uintmax_t largestFile = 4u << 20; // the shipped file has about 20 KiB

// A place in the file, for messages: "<file>: /events/3/id: expected ...".
class Place {
public:
    Place(const std::string& file, std::string pointer) : _file(file), _pointer(std::move(pointer)) {}

    Place of(const std::string& name) const { return {_file, _pointer + "/" + name}; }

    [[noreturn]] void expected(const std::string& what) const
    {
        throw std::runtime_error(_file + ": " + (_pointer.empty() ? "/" : _pointer) + ": expected " + what);
    }

private:
    const std::string& _file;
    std::string _pointer;
};

const Json& member(const Json& object, const char* name, const Place& place)
{
    const auto found = object.find(name);
    if (found == object.end()) place.of(name).expected("a value; it is missing");
    return *found;
}

std::string text(const Json& object, const char* name, const Place& place)
{
    const Json& value = member(object, name, place);
    if (!value.is_string() || value.get_ref<const std::string&>().empty())
        place.of(name).expected("a text that is not empty");
    return value.get<std::string>();
}

std::uint16_t number(const Json& object, const char* name, const Place& place, unsigned largest)
{
    const Json& value = member(object, name, place);
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > largest)
        place.of(name).expected("a number from 0 to " + std::to_string(largest));
    return static_cast<std::uint16_t>(value.get<std::uint64_t>());
}

void refuseOthers(const Json& object, std::initializer_list<const char*> known, const Place& place)
{
    for (const auto& item : object.items()) {
        bool found = false;
        for (const char* name : known)
            found = found || item.key() == name;
        if (!found) place.of(item.key()).expected("no such member");
    }
}

IndDBRec event(const Json& json, const Place& place, int& id)
{
    if (!json.is_object()) place.expected("an object");
    refuseOthers(json,
                 {"id", "messageId", "summary", "description", "recommendedActions", "perceivedSeverity", "alertType",
                  "eventCategory", "probableCause", "probableCauseDescription"},
                 place);
    IndDBRec record;
    id = number(json, "id", place, 65535);
    record.eventId = std::to_string(id);
    record.messageId = text(json, "messageId", place);
    record.summary = text(json, "summary", place);
    record.description = text(json, "description", place);
    record.recommendedActions = text(json, "recommendedActions", place);
    record.perceivedSeverity = number(json, "perceivedSeverity", place, 7);
    record.alertType = number(json, "alertType", place, 8);
    record.eventCategory = number(json, "eventCategory", place, 65535);
    record.probableCause = number(json, "probableCause", place, 130);
    record.probableCauseDescription = text(json, "probableCauseDescription", place);
    return record;
}

Json parse(const std::string& content, const std::string& file)
{
    try {
        return Json::parse(content);
    } catch (const Json::parse_error& error) {
        std::size_t line = 1;
        std::size_t column = 1;
        for (std::size_t at = 0; at + 1 < error.byte && at < content.size(); ++at) {
            ++column;
            if (content[at] == '\n') {
                ++line;
                column = 1;
            }
        }
        throw std::runtime_error(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": expected JSON");
    }
}

// What one file held when it was last read.
struct CachedFile {
    struct stat stamp = {};
    bool read = false;
    std::shared_ptr<const IndicationEvents> events;
};

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_ino == b.st_ino && a.st_dev == b.st_dev && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

std::string contentOf(const std::string& file, const struct stat& stamp)
{
    if (static_cast<std::uintmax_t>(stamp.st_size) > largestFile)
        throw std::runtime_error(file + ": expected at most " + std::to_string(largestFile) + " bytes");
    std::ifstream in(file, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    if (!in) throw std::runtime_error(file + ": cannot be read");
    return content.str();
}

std::shared_ptr<const IndicationEvents> load(const std::string& file, const Logger& logger)
{
    // Never destroyed: a pass may still build an alert while the process ends.
    static std::mutex& mutex = *new std::mutex;
    static auto& cache = *new std::map<std::string, CachedFile>;
    const std::lock_guard<std::mutex> lock(mutex);
    CachedFile& cached = cache[file];
    struct stat stamp = {};
    const bool there = ::stat(file.c_str(), &stamp) == 0;
    if (cached.read && sameFile(cached.stamp, stamp)) return cached.events;
    cached.read = true;
    cached.stamp = stamp;
    cached.events = std::make_shared<const IndicationEvents>();
    try {
        if (!there) throw std::runtime_error(file + ": " + std::strerror(errno));
        cached.events = std::make_shared<const IndicationEvents>(parseIndicationEvents(contentOf(file, stamp), file));
    } catch (const std::exception& error) {
        logger.error("indication database: %s", error.what());
    }
    return cached.events;
}

} // namespace

IndicationEvents parseIndicationEvents(const std::string& content, const std::string& file)
{
    const Json json = parse(content, file);
    const Place root(file, "");
    if (!json.is_object()) root.expected("an object");
    refuseOthers(json, {"class", "provider", "owningEntity", "eventCategories", "events"}, root);
    const std::string provider = text(json, "provider", root);
    const std::string owningEntity = text(json, "owningEntity", root);
    const Json& list = member(json, "events", root);
    if (!list.is_array()) root.of("events").expected("an array");
    IndicationEvents events;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Place place = root.of("events").of(std::to_string(i));
        int id = 0;
        IndDBRec record = event(list[i], place, id);
        record.providerName = provider;
        record.owningEntity = owningEntity;
        if (!events.emplace(id, std::move(record)).second) place.of("id").expected("an event that was not told before");
    }
    return events;
}

IndicationDB::IndicationDB(const Logger& logger, const std::string& className)
    : _events(load(KDVUtil::configurationDirectory() + className + ".json", logger))
{
}

IndicationDB::~IndicationDB() = default;

int IndicationDB::getRecord(int eventId, IndDBRec& record) const
{
    const auto found = _events->find(eventId);
    if (found == _events->end()) return 1;
    record = found->second;
    return 0;
}

} // namespace KDV
