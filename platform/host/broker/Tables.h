// The function tables that a broker hands out, cut to the size of version 2.0 and with the empty slots and version
// numbers of the broker's profile. Made once with the broker; constant from then on.
#pragma once

#include "broker/Broker.h"

#include <cstddef>
#include <new>

namespace KDV::Host {

// A table in memory of exactly the size that version 2.0 gives it, so that checkers see a read of a later slot.
template <class Table>
class SizedTable {
public:
    SizedTable(const Table& table, std::size_t size);
    ~SizedTable() { ::operator delete(_at); }
    SizedTable(const SizedTable&) = delete;
    SizedTable& operator=(const SizedTable&) = delete;
    const Table* get() const noexcept { return static_cast<const Table*>(_at); }

private:
    void* _at;
};

struct Broker::Tables {
    explicit Tables(Profile profile);
    ~Tables();
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    SizedTable<CMPIBrokerFT> broker;
    SizedTable<CMPIBrokerEncFT> factories;
    SizedTable<CMPIBrokerExtFT> system;
    CMPIBrokerMemFT memory;
    SizedTable<CMPIStringFT> string;
    CMPIArrayFT array;
    CMPIDateTimeFT dateTime;
    CMPIObjectPathFT path;
    CMPIInstanceFT instance;
    CMPIArgsFT args;
    CMPIContextFT context;
    CMPIEnumerationFT enumeration;
    CMPISelectExpFT selectExp;
    CMPIErrorFT error;
    CMPIResultFT result;
};

// Each fills its table for a profile; defined beside the functions.
CMPIBrokerFT brokerTable(Profile profile);
CMPIBrokerEncFT factoryTable(Profile profile);
CMPIBrokerExtFT systemTable(Profile profile);
CMPIBrokerMemFT memoryTable();
CMPIStringFT stringTable(Profile profile);
CMPIArrayFT arrayTable(Profile profile);
CMPIDateTimeFT dateTimeTable(Profile profile);
CMPIObjectPathFT pathTable(Profile profile);
CMPIInstanceFT instanceTable(Profile profile);
CMPIArgsFT argsTable(Profile profile);
CMPIContextFT contextTable(Profile profile);
CMPIEnumerationFT enumerationTable(Profile profile);
CMPISelectExpFT selectExpTable(Profile profile);
CMPIErrorFT errorTable(Profile profile);
CMPIResultFT resultTable(Profile profile);

// Sfcb numbers all its object tables 1.
constexpr CMPIVersion objectTableVersion(Profile profile) noexcept
{
    return profile == Profile::Sfcb ? 1 : CMPIVersion200;
}

} // namespace KDV::Host
