// A link from one record to another: four bytes in every build, so that a record has the same bytes on 32-bit and
// 64-bit machines. It holds the low 32 bits of a real address; the data library therefore allocates every record
// below 4 GiB. This is the only place that knows how a link becomes an address.
#pragma once

#include <cstdint>

namespace KDV {

// Packed like the records that hold it: another library may lay them at any address.
#pragma pack(push, 1)
template <class Record>
class RecordLink {
public:
    Record* get() const noexcept { return reinterpret_cast<Record*>(static_cast<std::uintptr_t>(_low)); }
    Record* operator->() const noexcept { return get(); }
    explicit operator bool() const noexcept { return _low != 0; }

    // The caller sees to it that the record lies below 4 GiB; null ends a list.
    void set(const Record* record) noexcept
    {
        _low = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(record));
    }

private:
    std::uint32_t _low;
};
#pragma pack(pop)

static_assert(sizeof(RecordLink<int>) == 4 && alignof(RecordLink<int>) == 1);

} // namespace KDV
