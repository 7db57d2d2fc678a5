// The rows of a published instance: each call adds one property, in the order of the calls, with the CIM type that the
// function is named after. Short-lived: made at the head of getInstance, which returns what instance() gives up. A row
// that the property list in force leaves out costs nothing. Failures of the broker pass through as CmpiStatus.
#pragma once

#include "cmpicpp/CmpiArray.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstance.h"
#include "instances/FieldText.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace KDV {

class PropertyRows {
public:
    using Name = const char*;

    // An instance on the object's path, asked for through the virtual getPath; its keys are set as properties.
    explicit PropertyRows(const CmpiManagedInstance& object);

    // Goes on with an instance that has rows already.
    explicit PropertyRows(CmpiCpp::CmpiInstance&& begun) noexcept : _instance(std::move(begun)) {}

    void string(Name name, const FieldText& text) { _instance.addProperty(name, text.c_str()); }
    void boolean(Name name, bool value) { _instance.addProperty(name, value); }
    void uint8(Name name, std::uint8_t value) { _instance.addProperty(name, value); }
    void uint16(Name name, std::uint16_t value) { _instance.addProperty(name, value); }
    void uint32(Name name, std::uint32_t value) { _instance.addProperty(name, value); }
    void uint64(Name name, std::uint64_t value) { _instance.addProperty(name, value); }
    void sint8(Name name, std::int8_t value) { _instance.addProperty(name, value); }
    void reference(Name name, const CmpiCpp::CmpiObjectPath& path) { _instance.addProperty(name, path); }

    void uint16Array(Name name, std::initializer_list<std::uint16_t> values);
    void stringArray(Name name, std::initializer_list<std::string_view> texts);

    // An array that its class fills itself, because it does so in an unusual way.
    void array(Name name, const CmpiCpp::CmpiArray& values) { _instance.addProperty(name, values); }

    CmpiCpp::CmpiInstance instance() { return std::move(_instance); }

private:
    CmpiCpp::CmpiInstance _instance;
};

// An array whose elements are null until they are set.
CmpiCpp::CmpiArray emptyUint16Array(std::uint32_t count);

} // namespace KDV
