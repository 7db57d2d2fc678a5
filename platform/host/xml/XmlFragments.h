// The parts of a class's XML that are the same in every instance, made once: "<PROPERTY NAME=... TYPE=...><VALUE>" and
// what ends it, so that writing an instance is copying them around its values. Made on first use by whichever thread
// comes first, then constant; look-ups take no lock. Lives as long as its repository's classes are served.
#pragma once

#include "hostschema/ClassRepository.h"

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

// The word of DSP0201 for an element type ("uint16"); texts for what is not written as a number or text is "string".
std::string_view xmlTypeName(CMPIType type) noexcept;

struct PropertyFragments {
    CMPIType type;     // as declared; values of any other type take the slow way
    std::string open;  // up to the value
    std::string close; // from the value to the end
    std::string null;  // the whole element for NULL
};

struct KeyFragments {
    std::string_view name; // as declared
    std::string open;      // up to the text of a key that is no reference
    std::string close;
};

struct ClassFragments {
    std::string instanceOpen;                  // <INSTANCE CLASSNAME="...">
    std::string nameOpen;                      // <INSTANCENAME CLASSNAME="...">
    std::vector<PropertyFragments> properties; // by the class's property index
    std::vector<KeyFragments> keys;            // by the class's property index; empty for other properties
};

// What opens a property of any type: element, name, origin (empty: left out) and type.
std::string propertyOpen(std::string_view name, std::string_view origin, CMPIType type);
// The null form of the same.
std::string propertyNull(std::string_view name, std::string_view origin, CMPIType type);
std::string_view propertyClose(CMPIType type) noexcept;

class FragmentCache {
public:
    explicit FragmentCache(const ClassRepository& repository);
    ~FragmentCache();
    FragmentCache(const FragmentCache&) = delete;
    FragmentCache& operator=(const FragmentCache&) = delete;

    const ClassFragments& of(const ClassInfo& classInfo, bool classOrigin)
    {
        auto& slot = _slots[classInfo.number() * 2 + (classOrigin ? 1 : 0)];
        if (const ClassFragments* made = slot.load(std::memory_order_acquire)) return *made;
        return make(classInfo, classOrigin, slot);
    }

private:
    using Slot = std::atomic<const ClassFragments*>;
    static const ClassFragments& make(const ClassInfo& classInfo, bool classOrigin, Slot& slot);

    std::vector<Slot> _slots; // two for each class: without and with CLASSORIGIN
};

} // namespace KDV::Host
