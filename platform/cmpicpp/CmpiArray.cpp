#include "cmpicpp/CmpiArray.h"

#include "cmpicpp/BrokerObject.h"

#include <algorithm>
#include <utility>

namespace CmpiCpp {

namespace {

// Numbers come as 64 bits and leave in the element's own member, which for smaller types need not be the low bytes.
bool storeNumber(CMPIValue& value, CMPIType type, std::uint64_t number) noexcept
{
    switch (type) {
    case CMPI_boolean:
        value.boolean = number != 0;
        return true;
    case CMPI_char16:
        value.char16 = static_cast<CMPIChar16>(number);
        return true;
    case CMPI_uint8:
        value.uint8 = static_cast<CMPIUint8>(number);
        return true;
    case CMPI_uint16:
        value.uint16 = static_cast<CMPIUint16>(number);
        return true;
    case CMPI_uint32:
        value.uint32 = static_cast<CMPIUint32>(number);
        return true;
    case CMPI_uint64:
        value.uint64 = number;
        return true;
    case CMPI_sint8:
        value.sint8 = static_cast<CMPISint8>(number);
        return true;
    case CMPI_sint16:
        value.sint16 = static_cast<CMPISint16>(number);
        return true;
    case CMPI_sint32:
        value.sint32 = static_cast<CMPISint32>(number);
        return true;
    case CMPI_sint64:
        value.sint64 = static_cast<CMPISint64>(number);
        return true;
    case CMPI_real32:
        value.real32 = static_cast<CMPIReal32>(number);
        return true;
    case CMPI_real64:
        value.real64 = static_cast<CMPIReal64>(number);
        return true;
    default:
        return false;
    }
}

} // namespace

CmpiArray::CmpiArray(const CMPIBroker* broker, CMPIArray* raw, CMPICount count, CMPIType elementType) noexcept
    : _broker(broker), _raw(raw), _count(count), _elementType(elementType), _fewTexts{}
{
}

CmpiArray::CmpiArray(CmpiArray&& other) noexcept
    : _broker(other._broker), _raw(std::exchange(other._raw, nullptr)), _count(std::exchange(other._count, 0)),
      _elementType(other._elementType), _fewTexts{}, _manyTexts(std::move(other._manyTexts))
{
    std::swap(_fewTexts, other._fewTexts);
}

CmpiArray::~CmpiArray()
{
    releaseObject(_raw); // first: some brokers look at the elements while they release an array
    CMPIString** all = _manyTexts ? _manyTexts.get() : _fewTexts;
    const CMPICount kept = _manyTexts ? _count : few;
    std::for_each(all, all + kept, [](CMPIString* text) { releaseObject(text); });
}

CMPIString** CmpiArray::texts()
{
    if (_count <= few) return _fewTexts;
    if (!_manyTexts) _manyTexts = std::make_unique<CMPIString*[]>(_count);
    return _manyTexts.get();
}

void CmpiArray::setElementAt(CMPICount index, std::uint64_t number)
{
    if (index >= _count) return;
    CMPIValue value = blankValue();
    if (!storeNumber(value, _elementType, number))
        throw CmpiStatus(CMPI_RC_ERR_TYPE_MISMATCH, "a number does not fit the array's element type");
    throwIfFailed(_raw->ft->setElementAt(_raw, index, &value, _elementType), "setElementAt");
}

void CmpiArray::setElementAt(CMPICount index, const char* text)
{
    if (index >= _count) return;
    if (_elementType != CMPI_string)
        throw CmpiStatus(CMPI_RC_ERR_TYPE_MISMATCH, "a text does not fit the array's element type");
    CMPIString*& kept = texts()[index];
    Owned<CMPIString> string = makeString(_broker, text);
    CMPIValue value = blankValue();
    value.string = string.get();
    throwIfFailed(_raw->ft->setElementAt(_raw, index, &value, CMPI_string), "setElementAt");
    releaseObject(std::exchange(kept, string.detach()));
}

void CmpiArray::setElementAt(CMPICount index, const std::string& text) { setElementAt(index, text.c_str()); }

CmpiArray makeCmpiArray(const CMPIBroker* broker, CMPICount count, CMPIType elementType)
{
    // Texts always go in as string objects, and some brokers take only the exact type that the array was made with.
    if (elementType == CMPI_chars) elementType = CMPI_string;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIArray* raw = factories(broker).newArray(broker, count, elementType, &status);
    return CmpiArray(broker, checkedObject(raw, status, "newArray"), count, elementType);
}

} // namespace CmpiCpp
