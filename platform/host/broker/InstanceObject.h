// An instance: its path and the properties set so far, in the order of their last setting. Made by a RequestScope; one
// thread at a time. A serialiser walks properties(); all texts are StringObjects, read with textOf().
#pragma once

#include "broker/PathObject.h"

namespace KDV::Host {

struct PropertyEntry {
    const PropertyInfo* property; // null: set again later, or filtered out; skipped by the walk
    CMPIType type;                // with CMPI_ARRAY; texts as CMPI_string
    CMPIValueState state;
    bool preset; // put there by the broker (a class default), not set by the provider
    CMPIValue value;

    CMPIData data() const noexcept { return {type, state, value}; }
    bool isNull() const noexcept { return (state & CMPI_nullValue) != 0; }
};

class PropertyWalk {
public:
    class Iterator {
    public:
        Iterator(const PropertyEntry* at, const PropertyEntry* end) noexcept : _at(at), _end(end) { skip(); }
        const PropertyEntry& operator*() const noexcept { return *_at; }
        const PropertyEntry* operator->() const noexcept { return _at; }
        Iterator& operator++() noexcept
        {
            ++_at;
            skip();
            return *this;
        }
        bool operator!=(const Iterator& other) const noexcept { return _at != other._at; }

    private:
        void skip() noexcept
        {
            while (_at != _end && !_at->property)
                ++_at;
        }
        const PropertyEntry* _at;
        const PropertyEntry* _end;
    };
    PropertyWalk(const PropertyEntry* entries, std::uint32_t count) noexcept : _begin(entries), _end(entries + count) {}
    Iterator begin() const noexcept { return {_begin, _end}; }
    Iterator end() const noexcept { return {_end, _end}; }

private:
    const PropertyEntry* _begin;
    const PropertyEntry* _end;
};

struct InstanceObject : CMPIInstance {
    ObjectHead head;
    Memory* memory;
    const ClassInfo* classInfo; // null: unknown to the repository
    PathObject* path;           // part of the instance; never null
    PropertyEntry* entries;
    std::uint32_t entryCount; // skipped ones included
    std::uint32_t entryCapacity;
    std::uint32_t setCount; // skipped ones not included
    std::int32_t previous;  // class index of the property set last
    std::uint16_t* places;  // by class index: place in entries + 1, or 0
    std::uint64_t* filter;  // bit per class index: may be set; null: all may

    PropertyWalk properties() const noexcept { return {entries, entryCount}; }
    const PropertyEntry* find(std::string_view name) const noexcept;
    static const InstanceObject& of(const CMPIInstance* instance) noexcept
    {
        return *static_cast<const InstanceObject*>(instance);
    }
};

} // namespace KDV::Host
