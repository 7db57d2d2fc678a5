// The JSON form in which subscriptions are kept. Reading checks every member; what does not fit is StateTextError,
// whose text names the place ("line 3, column 7" or "/filters/2/query"). Pure functions.
#pragma once

#include "indications/SubscriptionRecords.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace KDV::Host {

class StateTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string stateText(const SubscriptionState& state); // without static filters
SubscriptionState readStateText(std::string_view text);

} // namespace KDV::Host
