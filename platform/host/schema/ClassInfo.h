// A class as declared and resolved: everything it inherits stands in it too, overrides in the place of what they
// override. Made by a ClassRepository, which owns it for its own life; addresses never change. All of it is constant
// after loading, except the order of use that threads learn (relaxed atomics), so no lock is needed.
#pragma once

#include "hostschema/SchemaName.h"
#include "hostschema/SchemaValue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KDV::Host {

class ClassInfo;
class Namespace;

struct QualifierInfo {
    std::string name;
    SchemaValue value;
    bool overridable = true;
    bool toSubclass = true;
    bool translatable = false;
    bool propagated = false; // inherited, not written in the class itself
};

// Qualifiers in the order written, inherited ones after them.
class QualifierList {
public:
    const QualifierInfo* find(std::string_view name) const noexcept;
    bool isTrue(std::string_view name) const noexcept; // present and not FALSE
    void add(QualifierInfo qualifier) { _all.push_back(std::move(qualifier)); }
    auto begin() const noexcept { return _all.begin(); }
    auto end() const noexcept { return _all.end(); }
    std::size_t size() const noexcept { return _all.size(); }

private:
    std::vector<QualifierInfo> _all;
};

// What every setting and every reply reads stands first, in one cache line.
struct PropertyInfo {
    std::string name;
    CMPIType type = CMPI_null; // with CMPI_ARRAY for arrays; CMPI_instance for embedded instances and objects
    bool key = false;
    bool propagated = false;           // not (re)declared by the class that lists it
    int index = -1;                    // place in ClassInfo::properties(); -1: no class declares it
    std::uint32_t arraySize = 0;       // 0: any length
    const ClassInfo* origin = nullptr; // the topmost class that declares it
    std::string referenceClass;        // of references; else empty
    SchemaValue defaultValue;          // isNull: no default, or a default overridden with NULL
    QualifierList qualifiers;
    std::string file; // where it is declared, for messages
    unsigned line = 0;

    bool isArray() const noexcept { return (type & CMPI_ARRAY) != 0; }
    bool isReference() const noexcept { return (type & ~CMPI_ARRAY) == CMPI_ref; }
    CMPIType elementType() const noexcept { return static_cast<CMPIType>(type & ~CMPI_ARRAY); }
};

struct ParameterInfo {
    std::string name;
    CMPIType type = CMPI_null;
    std::string referenceClass;
    std::uint32_t arraySize = 0;
    bool in = true;
    bool out = false;
    QualifierList qualifiers;
};

struct MethodInfo {
    std::string name;
    CMPIType returnType = CMPI_null;
    std::vector<ParameterInfo> parameters;
    bool propagated = false;
    const ClassInfo* origin = nullptr;
    QualifierList qualifiers;
};

class ClassInfo {
public:
    ClassInfo(const ClassInfo&) = delete;
    ClassInfo& operator=(const ClassInfo&) = delete;

    const std::string& name() const noexcept { return _name; }
    const ClassInfo* superclass() const noexcept { return _ancestors.size() > 1 ? *(_ancestors.end() - 2) : nullptr; }
    const Namespace& nameSpace() const noexcept { return *_nameSpace; }
    unsigned number() const noexcept { return _number; } // dense and unique in its repository: an index for side tables

    // Inherited first, each in the order declared.
    const std::vector<PropertyInfo>& properties() const noexcept { return _properties; }
    const std::vector<MethodInfo>& methods() const noexcept { return _methods; }
    const std::vector<int>& keys() const noexcept { return _keys; } // indexes of the key properties
    const QualifierList& qualifiers() const noexcept { return _qualifiers; }
    const std::vector<const ClassInfo*>& subclasses() const noexcept { return _subclasses; } // direct ones, as declared

    // Index of the property, -1 if there is none. Constant time, no allocation.
    int property(std::string_view name) const noexcept;
    // The same for a property set after the one with index `previous` (-1: the first one set): what came after it last
    // time is tried first.
    int propertyAfter(int previous, const char* name) const noexcept;
    const PropertyInfo* findProperty(std::string_view name) const noexcept;
    const MethodInfo* findMethod(std::string_view name) const noexcept;

    // True for the class itself and for every class above it. Constant time.
    bool isA(const ClassInfo& base) const noexcept
    {
        const std::size_t depth = base._ancestors.size();
        return depth <= _ancestors.size() && _ancestors[depth - 1] == &base;
    }
    bool isAbstract() const noexcept { return _abstract; }
    bool isAssociation() const noexcept { return _association; }
    bool isIndication() const noexcept { return _indication; }

private:
    friend class ClassResolver;
    ClassInfo() = default;
    void indexProperties();

    std::string _name;
    const Namespace* _nameSpace = nullptr;
    unsigned _number = 0;
    bool _abstract = false;
    bool _association = false;
    bool _indication = false;
    std::vector<const ClassInfo*> _ancestors; // from the root to the class itself
    std::vector<const ClassInfo*> _subclasses;
    std::vector<PropertyInfo> _properties;
    std::vector<MethodInfo> _methods;
    std::vector<int> _keys;
    QualifierList _qualifiers;
    std::vector<std::int16_t> _table; // open addressing, -1 is free; the size is a power of two
    std::vector<std::string_view> _names;
    // What followed each property the last two times, at place previous + 1: the later one in the low half. Two, since
    // the keys of a path are often set first and once more in the order of the class's rows.
    std::unique_ptr<std::atomic<std::uint32_t>[]> _next;
};

inline bool isA(const ClassInfo* derived, const ClassInfo* base) noexcept
{
    return derived && base && derived->isA(*base);
}

} // namespace KDV::Host
