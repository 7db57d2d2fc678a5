// Arguments and contexts: their lists and their function tables.
#include "broker/NamedValues.h"

#include "broker/Calls.h"

#include <cstring>

namespace KDV::Host {

const NamedValue* NamedValueList::find(std::string_view name) const noexcept
{
    for (const NamedValue& value : *this)
        if (sameName(value.name->text(), name)) return &value;
    return nullptr;
}

void setNamed(NamedValueList& list, const Placement& inside, std::string_view name, const CMPIData& data)
{
    if (const NamedValue* old = list.find(name)) {
        const_cast<NamedValue*>(old)->data = data;
        return;
    }
    if (list.count == list.capacity) {
        const std::uint32_t capacity = list.capacity ? list.capacity * 2 : 8;
        auto* grown = inside.memory->array<NamedValue>(capacity);
        if (list.count) std::memcpy(static_cast<void*>(grown), list.entries, list.count * sizeof(NamedValue));
        list.entries = grown;
        list.capacity = capacity;
    }
    list.entries[list.count++] = {makeString(inside, name), data};
}

namespace {

template <class Object>
void addNamed(Object& object, std::string_view name, const CMPIValue* value, CMPIType type)
{
    const Placement inside = Placement::inside(object.head, object.memory);
    CMPIData data;
    copyValue(inside, value, type, data);
    setNamed(object.values, inside, name, data);
}

template <class Object>
void addNamedText(Object& object, std::string_view name, std::string_view text)
{
    const Placement inside = Placement::inside(object.head, object.memory);
    CMPIData data{CMPI_string, CMPI_goodValue, {}};
    data.value.string = makeString(inside, text);
    setNamed(object.values, inside, name, data);
}

// What Sfcb calls a missing argument; a missing context entry is 12 everywhere.
CMPIrc missingCode(const ArgsObject& args) noexcept
{
    return args.head.broker->profile() == Profile::Sfcb ? CMPI_RC_ERR_NOT_FOUND : CMPI_RC_ERR_NO_SUCH_PROPERTY;
}
CMPIrc missingCode(const ContextObject&) noexcept { return CMPI_RC_ERR_NO_SUCH_PROPERTY; }

template <class Object, class Abi>
CMPIStatus addEntry(const Abi* self, const char* name, const CMPIValue* value, CMPIType type)
{
    return change<Object>(self, [&](Object& object) {
        if (!name) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        const bool context = object.head.kind == ObjectKind::Context;
        if (context && !value && object.head.broker->profile() == Profile::Pegasus)
            return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        const Placement inside = Placement::inside(object.head, object.memory);
        CMPIData data;
        if (!copyValue(inside, value, type, data)) return failed(CMPI_RC_ERR_INVALID_DATA_TYPE);
        setNamed(object.values, inside, name, data);
        return ok();
    });
}

template <class Object, class Abi>
CMPIData getEntry(const Abi* self, const char* name, CMPIStatus* status)
{
    return answer<Object>(self, status, missing(CMPI_nullValue), [&](Object& object, CMPIStatus& outcome) {
        const NamedValue* found = name ? object.values.find(name) : nullptr;
        if (found) return found->data;
        outcome = failed(missingCode(object));
        return missing(CMPI_nullValue);
    });
}

template <class Object, class Abi>
CMPIData getEntryAt(const Abi* self, CMPICount index, CMPIString** name, CMPIStatus* status)
{
    return answer<Object>(self, status, missing(CMPI_nullValue), [&](Object& object, CMPIStatus& outcome) {
        if (index < object.values.count) {
            if (name) *name = object.values.entries[index].name;
            return object.values.entries[index].data;
        }
        outcome = failed(missingCode(object));
        return missing(CMPI_nullValue);
    });
}

template <class Object, class Abi>
CMPICount getCount(const Abi* self, CMPIStatus* status)
{
    return answer<Object, CMPICount>(self, status, 0, [](Object& object, CMPIStatus&) { return object.values.count; });
}

CMPIContext* noContextClone(const CMPIContext*, CMPIStatus* status)
{
    tell(status, failed(CMPI_RC_ERR_NOT_SUPPORTED));
    return nullptr;
}

} // namespace

void ArgsObject::add(std::string_view name, const CMPIValue* value, CMPIType type)
{
    addNamed(*this, name, value, type);
}
void ArgsObject::addText(std::string_view name, std::string_view text) { addNamedText(*this, name, text); }
void ContextObject::add(std::string_view name, const CMPIValue* value, CMPIType type)
{
    addNamed(*this, name, value, type);
}
void ContextObject::addText(std::string_view name, std::string_view text) { addNamedText(*this, name, text); }
void ContextObject::addNumber(std::string_view name, CMPIUint32 number)
{
    CMPIValue value{};
    value.uint32 = number;
    add(name, &value, CMPI_uint32);
}

CMPIArgsFT argsTable(Profile profile)
{
    return {objectTableVersion(profile),    release<ArgsObject, CMPIArgs>,  cloneObject<ArgsObject, CMPIArgs>,
            addEntry<ArgsObject, CMPIArgs>, getEntry<ArgsObject, CMPIArgs>, getEntryAt<ArgsObject, CMPIArgs>,
            getCount<ArgsObject, CMPIArgs>};
}

CMPIContextFT contextTable(Profile profile)
{
    CMPIContextFT table{objectTableVersion(profile),
                        release<ContextObject, CMPIContext>,
                        cloneObject<ContextObject, CMPIContext>,
                        getEntry<ContextObject, CMPIContext>,
                        getEntryAt<ContextObject, CMPIContext>,
                        getCount<ContextObject, CMPIContext>,
                        addEntry<ContextObject, CMPIContext>};
    if (profile == Profile::Sfcb) table.clone = noContextClone;
    if (profile == Profile::Pegasus) table.clone = nullptr;
    return table;
}

} // namespace KDV::Host
