// Reads operation requests in CIM-XML (DSP0201, DTD of DSP0203). One reader belongs to one connection and keeps its
// memory from request to request; no lock. A message that is not a valid single operation request is a RequestError.
#pragma once

#include "hostxml/CimRequest.h"
#include "hostxml/XmlTree.h"

#include <string_view>

namespace KDV::Host {

class RequestReader {
public:
    explicit RequestReader(XmlLimits limits = {}) : _tree(limits) {}

    CimRequest read(std::string_view document);

private:
    XmlTree _tree;
};

// Reads an instance that stands as text in a value: an INSTANCE element alone.
RequestInstance readEmbeddedInstance(std::string_view document);

} // namespace KDV::Host
