#include "common/IndicationDB.h"

#include "common/HostAddress.h"
#include "harness/LogCapture.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <ifaddrs.h>
#include <list>
#include <net/if.h>
#include <netinet/in.h>
#include <set>
#include <sstream>
#include <unistd.h>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

std::string shipped()
{
    std::ifstream in(KDV_SOURCE_DIR "/alerts/events/KDV_SASIndication.json");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string oneEvent(const std::string& replaced, const std::string& by)
{
    std::string text = R"({"class": "C", "provider": "P", "owningEntity": "O", "events": [
  {"id": 7, "messageId": "M", "summary": "S", "description": "D", "recommendedActions": "R", "perceivedSeverity": 3,
   "alertType": 5, "eventCategory": 4, "probableCause": 52, "probableCauseDescription": "PCD"}]})";
    const std::size_t at = text.find(replaced);
    EXPECT_NE(at, std::string::npos) << replaced;
    return text.replace(at, replaced.size(), by);
}

std::string complaint(const std::string& text)
{
    try {
        parseIndicationEvents(text, "db.json");
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "none";
}

TEST(ShippedEvents, AreExactlyThoseThatTheStatesRaise)
{
    std::set<int> ids;
    for (const auto& [id, record] : parseIndicationEvents(shipped(), "shipped")) {
        ids.insert(id);
        EXPECT_EQ(record.eventId, std::to_string(id));
        EXPECT_EQ(record.providerName, "KDVSASHBA");
        char messageId[16];
        std::snprintf(messageId, sizeof messageId, "KDVSAS%04d", id);
        EXPECT_EQ(record.messageId, messageId);
    }
    EXPECT_EQ(ids, (std::set<int>{1, 2, 101, 102, 103, 201, 202, 204, 301, 302, 303, 304, 305, 306, 307, 308, 309, 401,
                                  402}));
}

TEST(ShippedEvents, AreInformationalExactlyWhenTheyTellOfAReturnToNormal)
{
    const std::set<int> returns{1, 101, 201, 302, 304, 307};
    for (const auto& [id, record] : parseIndicationEvents(shipped(), "shipped")) {
        EXPECT_EQ(record.perceivedSeverity == 2, returns.count(id) == 1) << id;
        EXPECT_EQ(record.probableCause == 59, returns.count(id) == 1) << id; // previous alert cleared
        EXPECT_EQ(record.summary.find("returned to normal") != std::string::npos, returns.count(id) == 1) << id;
    }
}

TEST(EventFile, GivesEveryFieldOfAnEvent)
{
    const IndicationEvents events = parseIndicationEvents(oneEvent("\"S\"", "\"S\""), "db.json");
    ASSERT_EQ(events.size(), 1u);
    const IndDBRec& record = events.at(7);
    EXPECT_EQ(record.eventId, "7");
    EXPECT_EQ(record.providerName, "P");
    EXPECT_EQ(record.owningEntity, "O");
    EXPECT_EQ(record.messageId, "M");
    EXPECT_EQ(record.summary, "S");
    EXPECT_EQ(record.description, "D");
    EXPECT_EQ(record.recommendedActions, "R");
    EXPECT_EQ(record.perceivedSeverity, 3);
    EXPECT_EQ(record.alertType, 5);
    EXPECT_EQ(record.eventCategory, 4);
    EXPECT_EQ(record.probableCause, 52);
    EXPECT_EQ(record.probableCauseDescription, "PCD");
}

TEST(EventFile, NamesThePlaceOfWhatIsWrong)
{
    EXPECT_EQ(complaint("{\n  \"class\": }"), "db.json:2:12: expected JSON");
    EXPECT_EQ(complaint("[]"), "db.json: /: expected an object");
    EXPECT_EQ(complaint(oneEvent("\"provider\": \"P\", ", "")), "db.json: /provider: expected a value; it is missing");
    EXPECT_EQ(complaint(oneEvent("\"class\"", "\"clas\"")), "db.json: /clas: expected no such member");
    EXPECT_EQ(complaint(oneEvent("\"summary\": \"S\"", "\"summary\": \"\"")),
              "db.json: /events/0/summary: expected a text that is not empty");
    EXPECT_EQ(complaint(oneEvent("\"perceivedSeverity\": 3", "\"perceivedSeverity\": 8")),
              "db.json: /events/0/perceivedSeverity: expected a number from 0 to 7");
    EXPECT_EQ(complaint(oneEvent("\"id\": 7", "\"id\": -7")),
              "db.json: /events/0/id: expected a number from 0 to 65535");
    EXPECT_EQ(complaint(oneEvent("\"id\": 7", "\"id\": 7, \"colour\": 1")),
              "db.json: /events/0/colour: expected no such member");
    EXPECT_EQ(complaint(R"({"class": "C", "provider": "P", "owningEntity": "O", "events": {}})"),
              "db.json: /events: expected an array");
}

TEST(EventFile, RefusesAnEventThatIsToldTwice)
{
    const std::string one = oneEvent("\"S\"", "\"S\"");
    const std::size_t begin = one.find("{\"id\"");
    const std::string event = one.substr(begin, one.rfind(']') - begin);
    EXPECT_EQ(complaint(oneEvent("[\n", "[" + event + ",")),
              "db.json: /events/1/id: expected an event that was not told before");
}

// A database in a folder of the test's own.
class DatabaseFile : public testing::Test {
protected:
    DatabaseFile() : folder(testing::TempDir() + "kdv-db-" + std::to_string(::getpid()) + "/")
    {
        EXPECT_EQ(std::system(("mkdir -p " + folder).c_str()), 0);
        ::setenv("KDV_CONFIG_DIR", folder.c_str(), 1);
    }
    ~DatabaseFile() override
    {
        std::remove((folder + "X.json").c_str());
        ::unsetenv("KDV_CONFIG_DIR");
    }
    void write(const std::string& text) const { std::ofstream(folder + "X.json") << text; }
    int get(int id) const
    {
        IndDBRec record;
        return IndicationDB(Logger("T"), "X").getRecord(id, record);
    }

    LogCapture log;
    std::string folder;
};

TEST_F(DatabaseFile, AnswersZeroForAnEventThatIsThere)
{
    write(oneEvent("\"S\"", "\"S\""));
    EXPECT_EQ(get(7), 0);
    EXPECT_EQ(get(8), 1);
}

TEST_F(DatabaseFile, IsReadAgainWhenItChangedOnDisk)
{
    write(oneEvent("\"S\"", "\"S\""));
    EXPECT_EQ(get(7), 0);
    write(oneEvent("\"id\": 7", "\"id\": 1234"));
    EXPECT_EQ(get(7), 1);
    EXPECT_EQ(get(1234), 0);
}

TEST_F(DatabaseFile, ThatIsBrokenIsReportedOnceWithItsPlace)
{
    write("{");
    EXPECT_EQ(get(7), 1);
    EXPECT_EQ(get(7), 1);
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"T error: indication database: " + folder + "X.json:1:2: expected JSON"});
}

