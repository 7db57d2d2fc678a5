#include "hostschema/ClassInfo.h"

#include <cstring>

namespace KDV::Host {

const QualifierInfo* QualifierList::find(std::string_view name) const noexcept
{
    for (const QualifierInfo& qualifier : _all)
        if (sameName(qualifier.name, name))
            return &qualifier;
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
        if (property.key)
            _keys.push_back(property.index);
        std::size_t slot = nameHash(property.name) & (size - 1);
        while (_table[slot] >= 0)
            slot = (slot + 1) & (size - 1);
        _table[slot] = static_cast<std::int16_t>(i);
    }
    _next = std::make_unique<std::atomic<std::int16_t>[]>(_properties.size() + 1);
    for (std::size_t i = 0; i <= _properties.size(); ++i)
        _next[i].store(static_cast<std::int16_t>(i < _properties.size() ? static_cast<int>(i) : -1),
                       std::memory_order_relaxed);
}

int ClassInfo::property(std::string_view name) const noexcept
{
    const std::size_t mask = _table.size() - 1;
    for (std::size_t slot = nameHash(name) & mask; _table[slot] >= 0; slot = (slot + 1) & mask)
        if (sameName(_names[static_cast<std::size_t>(_table[slot])], name))
            return _table[slot];
    return -1;
}

int ClassInfo::propertyAfter(int previous, const char* name) const noexcept
{
    std::atomic<std::int16_t>& next = _next[static_cast<std::size_t>(previous + 1)];
    const int guess = next.load(std::memory_order_relaxed);
    if (guess >= 0 && std::strcmp(_names[static_cast<std::size_t>(guess)].data(), name) == 0)
        return guess;
    const int found = property(name);
    if (found >= 0)
        next.store(static_cast<std::int16_t>(found), std::memory_order_relaxed);
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
        if (sameName(method.name, name))
            return &method;
    return nullptr;
}

} // namespace KDV::Host
