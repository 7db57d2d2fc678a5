// The storage of a machine as a server tells it: adapters with their boxes, volumes and disks, joined by following
// associations. Read once, then plain values.
#pragma once

#include "cim/Connection.h"
#include "kdv-sas/Health.h"

#include <string>
#include <vector>

namespace KdvSas {

struct Element {
    std::string name; // what a person knows it by
    std::string id;   // its key
    std::string detail;
    Health health = Health::Unknown;
    std::string status;
};

struct Disk : Element {
    std::string system; // the adapter's name
    std::string box;    // the box's key; empty when it sits in none
    std::string volume; // the volume's key; empty when it is in none
    std::string use;    // "member", "spare", "unassigned"
};

struct Volume : Element {
    std::string system;
    std::vector<std::string> members; // ids of disks
};

struct Box : Element {
    std::string system;
    unsigned long bays = 0;
    std::vector<Element> sensors; // fan, power supply, temperature
};

struct Adapter : Element {
    Health controller = Health::Unknown;
    std::string firmware;
};

struct Machine {
    std::vector<Adapter> adapters;
    std::vector<Box> boxes;
    std::vector<Volume> volumes;
    std::vector<Disk> disks;

    Health worst() const; // Unknown when there is no adapter
};

constexpr const char* storageNameSpace = "root/vnr";

Machine readMachine(Cim::Connection& connection, const std::string& nameSpace = storageNameSpace);

} // namespace KdvSas
