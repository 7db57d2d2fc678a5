#include "hostschema/ClassInfo.h"

#include <cstring>

namespace KDV::Host {

const QualifierInfo* QualifierList::find(std::string_view name) const noexcept
{
    for (const QualifierInfo& qualifier : _all)
        if (sameName(qualifier.name, name)) return &qualifier;
    return nullptr;
}

bool QualifierList::isTrue(std::string_view name) const noexcept
{
    const QualifierInfo* qualifier = find(name);
    return qualifier && qualifier->value.type == CMPI_boolean && !qualifier->value.isNull &&
           qualifier->value.number.boolean != 0;
}

void ClassInfo::indexProperties()
{
    std::size_t size = 8;
    while (size < _properties.size() * 2)
        size *= 2;
    _table.assign(size, -1);
    _names.clear();
    _keys.clear();
    for (std::size_t i = 0; i < _properties.size(); ++i) {
        PropertyInfo& property = _properties[i];
        property.index = static_cast<int>(i);
        _names.push_back(property.name);
        if (property.key) _keys.push_back(property.index);
        std::size_t slot = nameHash(property.name) & (size - 1);
        while (_table[slot] >= 0)
            slot = (slot + 1) & (size - 1);
        _table[slot] = static_cast<std::int16_t>(i);
    }
    _next = std::make_unique<std::atomic<std::uint32_t>[]>(_properties.size() + 1);
    for (std::size_t i = 0; i <= _properties.size(); ++i) {
        const auto following = static_cast<std::uint32_t>(i < _properties.size() ? i : 0);
        _next[i].store(following | following << 16, std::memory_order_relaxed);
    }
}

int ClassInfo::property(std::string_view name) const noexcept
{
    const std::size_t mask = _table.size() - 1;
    for (std::size_t slot = nameHash(name) & mask; _table[slot] >= 0; slot = (slot + 1) & mask)
        if (sameName(_names[static_cast<std::size_t>(_table[slot])], name)) return _table[slot];
    return -1;
}

int ClassInfo::propertyAfter(int previous, const char* name) const noexcept
{
    std::atomic<std::uint32_t>& next = _next[static_cast<std::size_t>(previous + 1)];
    const std::uint32_t guesses = next.load(std::memory_order_relaxed);
    for (const std::uint32_t guess : {guesses & 0xffff, guesses >> 16})
        if (guess < _names.size() && std::strcmp(_names[guess].data(), name) == 0) return static_cast<int>(guess);
    const int found = property(name);
    if (found >= 0) next.store(static_cast<std::uint32_t>(found) | guesses << 16, std::memory_order_relaxed);
    return found;
}

const PropertyInfo* ClassInfo::findProperty(std::string_view name) const noexcept
{
    const int index = property(name);
    return index < 0 ? nullptr : &_properties[static_cast<std::size_t>(index)];
}

const MethodInfo* ClassInfo::findMethod(std::string_view name) const noexcept
{
    for (const MethodInfo& method : _methods)
        if (sameName(method.name, name)) return &method;
    return nullptr;
}

} // namespace KDV::Host
