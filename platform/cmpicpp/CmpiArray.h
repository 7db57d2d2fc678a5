// An array of one element type. Made by makeCmpiArray with a fixed length; an element that is never set stays null.
// Owned: released, with the text objects set into it, when it is destroyed, so keep it until addProperty has taken it.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/Export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiArray {
public:
    CmpiArray(const CMPIBroker* broker, CMPIArray* raw, CMPICount count, CMPIType elementType) noexcept;
    CmpiArray(CmpiArray&& other) noexcept;
    CmpiArray(const CmpiArray&) = delete;
    CmpiArray& operator=(const CmpiArray&) = delete;
    CmpiArray& operator=(CmpiArray&&) = delete;
    ~CmpiArray();

    // An index outside the array changes nothing and is no error. A number is stored in the array's own element type.
    // A text for an array of numbers, or the other way round, is a CmpiStatus (type mismatch).
    void setElementAt(CMPICount index, std::uint64_t number);
    void setElementAt(CMPICount index, const char* text);
    void setElementAt(CMPICount index, const std::string& text);

    // Numbers of any type, the literal 0 included.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number> || std::is_enum_v<Number>>>
    void setElementAt(CMPICount index, Number number)
    {
        setElementAt(index, static_cast<std::uint64_t>(number));
    }

    CMPICount size() const noexcept { return _count; }
    CMPIType elementType() const noexcept { return _elementType; }
    CMPIArray* raw() const noexcept { return _raw; }

private:
    CMPIString** texts(); // by index; null where no text was set

    const CMPIBroker* _broker;
    CMPIArray* _raw;
    CMPICount _count;
    CMPIType _elementType;
    // Some servers keep text elements by pointer, so they live as long as the array. Most arrays have one or two.
    static constexpr CMPICount few = 4;
    CMPIString* _fewTexts[few];
    std::unique_ptr<CMPIString*[]> _manyTexts;
};

// elementType is a CMPIType without the array flag. Throws CmpiStatus when the broker refuses.
KDV_CMPICPP_API CmpiArray makeCmpiArray(const CMPIBroker* broker, CMPICount count, CMPIType elementType);

} // namespace CmpiCpp
