// How this library holds the objects of a broker: Owned releases what we made (or cloned) and nobody else needs; texts
// of string objects are read without copying them and end with their object. Everything else that a broker hands over
// (names, elements, values got out of other objects) is lent and never released.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiStatus.h"

#include <cstring>
#include <utility>

namespace CmpiCpp {

template <class Abi>
void releaseObject(Abi* raw) noexcept
{
    // Some tables leave the slot empty for objects that release themselves.
    if (raw && raw->ft && raw->ft->release) raw->ft->release(raw);
}

template <class Abi>
class Owned {
public:
    explicit Owned(Abi* raw = nullptr) noexcept : _raw(raw) {}
    Owned(Owned&& other) noexcept : _raw(std::exchange(other._raw, nullptr)) {}
    Owned& operator=(Owned other) noexcept
    {
        std::swap(_raw, other._raw);
        return *this;
    }
    ~Owned() { releaseObject(_raw); }

    Abi* get() const noexcept { return _raw; }
    Abi* detach() noexcept { return std::exchange(_raw, nullptr); }

private:
    Abi* _raw;
};

// The object that a broker call gave; a call that gave neither an object nor an error failed too.
template <class Abi>
Abi* checkedObject(Abi* raw, const CMPIStatus& status, const char* call)
{
    throwIfFailed(status, call);
    if (!raw) throwStatus(CMPIStatus{CMPI_RC_ERR_FAILED, nullptr}, call);
    return raw;
}

inline const CMPIBrokerEncFT& factories(const CMPIBroker* broker)
{
    if (!broker || !broker->eft) throw CmpiStatus(CMPI_RC_ERR_INVALID_HANDLE, "no broker");
    return *broker->eft;
}

inline Owned<CMPIString> makeString(const CMPIBroker* broker, const char* text)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIString* raw = factories(broker).newString(broker, text ? text : "", &status);
    return Owned<CMPIString>(checkedObject(raw, status, "newString"));
}

// The text of a string object; null object and null text are the empty text.
inline const char* textOf(const CMPIString* string)
{
    if (!string) return "";
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const char* text = string->ft->getCharPtr(string, &status);
    throwIfFailed(status, "getCharPtr");
    return text ? text : "";
}

// The same where nothing may be thrown: a failure is the empty text.
inline const char* textOrEmpty(const CMPIString* string) noexcept
{
    if (!string || !string->ft || !string->ft->getCharPtr) return "";
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const char* text = string->ft->getCharPtr(string, &status);
    return status.rc == CMPI_RC_OK && text ? text : "";
}

// A value with all its bytes set: some brokers copy the whole union whatever the type.
inline CMPIValue blankValue() noexcept
{
    CMPIValue value;
    std::memset(&value, 0, sizeof value);
    return value;
}

// With CMPI_chars brokers take the text pointer itself in place of the value pointer.
inline const CMPIValue* charsValue(const char* text) noexcept
{
    return static_cast<const CMPIValue*>(static_cast<const void*>(text));
}

// A value read from a broker as the argument of a call: with CMPI_chars the text itself stands in the value's place.
inline const CMPIValue* asArgument(const CMPIData& data) noexcept
{
    return data.type == CMPI_chars ? charsValue(data.value.chars) : &data.value;
}

} // namespace CmpiCpp
