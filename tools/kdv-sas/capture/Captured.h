// What a capture is made of before it becomes an archive: files, links and folders by their paths in it
// ("sys/class/...", "pages/0:0:1:0/ready"), and what could not be had. A plain value that one thread fills.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace KdvSas {

struct CapturedEntry {
    enum class Kind : std::uint8_t { File, Link, Folder };

    Kind kind = Kind::File;
    std::string path;
    std::string content; // of a file; where a link leads
};

struct Unread {
    std::string path;
    std::string why;
};

struct Captured {
    std::vector<CapturedEntry> entries;
    std::vector<Unread> unread;
};

} // namespace KdvSas
