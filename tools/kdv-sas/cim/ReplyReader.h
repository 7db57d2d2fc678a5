// Reads a CIM-XML message (a reply, or an export request from a server) as it arrives, piece by piece, into paths and
// instances. DOCTYPE, deep nesting and broken XML are refused with std::runtime_error that names the line.
#pragma once

#include "cim/Instance.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Cim {

struct Reply {
    std::vector<Instance> instances;
    std::vector<Path> paths; // of EnumerateInstanceNames and CreateInstance
    struct Error {
        int code = 0;
        std::string description;
    };
    std::optional<Error> error;
    std::string messageId;
    std::string exportMethod; // of an export request
};

class ReplyReader {
public:
    ReplyReader();
    ReplyReader(const ReplyReader&) = delete;
    ReplyReader& operator=(const ReplyReader&) = delete;
    ~ReplyReader();

    void feed(const char* bytes, std::size_t count);
    Reply finish(); // throws when the message is not complete

private:
    struct State;
    std::unique_ptr<State> _state;
};

} // namespace Cim
