// Servers differ in what they leave to the provider. A Broker plays one of these parts, so that a provider can be
// tried under each:
//   Standard  every slot of version 2.0 filled; what the class does not declare, or declares with another type, is
//             refused (4, 13); misses are 12.
//   Sfcb      old version numbers, many empty slots, nothing checked; new instances have all properties of the class;
//             misses are 6; objects live until the thread's request ends, also on attached threads.
//   Pegasus   version 2.0 with a few empty slots; other types are refused with 61, undeclared properties dropped and
//             counted; integers of keys are read as sint64.
#pragma once

#include <string_view>

namespace KDV::Host {

enum class Profile { Standard, Sfcb, Pegasus };

constexpr std::string_view profileName(Profile profile) noexcept
{
    return profile == Profile::Standard ? "standard" : profile == Profile::Sfcb ? "sfcb" : "pegasus";
}
constexpr Profile allProfiles[] = {Profile::Standard, Profile::Sfcb, Profile::Pegasus};

} // namespace KDV::Host
