#include "broker/InstanceObject.h"

#include "broker/ObjectMaking.h"

#include <algorithm>
#include <cstring>

namespace KDV::Host {
namespace {

constexpr std::uint32_t usualProperties = 32;

// Sfcb gives a new instance every property of its class, with the class's default or NULL, and the keys of the path.
void presetAll(InstanceObject& instance)
{
    const Placement inside = Placement::inside(instance.head, instance.memory);
    for (const PropertyInfo& property : instance.classInfo->properties())
        storeProperty(
            instance, property,
            property.defaultValue.isNull ? nullData(property.type) : schemaData(inside, property.defaultValue), true);
    for (const KeyBinding& key : *instance.path)
        if (key.property) storeProperty(instance, *key.property, copyData(inside, key.data), true);
}

void makeRoom(InstanceObject& instance)
{
    PropertyEntry* to = instance.entries;
    // Properties set again and again leave gaps: close them before growing.
    if (instance.setCount > instance.entryCapacity / 2) {
        instance.entryCapacity *= 2;
        to = instance.memory->array<PropertyEntry>(instance.entryCapacity);
    }
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; i < instance.entryCount; ++i) {
        const PropertyEntry& entry = instance.entries[i];
        if (!entry.property) continue;
        to[count] = entry;
        if (entry.property->index >= 0) instance.places[entry.property->index] = static_cast<std::uint16_t>(count + 1);
        ++count;
    }
    instance.entries = to;
    instance.entryCount = count;
}

} // namespace

InstanceObject* makeInstance(const Placement& at, const PathObject& path)
{
    auto* object = place<InstanceObject>(at, ObjectKind::Instance, &at.broker->tables().instance);
    object->memory = at.memory;
    object->classInfo = path.classInfo;
    object->entries = at.memory->array<PropertyEntry>(usualProperties);
    object->entryCount = object->setCount = 0;
    object->entryCapacity = usualProperties;
    object->previous = -1;
    object->filter = nullptr;
    const std::size_t declared = path.classInfo ? path.classInfo->properties().size() : 0;
    object->places = at.memory->array<std::uint16_t>(declared);
    std::memset(object->places, 0, declared * sizeof(std::uint16_t));
    object->path = copyOf(Placement::inside(object->head, at.memory), path);
    if (at.broker->profile() == Profile::Sfcb && object->classInfo) presetAll(*object);
    return object;
}

InstanceObject* copyOf(const Placement& at, const InstanceObject& from)
{
    auto* object = place<InstanceObject>(at, ObjectKind::Instance, &at.broker->tables().instance);
    *static_cast<CMPIInstance*>(object) = {&object->head, from.ft};
    object->memory = at.memory;
    object->classInfo = from.classInfo;
    object->previous = -1;
    object->entryCapacity = std::max(from.setCount, 4u);
    object->entries = at.memory->array<PropertyEntry>(object->entryCapacity);
    object->entryCount = object->setCount = 0;
    const std::size_t declared = from.classInfo ? from.classInfo->properties().size() : 0;
    object->places = at.memory->array<std::uint16_t>(declared);
    std::memset(object->places, 0, declared * sizeof(std::uint16_t));
    object->filter = nullptr;
    if (from.filter) {
        const std::size_t words = (declared + 63) / 64;
        object->filter = at.memory->array<std::uint64_t>(words);
        std::memcpy(object->filter, from.filter, words * sizeof(std::uint64_t));
    }
    const Placement inside = Placement::inside(object->head, at.memory);
    object->path = copyOf(inside, *from.path);
    for (const PropertyEntry& entry : from.properties())
        storeProperty(*object, *entry.property, copyData(inside, entry.data()), entry.preset);
    return object;
}

const PropertyEntry* InstanceObject::find(std::string_view name) const noexcept
{
    const int index = classInfo ? classInfo->property(name) : -1;
    if (index >= 0) return places[index] ? entries + (places[index] - 1) : nullptr;
    for (const PropertyEntry& entry : properties())
        if (sameName(entry.property->name, name)) return &entry;
    return nullptr;
}

PropertyEntry& claimProperty(InstanceObject& instance, const PropertyInfo& property)
{
    PropertyEntry* old = nullptr;
    if (property.index >= 0) {
        if (const std::uint16_t place = instance.places[property.index]) old = instance.entries + (place - 1);
    } else {
        old = const_cast<PropertyEntry*>(instance.find(property.name));
    }
    if (old) removeProperty(instance, *old);
    if (instance.entryCount == instance.entryCapacity) makeRoom(instance);
    PropertyEntry& entry = instance.entries[instance.entryCount++];
    entry.property = &property;
    entry.preset = false;
    ++instance.setCount;
    if (property.index >= 0) instance.places[property.index] = static_cast<std::uint16_t>(instance.entryCount);
    return entry;
}

void storeProperty(InstanceObject& instance, const PropertyInfo& property, const CMPIData& data, bool preset)
{
    PropertyEntry& entry = claimProperty(instance, property);
    entry.type = data.type;
    entry.state = data.state;
    entry.preset = preset;
    entry.value = data.value;
}

void removeProperty(InstanceObject& instance, PropertyEntry& entry)
{
    if (entry.property->index >= 0) instance.places[entry.property->index] = 0;
    entry.property = nullptr;
    --instance.setCount;
    if (&entry == instance.entries + instance.entryCount - 1) --instance.entryCount;
}

} // namespace KDV::Host
