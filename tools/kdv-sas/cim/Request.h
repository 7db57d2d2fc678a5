// Builds CIM-XML operation requests (DSP0201). Any text may be given; it is escaped here.
#pragma once

#include "cim/Instance.h"

#include <string>
#include <utility>
#include <vector>

namespace Cim {

struct Request {
    std::string method;
    std::string object; // of the CIMObject header: a namespace, or for a method the instance in it
    std::string body;
};

std::string escaped(const std::string& text);
std::string instanceNameXml(const Path& path);   // <INSTANCENAME ...>
std::string valueReferenceXml(const Path& path); // <VALUE.REFERENCE> with the local namespace

Request enumerateInstances(const std::string& nameSpace, const std::string& className);
Request enumerateInstanceNames(const std::string& nameSpace, const std::string& className);
Request getInstance(const std::string& nameSpace, const Path& path);
Request deleteInstance(const std::string& nameSpace, const Path& path);
// An extrinsic method without parameters.
Request invokeMethod(const std::string& nameSpace, const Path& path, const std::string& method);

// A property for createInstance: name, CIM type ("string", "uint16", "reference") and its XML value element.
struct NewProperty {
    std::string name;
    std::string type;
    std::string text;
    const Path* reference = nullptr;
};
Request createInstance(const std::string& nameSpace, const std::string& className,
                       const std::vector<NewProperty>& properties);

} // namespace Cim
