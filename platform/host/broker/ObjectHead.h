// What every broker object carries behind its C part: whose it is, what it is and how it may be used. `hdl` of the C
// part points to it. An object is used by one thread at a time; nothing in it is locked.
#pragma once

#include <cstdint>

namespace KDV::Host {

class Broker;
class RequestScope;

enum class ObjectKind : std::uint8_t {
    String,
    Array,
    DateTime,
    ObjectPath,
    Instance,
    Args,
    Context,
    Enumeration,
    SelectExp,
    Error,
    Result,
};
constexpr unsigned objectKinds = 11;

enum class ObjectState : std::uint8_t {
    Live,     // made in a scope, freed with it or released early
    Lent,     // part of another object, or a parameter that the host passed: not the provider's to release
    Clone,    // the provider's own until it releases it
    Released, // only seen while its memory has not been used again
};

struct ObjectHead {
    static constexpr std::uint32_t mark = 0x4b444f42;

    Broker* broker;
    RequestScope* scope; // null: a clone, or part of one
    std::uint32_t magic;
    ObjectKind kind;
    ObjectState state;
    std::uint16_t reserved;
};

} // namespace KDV::Host
