// Every record of one kind that there ever was: an element finds its record again by its key, at the same address,
// however often it goes and comes. Records are never freed or given to another element before the store itself goes,
// which the library's own stores never do. The caller locks.
#pragma once

#include "sashba/LowMemory.h"
#include "sashba/Machine.h"

#include <cstdint>
#include <cstring>
#include <unordered_map>

namespace KDV {

// The key of an element with that of its HBA (for an HBA itself: its own key twice).
struct StoreKey {
    ElementKey hba;
    ElementKey element;

    bool operator==(const StoreKey& other) const noexcept
    {
        return hba.number == other.hba.number && hba.occurrence == other.hba.occurrence &&
               element.number == other.element.number && element.occurrence == other.element.occurrence;
    }
};

struct StoreKeyHash {
    std::size_t operator()(const StoreKey& key) const noexcept
    {
        std::uint64_t mixed = key.element.number;
        for (const std::uint32_t part : {key.element.occurrence, key.hba.number, key.hba.occurrence})
            mixed = (mixed ^ (mixed >> 29)) * 0x9E3779B97F4A7C15U + part;
        return static_cast<std::size_t>(mixed ^ (mixed >> 32));
    }
};

template <class Record>
struct StoredRecord {
    Record* record = nullptr;
    bool linked = false;           // in its list now
    std::uint64_t lastTakenBy = 0; // number of the last whole machine that had a place for it
};

template <class Record>
class RecordStore {
public:
    explicit RecordStore(LowMemory& memory) : _memory(memory) {}

    StoredRecord<Record>& at(const StoreKey& key)
    {
        StoredRecord<Record>& stored = _records[key];
        if (!stored.record)
            stored.record = static_cast<Record*>(std::memset(_memory.allocate(sizeof(Record)), 0, sizeof(Record)));
        return stored;
    }

private:
    LowMemory& _memory;
    std::unordered_map<StoreKey, StoredRecord<Record>, StoreKeyHash> _records; // nodes keep their address
};

} // namespace KDV
