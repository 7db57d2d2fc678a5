// Makes and copies broker objects in a place: in memory of their own, or inside the memory of the object they become
// part of. Internal to this library; std::bad_alloc.
#pragma once

#include "broker/Enumeration.h"
#include "broker/ErrorObject.h"
#include "broker/NamedValues.h"
#include "broker/RequestScope.h"
#include "broker/SelectExpObject.h"
#include "broker/Tables.h"

#include <cstring>

namespace KDV::Host {

struct Placement {
    Memory* memory;
    Broker* broker;
    RequestScope* scope;
    ObjectState state;

    // New memory of the scope (counted), or of the heap for a clone (scope null).
    static Placement own(Broker& broker, RequestScope* scope, ObjectKind kind, std::size_t size);
    // Part of another object; `memory` is that object's.
    static Placement inside(const ObjectHead& owner, Memory* memory)
    {
        return {memory, owner.broker, owner.scope, ObjectState::Lent};
    }
};

template <class Object, class Table>
Object* place(const Placement& at, ObjectKind kind, const Table* table, std::size_t extra = 0)
{
    auto* object = static_cast<Object*>(at.memory->allocate(sizeof(Object) + extra));
    object->hdl = &object->head;
    object->ft = table;
    object->head = {at.broker, at.scope, ObjectHead::mark, kind, at.state, 0};
    return object;
}

constexpr std::size_t ownStringSize = sizeof(StringObject) + 64;
constexpr std::size_t ownArraySize = sizeof(ArrayObject);
constexpr std::size_t ownPathSize = 960;
constexpr std::size_t ownInstanceSize = 4000;
constexpr std::size_t ownListSize = 900;

StringObject* makeString(const Placement& at, std::string_view text, bool null = false);
ArrayObject* makeArray(const Placement& at, CMPICount size, CMPIType elementType, bool growable);
DateTimeObject* makeDateTime(const Placement& at, const char* text25);
PathObject* makePath(const Placement& at, const ClassInfo* info, std::string_view nameSpace,
                     std::string_view className);
InstanceObject* makeInstance(const Placement& at, const PathObject& path);
ArgsObject* makeArgs(const Placement& at);
ContextObject* makeContext(const Placement& at);
EnumerationObject* makeEnumeration(const Placement& at);
SelectExpObject* makeSelectExp(const Placement& at, std::string_view query, std::string_view language,
                               const std::shared_ptr<const SelectEvaluator>* evaluator);
ErrorObject* makeError(const Placement& at);

StringObject* copyOf(const Placement& at, const StringObject& from);
ArrayObject* copyOf(const Placement& at, const ArrayObject& from);
DateTimeObject* copyOf(const Placement& at, const DateTimeObject& from);
PathObject* copyOf(const Placement& at, const PathObject& from);
InstanceObject* copyOf(const Placement& at, const InstanceObject& from);
ArgsObject* copyOf(const Placement& at, const ArgsObject& from);
ContextObject* copyOf(const Placement& at, const ContextObject& from);
EnumerationObject* copyOf(const Placement& at, const EnumerationObject& from);
SelectExpObject* copyOf(const Placement& at, const SelectExpObject& from);
ErrorObject* copyOf(const Placement& at, const ErrorObject& from);

// A value as C callers pass it: null pointer for NULL; for CMPI_chars the text itself. The copy has CMPI_string for
// texts and never refers to what was passed. False: the type cannot be held (rc 61 or 13 of the caller).
bool copyValue(const Placement& inside, const CMPIValue* value, CMPIType type, CMPIData& data);
// The same for a value that this library holds already.
CMPIData copyData(const Placement& inside, const CMPIData& data);

// A type whose value is a number or boolean, up to 8 bytes wide.
constexpr bool isScalar(CMPIType type) noexcept
{
    return type == CMPI_boolean || type == CMPI_char16 || type == CMPI_real32 || type == CMPI_real64 ||
           (type & ~0x70) == 0x80;
}

// The bytes of such a value, zero-extended: one store of 8 bytes then makes the whole, and no later load of the whole
// has to wait for parts.
inline std::uint64_t scalarBits(const CMPIValue* value, CMPIType type) noexcept
{
    switch (type) {
    case CMPI_boolean:
    case CMPI_uint8:
    case CMPI_sint8:
        return value->uint8;
    case CMPI_char16:
    case CMPI_uint16:
    case CMPI_sint16:
        return value->uint16;
    case CMPI_uint32:
    case CMPI_sint32:
    case CMPI_real32: {
        std::uint32_t bits;
        std::memcpy(&bits, value, sizeof bits);
        return bits;
    }
    default: {
        std::uint64_t bits;
        std::memcpy(&bits, value, sizeof bits);
        return bits;
    }
    }
}

void setNamed(NamedValueList& list, const Placement& inside, std::string_view name, const CMPIData& data);
CMPIData nullData(CMPIType type) noexcept;
// The place for a value that is now the last one set; its type, state and value are for the caller to fill.
PropertyEntry& claimProperty(InstanceObject& instance, const PropertyInfo& property);
// Puts a value into an instance as the last one set; unchecked.
void storeProperty(InstanceObject& instance, const PropertyInfo& property, const CMPIData& data, bool preset);
void removeProperty(InstanceObject& instance, PropertyEntry& entry);
// The default that the class gives the property, inside the instance's memory.
CMPIData schemaData(const Placement& inside, const SchemaValue& value);
// The place for the key's value, which the caller fills; an earlier one of the name is replaced.
CMPIData& bindKey(PathObject& path, std::string_view name, const PropertyInfo* property);

} // namespace KDV::Host
