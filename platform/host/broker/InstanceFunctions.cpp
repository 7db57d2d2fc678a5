// The function table of instances.
#include "broker/Calls.h"

#include <cstring>

namespace KDV::Host {
namespace {

CMPIrc missingCode(const InstanceObject& instance) noexcept
{
    return instance.head.broker->profile() == Profile::Sfcb ? CMPI_RC_ERR_NOT_FOUND : CMPI_RC_ERR_NO_SUCH_PROPERTY;
}

CMPIData missingProperty(const InstanceObject& instance) noexcept
{
    switch (instance.head.broker->profile()) {
    case Profile::Sfcb:
        return missing(CMPI_notFound);
    case Profile::Pegasus:
        return missing(CMPI_nullValue | CMPI_notFound);
    default:
        return missing(CMPI_nullValue);
    }
}

CMPIData getProperty(const CMPIInstance* self, const char* name, CMPIStatus* status)
{
    return answer<InstanceObject>(self, status, missing(CMPI_nullValue),
                                  [&](InstanceObject& instance, CMPIStatus& outcome) {
                                      const PropertyEntry* entry = name ? instance.find(name) : nullptr;
                                      if (entry) return entry->data();
                                      // The state of a miss counts too, so it is given beside the code.
                                      outcome = failed(missingCode(instance));
                                      return missing(CMPI_nullValue);
                                  });
}

CMPIData getPropertyWithState(const CMPIInstance* self, const char* name, CMPIStatus* status)
{
    CMPIStatus outcome = ok();
    CMPIData data = getProperty(self, name, &outcome);
    if (outcome.rc == CMPI_RC_ERR_NO_SUCH_PROPERTY || outcome.rc == CMPI_RC_ERR_NOT_FOUND)
        data = missingProperty(*static_cast<const InstanceObject*>(self));
    tell(status, outcome);
    return data;
}

CMPIData getPropertyAt(const CMPIInstance* self, CMPICount index, CMPIString** name, CMPIStatus* status)
{
    return answer<InstanceObject>(
        self, status, missing(CMPI_nullValue), [&](InstanceObject& instance, CMPIStatus& outcome) {
            CMPICount at = 0;
            for (const PropertyEntry& entry : instance.properties()) {
                if (at++ != index) continue;
                if (name) *name = makeString(Placement::inside(instance.head, instance.memory), entry.property->name);
                return entry.data();
            }
            outcome = failed(missingCode(instance));
            return missing(CMPI_nullValue);
        });
}

CMPICount getPropertyCount(const CMPIInstance* self, CMPIStatus* status)
{
    return answer<InstanceObject, CMPICount>(self, status, 0,
                                             [](InstanceObject& instance, CMPIStatus&) { return instance.setCount; });
}

CMPIStatus refused(InstanceObject& instance, CMPIrc rc, const char* name, const char* why)
{
    Broker& broker = *instance.head.broker;
    ++broker.counters().refusedProperties;
    return failedWith(broker, rc, "property " + std::string(instance.path->className) + "." + name + ": " + why);
}

bool isTextKind(CMPIType type) noexcept
{
    return type == CMPI_string || type == CMPI_dateTime || type == CMPI_ref || (type & CMPI_ARRAY);
}

// Whether a value of this type may stand in the property, with texts taken as CMPI_string already.
CMPIStatus checkType(InstanceObject& instance, const PropertyInfo& property, CMPIType type, const CMPIValue* value)
{
    if (instance.head.broker->profile() == Profile::Sfcb) {
        if (type != property.type && isTextKind(property.type))
            return refused(instance, CMPI_RC_ERR_TYPE_MISMATCH, property.name.c_str(), "another kind of value");
        return ok();
    }
    const CMPIrc rc = instance.head.broker->profile() == Profile::Standard ? CMPI_RC_ERR_TYPE_MISMATCH
                                                                           : CMPI_RC_ERR_INVALID_DATA_TYPE;
    if (type != property.type) return refused(instance, rc, property.name.c_str(), "declared with another type");
    if ((type & CMPI_ARRAY) && value && value->array) {
        const ArrayObject* array = argument<ArrayObject>(value->array);
        if (!array) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        const CMPIType element = array->elementType == CMPI_chars ? CMPI_string : array->elementType;
        if (element != property.elementType())
            return refused(instance, rc, property.name.c_str(), "declared with another element type");
    }
    return ok();
}

CMPIStatus store(InstanceObject& instance, const PropertyInfo& property, const CMPIValue* value, CMPIType type)
{
    CMPIData data;
    if (!copyValue(Placement::inside(instance.head, instance.memory), value, type, data))
        return refused(instance, CMPI_RC_ERR_INVALID_DATA_TYPE, property.name.c_str(), "no property has this type");
    if ((data.type & CMPI_ARRAY) && !isNull(data) && ArrayObject::of(data.value.array).elementType == CMPI_chars)
        const_cast<ArrayObject&>(ArrayObject::of(data.value.array)).elementType = CMPI_string;
    storeProperty(instance, property, data, false);
    // Sfcb makes the path of an instance from its key properties.
    if (property.key && instance.head.broker->profile() == Profile::Sfcb && !isNull(data))
        bindKey(*instance.path, property.name, &property) =
            copyData(Placement::inside(instance.path->head, instance.memory), data);
    return ok();
}

// The string or array that a value points to, if it is there to be copied; null sends it the general way.
template <class Object, class Abi>
const Object* usable(const Abi* abi) noexcept
{
    const auto* object = static_cast<const Object*>(abi);
    return object && object->head.state != ObjectState::Released ? object : nullptr;
}

// Numbers, texts and arrays, which nearly all properties are, written in place: a value that goes through other hands
// on its way costs more than all the rest. False for everything else.
bool storeSimple(InstanceObject& instance, const PropertyInfo& property, const CMPIValue* value, CMPIType type)
{
    std::uint64_t bits = 0;
    CMPIString* text = nullptr;
    CMPIArray* array = nullptr;
    const Placement inside = Placement::inside(instance.head, instance.memory);
    if (isScalar(type)) {
        bits = scalarBits(value, type);
    } else if (type == CMPI_chars) {
        text = makeString(inside, reinterpret_cast<const char*>(value));
    } else if (type == CMPI_string) {
        const auto* from = usable<StringObject>(value->string);
        if (!from || from->isNull) return false;
        text = makeString(inside, from->text());
    } else if ((type & CMPI_ARRAY) && type != CMPI_charsA) {
        const auto* from = usable<ArrayObject>(value->array);
        if (!from || from->elementType == CMPI_chars) return false;
        array = copyOf(inside, *from);
    } else {
        return false;
    }
    PropertyEntry& entry = claimProperty(instance, property);
    entry.type = type == CMPI_chars ? CMPI_string : type;
    entry.state = CMPI_goodValue;
    if (text)
        entry.value.string = text;
    else if (array)
        entry.value.array = array;
    else
        entry.value.uint64 = bits;
    return true;
}

CMPIStatus setUndeclared(InstanceObject& instance, const char* name, const CMPIValue* value, CMPIType type)
{
    Broker& broker = *instance.head.broker;
    if (broker.profile() == Profile::Standard)
        return refused(instance, CMPI_RC_ERR_INVALID_PARAMETER, name, "not declared by the class");
    if (broker.profile() == Profile::Pegasus && instance.classInfo) {
        ++broker.counters().droppedProperties;
        if (LogSink* log = broker.logSink())
            log->message(CMPI_SEV_WARNING, "",
                         "property " + std::string(instance.path->className) + "." + name +
                             " is not declared by the class and was dropped");
        return ok();
    }
    if (instance.filter) return ok(); // a filter names only what the class declares
    return store(instance, *broker.undeclaredProperty(name, type), value, type);
}

bool passes(const std::uint64_t* filter, int index) noexcept { return (filter[index / 64] >> (index % 64)) & 1u; }

CMPIStatus setProperty(const CMPIInstance* self, const char* name, const CMPIValue* value, CMPIType type)
{
    return change<InstanceObject>(self, [&](InstanceObject& instance) {
        if (!name) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        const ClassInfo* info = instance.classInfo;
        const int index = info ? info->propertyAfter(instance.previous, name) : -1;
        if (index < 0) return setUndeclared(instance, name, value, type);
        instance.previous = index;
        const PropertyInfo& property = info->properties()[static_cast<std::size_t>(index)];
        const CMPIType stored = type == CMPI_chars ? CMPI_string : type == CMPI_charsA ? CMPI_stringA : type;
        if (stored != property.type || (stored & CMPI_ARRAY)) {
            const CMPIStatus status = checkType(instance, property, stored, value);
            if (status.rc != CMPI_RC_OK) return status;
        }
        if (instance.filter && !passes(instance.filter, index)) return ok();
        if (value && !(property.key && instance.head.broker->profile() == Profile::Sfcb) &&
            storeSimple(instance, property, value, type))
            return ok();
        return store(instance, property, value, type);
    });
}

CMPIStatus setPropertyWithOrigin(const CMPIInstance* self, const char* name, const CMPIValue* value, CMPIType type,
                                 const char* origin)
{
    if (self && self->hdl && name && origin) {
        const auto& instance = InstanceObject::of(self);
        const PropertyInfo* property = instance.classInfo ? instance.classInfo->findProperty(name) : nullptr;
        if (property && !sameName(property->origin->name(), origin)) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    }
    return setProperty(self, name, value, type);
}

CMPIObjectPath* getObjectPath(const CMPIInstance* self, CMPIStatus* status)
{
    return answer<InstanceObject, CMPIObjectPath*>(
        self, status, nullptr, [](InstanceObject& instance, CMPIStatus& outcome) -> CMPIObjectPath* {
            Broker& broker = *instance.head.broker;
            if (broker.profile() == Profile::Sfcb && !instance.classInfo) {
                outcome = failed(CMPI_RC_ERR_INVALID_CLASS);
                return nullptr;
            }
            RequestScope* scope = RequestScope::current(broker);
            if (!scope) {
                ++broker.counters().unattachedCalls;
                outcome = failed(CMPI_RC_ERR_FAILED);
                return nullptr;
            }
            return copyOf(Placement::own(broker, scope, ObjectKind::ObjectPath, ownPathSize), *instance.path);
        });
}

void allow(InstanceObject& instance, std::uint64_t* bits, const char** names)
{
    for (; names && *names; ++names) {
        const int index = instance.classInfo->property(*names);
        if (index >= 0) bits[index / 64] |= std::uint64_t{1} << (index % 64);
    }
}

void dropLostKeys(InstanceObject& instance, const std::uint64_t* listed, const char** keyList)
{
    PathObject& path = *instance.path;
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; i < path.keyCount; ++i) {
        const KeyBinding& key = path.keys[i];
        bool named = !key.property || passes(listed, key.property->index);
        for (const char** name = keyList; name && *name; ++name)
            named = named || sameName(*name, key.name);
        if (named) path.keys[count++] = key;
    }
    path.keyCount = count;
}

CMPIStatus setPropertyFilter(const CMPIInstance* self, const char** properties, const char** keyList)
{
    return change<InstanceObject>(self, [&](InstanceObject& instance) {
        const Profile profile = instance.head.broker->profile();
        if (!properties || !instance.classInfo || profile == Profile::Pegasus)
            return ok(); // Pegasus filters the answer itself
        const std::size_t words = (instance.classInfo->properties().size() + 63) / 64;
        auto* bits = instance.memory->array<std::uint64_t>(words);
        std::memset(bits, 0, words * sizeof(std::uint64_t));
        allow(instance, bits, properties);
        instance.filter = bits;
        for (std::uint32_t i = instance.entryCount; i-- > 0;) {
            PropertyEntry& entry = instance.entries[i];
            if (entry.property && (entry.property->index < 0 || !passes(bits, entry.property->index)))
                removeProperty(instance, entry);
        }
        // Sfcb makes the path from key properties, so a key that neither list names is gone from the path too.
        if (profile == Profile::Sfcb) dropLostKeys(instance, bits, keyList);
        return ok();
    });
}

CMPIStatus setObjectPath(const CMPIInstance* self, const CMPIObjectPath* op)
{
    return change<InstanceObject>(self, [&](InstanceObject& instance) {
        const PathObject* path = argument<PathObject>(op);
        if (!path) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        const bool sameClass = sameName(path->className, instance.path->className);
        const Profile profile = instance.head.broker->profile();
        if (!sameClass && profile != Profile::Sfcb) return failed(CMPI_RC_ERR_FAILED);
        const Placement inside = Placement::inside(instance.head, instance.memory);
        if (!sameClass || path->classInfo != instance.classInfo)
            return failed(CMPI_RC_ERR_INVALID_CLASS); // the properties were laid out for the class it was made with
        instance.path = copyOf(inside, *path);
        if (profile == Profile::Sfcb)
            for (const KeyBinding& key : *instance.path)
                if (key.property) storeProperty(instance, *key.property, copyData(inside, key.data), false);
        return ok();
    });
}

} // namespace

CMPIInstanceFT instanceTable(Profile profile)
{
    CMPIInstanceFT table{objectTableVersion(profile),
                         release<InstanceObject, CMPIInstance>,
                         cloneObject<InstanceObject, CMPIInstance>,
                         getPropertyWithState,
                         getPropertyAt,
                         getPropertyCount,
                         setProperty,
                         getObjectPath,
                         setPropertyFilter,
                         setObjectPath,
                         setPropertyWithOrigin};
    if (profile == Profile::Sfcb) table.setPropertyWithOrigin = nullptr;
    return table;
}

} // namespace KDV::Host
