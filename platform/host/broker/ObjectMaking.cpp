#include "broker/ObjectMaking.h"

#include "broker/Counters.h"

#include <cstring>

namespace KDV::Host {

Placement Placement::own(Broker& broker, RequestScope* scope, ObjectKind kind, std::size_t size)
{
    if (!scope) {
        Memory* memory = Memory::create(nullptr, size);
        ++broker.counters().liveClones;
        return {memory, &broker, nullptr, ObjectState::Clone};
    }
    Memory* memory = Memory::create(&scope->blocks(), size);
    scope->count(kind);
    return {memory, &broker, scope, ObjectState::Live};
}

CMPIData nullData(CMPIType type) noexcept
{
    CMPIData data{};
    data.type = type == CMPI_chars ? CMPI_string : type == CMPI_charsA ? CMPI_stringA : type;
    data.state = CMPI_nullValue;
    return data;
}

StringObject* makeString(const Placement& at, std::string_view text, bool null)
{
    auto* object = place<StringObject>(at, ObjectKind::String, at.broker->tables().string.get(), text.size() + 1);
    object->length = static_cast<std::uint32_t>(text.size());
    object->isNull = null;
    auto* chars = reinterpret_cast<char*>(object + 1);
    if (!text.empty()) // a null pointer must not reach memcpy, not even with a size of 0
        std::memcpy(chars, text.data(), text.size());
    chars[text.size()] = '\0';
    return object;
}

namespace {

// Its elements are not filled in yet.
ArrayObject* blankArray(const Placement& at, CMPICount size, CMPIType elementType, bool growable)
{
    auto* object = place<ArrayObject>(at, ObjectKind::Array, &at.broker->tables().array);
    object->memory = at.memory;
    object->elementType = elementType;
    object->growable = growable;
    object->size = size;
    object->capacity = size;
    object->elements = at.memory->array<CMPIData>(size);
    return object;
}

} // namespace

ArrayObject* makeArray(const Placement& at, CMPICount size, CMPIType elementType, bool growable)
{
    ArrayObject* object = blankArray(at, size, elementType, growable);
    for (CMPICount i = 0; i < size; ++i) {
        CMPIData& element = object->elements[i];
        element.type = elementType;
        element.state = CMPI_nullValue;
        element.value.uint64 = 0;
    }
    return object;
}

DateTimeObject* makeDateTime(const Placement& at, const char* text25)
{
    auto* object = place<DateTimeObject>(at, ObjectKind::DateTime, &at.broker->tables().dateTime);
    object->memory = at.memory;
    object->lentText = nullptr;
    std::memcpy(object->text, text25, 25);
    object->text[25] = '\0';
    return object;
}

ArgsObject* makeArgs(const Placement& at)
{
    auto* object = place<ArgsObject>(at, ObjectKind::Args, &at.broker->tables().args);
    object->memory = at.memory;
    object->values = {nullptr, 0, 0};
    return object;
}

ContextObject* makeContext(const Placement& at)
{
    auto* object = place<ContextObject>(at, ObjectKind::Context, &at.broker->tables().context);
    object->memory = at.memory;
    object->values = {nullptr, 0, 0};
    object->attached = nullptr;
    return object;
}

EnumerationObject* makeEnumeration(const Placement& at)
{
    auto* object = place<EnumerationObject>(at, ObjectKind::Enumeration, &at.broker->tables().enumeration);
    object->memory = at.memory;
    object->elements = nullptr;
    object->count = object->capacity = object->next = 0;
    return object;
}

SelectExpObject* makeSelectExp(const Placement& at, std::string_view query, std::string_view language,
                               const std::shared_ptr<const SelectEvaluator>* evaluator)
{
    auto* object = place<SelectExpObject>(at, ObjectKind::SelectExp, &at.broker->tables().selectExp);
    object->memory = at.memory;
    object->query = makeString(Placement::inside(object->head, at.memory), query);
    object->language = makeString(Placement::inside(object->head, at.memory), language);
    object->evaluator = evaluator;
    return object;
}

StringObject* copyOf(const Placement& at, const StringObject& from) { return makeString(at, from.text(), from.isNull); }

ArrayObject* copyOf(const Placement& at, const ArrayObject& from)
{
    ArrayObject* object = blankArray(at, from.size, from.elementType, false);
    const Placement inside = Placement::inside(object->head, at.memory);
    if (isScalar(from.elementType) && from.size)
        std::memcpy(static_cast<void*>(object->elements), from.elements, from.size * sizeof(CMPIData));
    else
        for (CMPICount i = 0; i < from.size; ++i)
            object->elements[i] = copyData(inside, from.elements[i]);
    return object;
}

DateTimeObject* copyOf(const Placement& at, const DateTimeObject& from) { return makeDateTime(at, from.text); }

ArgsObject* copyOf(const Placement& at, const ArgsObject& from)
{
    ArgsObject* object = makeArgs(at);
    const Placement inside = Placement::inside(object->head, at.memory);
    for (const NamedValue& value : from.values)
        setNamed(object->values, inside, value.name->text(), copyData(inside, value.data));
    return object;
}

ContextObject* copyOf(const Placement& at, const ContextObject& from)
{
    ContextObject* object = makeContext(at);
    const Placement inside = Placement::inside(object->head, at.memory);
    for (const NamedValue& value : from.values)
        setNamed(object->values, inside, value.name->text(), copyData(inside, value.data));
    return object;
}

EnumerationObject* copyOf(const Placement& at, const EnumerationObject& from)
{
    EnumerationObject* object = makeEnumeration(at);
    const Placement inside = Placement::inside(object->head, at.memory);
    for (CMPICount i = 0; i < from.count; ++i)
        object->append(copyData(inside, from.elements[i]));
    object->next = from.next;
    return object;
}

void EnumerationObject::append(const CMPIData& data)
{
    if (count == capacity) {
        capacity = capacity ? capacity * 2 : 16;
        auto* grown = memory->array<CMPIData>(capacity);
        if (count) std::memcpy(static_cast<void*>(grown), elements, count * sizeof(CMPIData));
        elements = grown;
    }
    elements[count++] = data;
}

namespace {

// Copies the object that a value points to; false for types that no property or argument can hold.
bool copyObject(const Placement& inside, const CMPIValue& from, CMPIType type, CMPIData& data)
{
    const auto used = [&](const ObjectHead& head) {
        if (head.state != ObjectState::Released) return true;
        ++inside.broker->counters().usesAfterRelease;
        return false;
    };
    const auto copy = [&](const auto* abi, auto& target, auto* kind) {
        using Object = std::remove_pointer_t<decltype(kind)>;
        const auto* object = static_cast<const Object*>(abi);
        if (!object || !used(object->head)) {
            data.state = CMPI_nullValue;
            return;
        }
        target = copyOf(inside, *object);
    };
    if (type & CMPI_ARRAY) {
        copy(from.array, data.value.array, static_cast<ArrayObject*>(nullptr));
        return true;
    }
    switch (type) {
    case CMPI_string:
        copy(from.string, data.value.string, static_cast<StringObject*>(nullptr));
        if (data.state == CMPI_goodValue && StringObject::of(data.value.string).isNull) data.state = CMPI_nullValue;
        return true;
    case CMPI_dateTime:
        copy(from.dateTime, data.value.dateTime, static_cast<DateTimeObject*>(nullptr));
        return true;
    case CMPI_ref:
        copy(from.ref, data.value.ref, static_cast<PathObject*>(nullptr));
        return true;
    case CMPI_instance:
        copy(from.inst, data.value.inst, static_cast<InstanceObject*>(nullptr));
        return true;
    default:
        return false;
    }
}

} // namespace

bool copyValue(const Placement& inside, const CMPIValue* value, CMPIType type, CMPIData& data)
{
    data = nullData(type);
    if (!value) return true;
    data.state = CMPI_goodValue;
    if (isScalar(type)) {
        data.value.uint64 = scalarBits(value, type);
        return true;
    }
    if (type == CMPI_chars) {
        // The text itself stands in the place of the value.
        data.value.string = makeString(inside, reinterpret_cast<const char*>(value));
        return true;
    }
    return copyObject(inside, *value, data.type, data);
}

CMPIData copyData(const Placement& inside, const CMPIData& data)
{
    if (data.type == CMPI_string && !isNull(data) && data.value.string) {
        const StringObject& from = StringObject::of(data.value.string);
        if (from.head.state != ObjectState::Released && !from.isNull) {
            CMPIData copy;
            copy.type = CMPI_string;
            copy.state = data.state;
            copy.value.string = makeString(inside, from.text());
            return copy;
        }
    }
    CMPIData copy = data;
    if (!isNull(data) && !isScalar(data.type) && !copyObject(inside, data.value, data.type, copy))
        copy.state = CMPI_nullValue;
    return copy;
}

CMPIData schemaData(const Placement& inside, const SchemaValue& value)
{
    CMPIData data = nullData(value.type);
    if (value.isNull) return data;
    data.state = CMPI_goodValue;
    if (value.isArray()) {
        const auto elementType = static_cast<CMPIType>(value.type & ~CMPI_ARRAY);
        ArrayObject* array = makeArray(inside, static_cast<CMPICount>(value.elements.size()), elementType, false);
        for (std::size_t i = 0; i < value.elements.size(); ++i)
            array->elements[i] = schemaData(inside, value.elements[i]);
        data.value.array = array;
    } else if (value.type == CMPI_string) {
        data.value.string = makeString(inside, value.text);
    } else if (value.type == CMPI_dateTime) {
        data.value.dateTime = makeDateTime(inside, value.text.c_str());
    } else if (isScalar(value.type)) {
        data.value = value.number;
    } else {
        data.state = CMPI_nullValue; // references have no defaults that a broker could use
    }
    return data;
}

} // namespace KDV::Host
