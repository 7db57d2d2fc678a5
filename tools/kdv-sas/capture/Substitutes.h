// Stand-ins for the secrets of one capture: as long as the original, of the same kind of letters, each another one,
// drawn at random. Nothing but this object, which lives no longer than the making of a capture, leads back. What a
// reader needs of world-wide names stays: the kind and the maker, the order, the last digit, and how far names are
// apart that are close, so that the two ports of a drive and the parts of an adapter are still seen to belong together.
// A text that has another one in it has that one's stand-in in it. Throws std::bad_alloc only.
#pragma once

#include "capture/Secrets.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace KdvSas {

using Random = std::function<std::uint64_t()>;

// From the system, so that nobody can draw the same again. Throws std::system_error when there is none.
Random systemRandom();

struct Substitutes {
    std::map<std::uint64_t, std::uint64_t> addresses;
    std::map<std::string, std::string> longNames; // as bytes
    std::map<std::string, std::string> texts;
    std::map<std::string, std::string> words; // only where they stand alone
};

Substitutes drawSubstitutes(const Secrets& secrets, const Random& random);

} // namespace KdvSas
