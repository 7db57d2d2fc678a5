// An array of one element type. Made by makeCmpiArray with a fixed length; an element that is never set stays null.
// Owned: released, with the text objects set into it, when it is destroyed, so keep it until addProperty has taken it.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/Export.h"

#include <cstdint>
#include <string>
#include <vector>

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
    void setElementAt(CMPICount index, std::uint64_t number);
    void setElementAt(CMPICount index, const char* text);
    void setElementAt(CMPICount index, const std::string& text);

    CMPICount size() const noexcept { return _count; }
    CMPIType elementType() const noexcept { return _elementType; }
    CMPIArray* raw() const noexcept { return _raw; }

private:
    const CMPIBroker* _broker;
    CMPIArray* _raw;
    CMPICount _count;
    CMPIType _elementType;
    std::vector<CMPIString*> _texts; // arrays keep text elements by pointer in some servers
};

// elementType is a CMPIType without the array flag. Throws CmpiStatus when the broker refuses.
KDV_CMPICPP_API CmpiArray makeCmpiArray(const CMPIBroker* broker, CMPICount count, CMPIType elementType);

} // namespace CmpiCpp
