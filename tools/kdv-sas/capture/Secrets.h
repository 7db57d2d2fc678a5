// What in a capture tells one machine from another: serial numbers and the like as texts, and world-wide names (SAS
// addresses, enclosure identifiers, names of logical units) as bytes, however they are written where they stand.
// A plain value.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace KdvSas {

struct Secrets {
    std::set<std::string> texts;
    std::set<std::uint64_t> addresses;
    std::set<std::string> longNames; // of 16 bytes
    std::set<std::string> words;     // likewise texts, but meant only where they stand alone

    // Texts that say nothing ("N/A", "0000") and numbers that name nothing in the world are not taken.
    void addText(std::string_view text);
    void addHostName(std::string_view name); // whole, and without its domain
    void addAddress(std::uint64_t address);
    void addLongName(std::string_view bytes);

    // Digits of 8 or 16 bytes, with or without "0x", "naa.", "eui." before them; false when it is something else.
    bool addHexName(std::string_view text);

    // World-wide names that stand anywhere in a text.
    void addHexNamesIn(std::string_view text);
};

} // namespace KdvSas
