// Copies the wanted part of a sysfs tree, the kernel's own or a captured one, into a capture. It goes down real folders
// only and never through a link, so no loop of links holds it and nothing outside of the tree is read; what cannot be
// read is listed. Depth, length and number are bounded. One thread; throws std::bad_alloc, std::system_error.
#pragma once

#include "capture/Captured.h"
#include "capture/PatientReader.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace KdvSas {

class TreeWalk {
public:
    // In the tree's root nothing is opened before the first of the following calls.
    TreeWalk(const std::string& root, PatientReader& reader, Captured& to);

    // A SCSI host with all that is behind it, and the PCI functions above it. Path in the tree, "devices/...".
    void takeHost(const std::string& path);

    // Its own attributes alone.
    void takeHostAttributes(const std::string& path);

    void takeArray(const std::string& blockPath);
    void takePciSlots();

    // Of the machine, and of the driver with this name.
    void takeMaker();
    void takeModule(const std::string& driver);

    // The links of the kernel's lists that lead to something taken. Call it last.
    void takeLists();

private:
    using Folder = std::shared_ptr<const OpenFolder>;

    Folder open(const std::string& path);
    bool take(const std::string& path); // true: not taken before
    void walk(const Folder& folder, const std::string& path, unsigned depth);
    void takeFile(const Folder& folder, const std::string& path);
    bool isGivenUp(const std::string& path);
    void giveUp(const std::string& path);
    void takeLink(const Folder& folder, const std::string& path);
    bool takeFiles(const std::string& path, const std::vector<std::string>& names);
    void takeFunctions(const std::string& hostPath);
    void missing(const std::string& path, const std::string& why);
    bool full(const std::string& path);

    Folder _root;
    PatientReader& _reader;
    Captured& _to;
    std::set<std::string> _folders; // taken
    std::set<std::string> _silent;  // devices that did not answer
    std::size_t _late = 0;          // attributes that did not
    std::size_t _bytes = 0;
    bool _fullReported = false;
};

} // namespace KdvSas