TEST_F(DatabaseFile, ThatIsMissingIsReportedOnceAndTakenUpWhenItComes)
{
    EXPECT_EQ(get(7), 1);
    EXPECT_EQ(get(7), 1);
    EXPECT_EQ(log.lines().size(), 1u);
    write(oneEvent("\"S\"", "\"S\""));
    EXPECT_EQ(get(7), 0);
}

// A list of interfaces that a test writes down.
class Interfaces {
public:
    void add(const char* address, unsigned flags = IFF_UP)
    {
        auto& entry = _entries.emplace_back();
        if (std::strchr(address, ':')) {
            entry.six.sin6_family = AF_INET6;
            EXPECT_EQ(::inet_pton(AF_INET6, address, &entry.six.sin6_addr), 1);
            entry.interface.ifa_addr = reinterpret_cast<sockaddr*>(&entry.six);
        } else {
            entry.four.sin_family = AF_INET;
            EXPECT_EQ(::inet_pton(AF_INET, address, &entry.four.sin_addr), 1);
            entry.interface.ifa_addr = reinterpret_cast<sockaddr*>(&entry.four);
        }
        entry.interface.ifa_flags = flags;
        entry.interface.ifa_next = nullptr;
        if (_entries.size() > 1) std::prev(_entries.end(), 2)->interface.ifa_next = &entry.interface;
    }
    const ifaddrs* list() const { return _entries.empty() ? nullptr : &_entries.front().interface; }

private:
    struct Entry {
        ifaddrs interface = {};
        sockaddr_in four = {};
        sockaddr_in6 six = {};
    };
    std::list<Entry> _entries;
};

TEST(HostAddress, IsTheFirstGlobalOneIPv4First)
{
    Interfaces interfaces;
    interfaces.add("127.0.0.1");
    interfaces.add("fe80::1");
    interfaces.add("2001:db8::5");
    interfaces.add("169.254.7.7");
    interfaces.add("192.0.2.9");
    interfaces.add("192.0.2.10");
    EXPECT_EQ(firstGlobalAddress(interfaces.list()), "192.0.2.9");
}

TEST(HostAddress, IsAGlobalIPv6AddressWhenThereIsNoOther)
{
    Interfaces interfaces;
    interfaces.add("127.0.0.1");
    interfaces.add("::1");
    interfaces.add("fe80::1");
    interfaces.add("2001:db8::5");
    EXPECT_EQ(firstGlobalAddress(interfaces.list()), "2001:db8::5");
}

TEST(HostAddress, IsTheLoopbackAddressWhenNothingElseIsUp)
{
    Interfaces interfaces;
    interfaces.add("127.0.0.1");
    interfaces.add("192.0.2.9", 0);
    EXPECT_EQ(firstGlobalAddress(interfaces.list()), "127.0.0.1");
    EXPECT_EQ(firstGlobalAddress(nullptr), "127.0.0.1");
}

} // namespace
} // namespace KDV::Test
