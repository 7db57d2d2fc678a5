// Writes broker objects as CIM-XML: instances, their paths and single values, in each of the forms that DSP0201 gives
// them. Belongs to one request and one thread; reads the objects directly, so it allocates nothing but the buffer's
// space, save for embedded instances and for properties of types that the class does not declare.
#pragma once

#include "broker/InstanceObject.h"
#include "hostxml/ReplyBuffer.h"
#include "hostxml/XmlFragments.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

// The properties that a client asked for. Looked up by name once per class, then by index.
class PropertySelection {
public:
    PropertySelection() = default; // all
    explicit PropertySelection(std::vector<std::string> names) : _all(false), _names(std::move(names)) {}

    bool all() const noexcept { return _all; }
    const std::vector<std::string>& names() const noexcept { return _names; }
    bool has(const ClassInfo* classInfo, const PropertyInfo& property);

private:
    bool _all = true;
    std::vector<std::string> _names;
    const ClassInfo* _class = nullptr;
    std::vector<bool> _byIndex; // of _class
};

class InstanceWriter {
public:
    // `host` and `nameSpace` stand where a path does not name its own.
    InstanceWriter(ReplyBuffer& out, FragmentCache& fragments, std::string_view host, std::string_view nameSpace);

    void setClassOrigin(bool on) noexcept { _classOrigin = on; }
    void setSelection(PropertySelection selection) { _selection = std::move(selection); }
    ReplyBuffer& out() noexcept { return _out; }

    void instance(const InstanceObject& instance);         // INSTANCE
    void namedInstance(const InstanceObject& instance);    // VALUE.NAMEDINSTANCE
    void objectWithPath(const InstanceObject& instance);   // VALUE.OBJECTWITHPATH
    void instanceWithPath(const InstanceObject& instance); // VALUE.INSTANCEWITHPATH

    void instanceName(const PathObject& path); // INSTANCENAME
    void instancePath(const PathObject& path); // INSTANCEPATH
    void objectPath(const PathObject& path);   // OBJECTPATH
    // INSTANCEPATH, LOCALINSTANCEPATH or INSTANCENAME, whatever the path's own host and namespace allow; CLASSPATH and
    // its kin for paths without keys.
    void referencedPath(const PathObject& path);

    // The text of one value that is not NULL, arrays excluded.
    void scalar(CMPIType type, const CMPIValue& value);
    // VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for NULL.
    void value(const CMPIData& data);

private:
    void properties(const InstanceObject& instance);
    void property(const InstanceObject& instance, const PropertyEntry& entry, const ClassFragments* fragments);
    void propertyBody(CMPIType type, const CMPIValue& value);
    void array(const ArrayObject& array);
    void nameOf(const InstanceObject& instance);
    void key(std::string_view name, const PropertyInfo* property, const CMPIData& data);
    void pathOf(const InstanceObject& instance);
    void nameSpacePath(std::string_view host, std::string_view nameSpace);
    void localNameSpacePath(std::string_view nameSpace);

    ReplyBuffer& _out;
    FragmentCache& _fragments;
    std::string _host;
    std::string _nameSpace;
    PropertySelection _selection;
    bool _classOrigin = false;
    // The class and the namespace path written last: mostly those of the next object too.
    const ClassInfo* _lastClass = nullptr;
    const ClassFragments* _lastFragments = nullptr;
    std::string _lastHost, _lastNameSpace, _lastNameSpacePath;

    const ClassFragments* fragmentsOf(const ClassInfo* classInfo);
};

} // namespace KDV::Host
