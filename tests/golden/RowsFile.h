// Expected tables of one published class, written by hand. A .rows file reads:
//
//   given                                what the records hold, one field a line
//     hba.name "Adapter 1"
//     drive.status 2
//   keys                                 the path's keys in order: type, name, value
//     string DeviceID "S-1"
//   rows                                 the instance's properties in order
//     string Description "SAS"
//     uint16[] OperationalStatus {2}
//   when drive.status 3; drive.usage 4   the same with other fields: the rows and keys that differ
//     uint16[] OperationalStatus {5}
//     key string DeviceID "S-2"
//     absent Description
//   later drive.status 3                 the field changes after the object was made: read at each call, or kept
//     same
//
//   later drive.status 3                 the field changes after the object was made: read at each call, or kept
// \\; one as long as its field fills it without a NUL. Throws std::runtime_error with file and line.
#pragma once

#include <istream>
#include <string>
#include <vector>

namespace KDV::Test {

struct GoldenRow {
    std::string type;
    std::string name;
    std::string value;
};

struct GoldenSetting {
    std::string field;
    std::string value;
};

struct GoldenCase {
    std::string title; // file, line and what differs
    std::vector<GoldenSetting> before;
    std::vector<GoldenSetting> after; // the object was made
    std::vector<GoldenRow> keys;
    std::vector<GoldenRow> rows;
};

// The first case is the base.
std::vector<GoldenCase> readRows(std::istream& text, const std::string& fileName);

} // namespace KDV::Test
