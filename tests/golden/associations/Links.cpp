#include "Links.h"

#include "common/KDVUtil.h"
#include "harness/Schema.h"

#include <fstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

void replaceAll(std::string& text, const std::string& what, const std::string& with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

// "reference Role Class.Key="..."" with the end as a whole path, quoted as a value.
std::string completed(std::string row)
{
    if (row.rfind("reference ", 0) != 0) return row;
    const std::string host = KDVUtil::getHostName();
    replaceAll(row, "$host", host);
    const std::size_t end = row.find(' ', row.find(' ') + 1) + 1;
    std::string path = row.substr(end);
    replaceAll(path, "\"", "\\\"");
    return row.substr(0, end) + "\"//" + host + "/root/vnr:" + path + "\"";
}

} // namespace

void buildGoldenMachine(TestMachine& machine)
{
    SasHbaRecord& hba = machine.addHba(1);
    machine.addBox(hba, 1);
    machine.addVolume(hba, 0, {5, 7}, {9}); // disk 5 is missing
    machine.addVolume(hba, 1, {7, 6}).size = 5000;
    machine.addDrive(hba, 7, memberUsage); // named by both volumes
    machine.addDrive(hba, 6, memberUsage);
    machine.addDrive(hba, 9, spareUsage);
    machine.addDrive(hba, 3, unassignedUsage).carrierAuthStatus = 1;
    machine.addDrive(hba, 2, unassignedUsage, 9); // a box that is not there
    machine.addDrive(hba, 4, 1);
    machine.addHba(2);
}

std::vector<PublishedRows> expectedLinks(const std::string& className)
{
    std::ifstream file(KDV_SOURCE_DIR "/tests/golden/associations/" + className + ".rows");
    if (!file) throw std::runtime_error("no expected links for " + className);
    std::vector<PublishedRows> links;
    for (std::string line; std::getline(file, line);) {
        if (line == "link")
            links.emplace_back();
        else if (line.rfind("  ", 0) == 0 && !links.empty())
            links.back().push_back(completed(line.substr(2)));
        else
            throw std::runtime_error(className + ".rows: neither a link nor a row of one: " + line);
    }
    return links;
}

std::vector<PublishedRows> publishedLinks(const Requests& ask, const std::string& className)
{
    const Reply reply = ask.instances(className.c_str());
    EXPECT_EQ(reply.rc, CMPI_RC_OK) << className << ": " << reply.message;
    std::vector<PublishedRows> links;
    for (const Host::CollectedInstance& instance : reply.instances) {
        EXPECT_EQ(instance.className, className);
        links.emplace_back();
        for (const Host::CollectedProperty& property : instance.properties)
            if (!property.preset) links.back().push_back(property.type + " " + property.name + " " + property.value);
    }
    return links;
}

std::vector<std::string> associationClasses()
{
    std::vector<std::string> names;
    for (const auto& declared : schema().findNamespace("root/vnr")->classes())
        if (declared->isAssociation() && declared->name().rfind("KDV_", 0) == 0) names.push_back(declared->name());
    return names;
}

ObjectName nameOf(const std::string& path)
{
    ObjectName name;
    const std::size_t begin = path.find(':') + 1;
    std::size_t at = path.find('.', begin);
    name.className = path.substr(begin, at - begin);
    while (at < path.size()) {
        const std::size_t equals = path.find('=', ++at);
        std::string value;
        std::size_t i = equals + 2; // after the quote
        for (; path.at(i) != '"'; ++i) {
            if (path[i] == '\\') ++i;
            value += path.at(i);
        }
        name.keys.emplace_back(path.substr(at, equals - at), value);
        at = i + 1;
    }
    return name;
}

} // namespace KDV::Test
