// Writes class declarations as CIM-XML. Plain functions over constant data; any thread with its own buffer.
#pragma once

#include "hostschema/ClassInfo.h"
#include "hostxml/ReplyBuffer.h"

#include <string>
#include <vector>

namespace KDV::Host {

struct ClassForm {
    bool localOnly = true;
    bool qualifiers = true;
    bool classOrigin = false;
    const std::vector<std::string>* properties = nullptr; // null: all
};

void appendClass(ReplyBuffer& out, const ClassInfo& classInfo, const ClassForm& form);
void appendClassName(ReplyBuffer& out, std::string_view name);

} // namespace KDV::Host
