// The function tables of strings, arrays and enumerations.
#include "broker/Calls.h"

#include <cstring>

namespace KDV::Host {
namespace {

// A string has no pointer to its memory: one that has its own lies at the start of it.
Memory* memoryOf(StringObject& string) noexcept
{
    return reinterpret_cast<Memory*>(reinterpret_cast<char*>(&string) - sizeof(Memory));
}

CMPIStatus releaseString(CMPIString* self)
{
    if (!self || !self->hdl) return failed(CMPI_RC_ERR_INVALID_HANDLE);
    auto& string = *static_cast<StringObject*>(self);
    return releaseObject(string.head, memoryOf(string));
}

const char* getCharPtr(const CMPIString* self, CMPIStatus* status)
{
    return answer<StringObject, const char*>(self, status, nullptr, [](StringObject& string, CMPIStatus&) {
        return string.isNull ? nullptr : string.chars();
    });
}

CMPICount getSize(const CMPIArray* self, CMPIStatus* status)
{
    return answer<ArrayObject, CMPICount>(self, status, 0, [](ArrayObject& array, CMPIStatus&) { return array.size; });
}

CMPIType getSimpleType(const CMPIArray* self, CMPIStatus* status)
{
    return answer<ArrayObject, CMPIType>(self, status, CMPI_null,
                                         [](ArrayObject& array, CMPIStatus&) { return array.elementType; });
}

CMPIData getElementAt(const CMPIArray* self, CMPICount index, CMPIStatus* status)
{
    return answer<ArrayObject>(self, status, missing(CMPI_nullValue), [&](ArrayObject& array, CMPIStatus& outcome) {
        if (index < array.size) return array.elements[index];
        if (array.head.broker->profile() == Profile::Sfcb) return missing(CMPI_badValue);
        outcome = failed(CMPI_RC_ERR_NO_SUCH_PROPERTY);
        return missing(CMPI_nullValue);
    });
}

void growTo(ArrayObject& array, CMPICount size)
{
    if (size > array.capacity) {
        const CMPICount capacity = array.capacity < 8 ? 8 : array.capacity * 2;
        auto* grown = array.memory->array<CMPIData>(capacity);
        if (array.size) std::memcpy(static_cast<void*>(grown), array.elements, array.size * sizeof(CMPIData));
        array.elements = grown;
        array.capacity = capacity;
    }
    while (array.size < size)
        array.elements[array.size++] = nullData(array.elementType);
}

// Sfcb and Pegasus keep the pointer of an element object: it must live until the array was put somewhere. Standard
// copies.
CMPIStatus storeElement(ArrayObject& array, CMPICount index, const CMPIValue* value, CMPIType type)
{
    if (value && isScalar(type)) {
        CMPIData& element = array.elements[index];
        element.state = CMPI_goodValue;
        element.value.uint64 = scalarBits(value, type);
        return ok();
    }
    CMPIData data = nullData(type);
    const bool byPointer = array.head.broker->profile() != Profile::Standard && (type & CMPI_ENC) && type != CMPI_chars;
    if (byPointer && value) {
        data.state = CMPI_goodValue;
        std::memcpy(&data.value, value, sizeof(void*));
        if (!data.value.string) data.state = CMPI_nullValue;
    } else if (!copyValue(Placement::inside(array.head, array.memory), value, type, data)) {
        return failed(CMPI_RC_ERR_TYPE_MISMATCH);
    }
    array.elements[index] = data;
    return ok();
}

bool elementTypeFits(const ArrayObject& array, CMPIType type) noexcept
{
    if (type == array.elementType) return true;
    return array.head.broker->profile() != Profile::Pegasus && type == CMPI_chars && array.elementType == CMPI_string;
}

CMPIStatus setElementAt(const CMPIArray* self, CMPICount index, const CMPIValue* value, CMPIType type)
{
    return change<ArrayObject>(self, [&](ArrayObject& array) {
        const Profile profile = array.head.broker->profile();
        if (index >= array.size) {
            if (!array.growable || index != array.size)
                return failed(profile == Profile::Sfcb ? CMPI_RC_ERR_FAILED : CMPI_RC_ERR_NO_SUCH_PROPERTY);
            growTo(array, index + 1);
        }
        if (type == CMPI_null && (profile != Profile::Pegasus || value)) {
            array.elements[index] = nullData(array.elementType);
            return ok();
        }
        if (!value && profile == Profile::Pegasus) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        if (!elementTypeFits(array, type))
            return failedWith(*array.head.broker,
                              profile == Profile::Sfcb ? CMPI_RC_ERR_FAILED : CMPI_RC_ERR_TYPE_MISMATCH,
                              "array element of another type than the array");
        return storeElement(array, index, value, type);
    });
}

CMPIData getNext(const CMPIEnumeration* self, CMPIStatus* status)
{
    return answer<EnumerationObject>(self, status, missing(CMPI_nullValue),
                                     [](EnumerationObject& enumeration, CMPIStatus& outcome) {
                                         if (enumeration.next < enumeration.count)
                                             return enumeration.elements[enumeration.next++];
                                         if (enumeration.head.broker->profile() == Profile::Sfcb)
                                             return missing(CMPI_badValue);
                                         outcome = failed(CMPI_RC_NO_MORE_ELEMENTS);
                                         return missing(CMPI_nullValue);
                                     });
}

CMPIBoolean hasNext(const CMPIEnumeration* self, CMPIStatus* status)
{
    return answer<EnumerationObject, CMPIBoolean>(self, status, 0, [](EnumerationObject& enumeration, CMPIStatus&) {
        return static_cast<CMPIBoolean>(enumeration.next < enumeration.count);
    });
}

CMPIArray* toArray(const CMPIEnumeration* self, CMPIStatus* status)
{
    return answer<EnumerationObject, CMPIArray*>(
        self, status, nullptr, [](EnumerationObject& enumeration, CMPIStatus& outcome) -> CMPIArray* {
            Broker& broker = *enumeration.head.broker;
            RequestScope* scope = RequestScope::current(broker);
            if (!scope) {
                outcome = failed(CMPI_RC_ERR_FAILED);
                return nullptr;
            }
            const CMPIType type = enumeration.count ? enumeration.elements[0].type : CMPI_instance;
            ArrayObject* array = makeArray(Placement::own(broker, scope, ObjectKind::Array, ownArraySize),
                                           enumeration.count, type, false);
            const Placement inside = Placement::inside(array->head, array->memory);
            for (CMPICount i = 0; i < enumeration.count; ++i)
                array->elements[i] = copyData(inside, enumeration.elements[i]);
            return array;
        });
}

} // namespace

CMPIStringFT stringTable(Profile profile)
{
    return {objectTableVersion(profile), releaseString, cloneObject<StringObject, CMPIString>, getCharPtr, nullptr};
}

CMPIArrayFT arrayTable(Profile profile)
{
    return {objectTableVersion(profile),
            release<ArrayObject, CMPIArray>,
            cloneObject<ArrayObject, CMPIArray>,
            getSize,
            getSimpleType,
            getElementAt,
            setElementAt};
}

CMPIEnumerationFT enumerationTable(Profile profile)
{
    return {objectTableVersion(profile),
            release<EnumerationObject, CMPIEnumeration>,
            cloneObject<EnumerationObject, CMPIEnumeration>,
            getNext,
            hasNext,
            toArray};
}

} // namespace KDV::Host
