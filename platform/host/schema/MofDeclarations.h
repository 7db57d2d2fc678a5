// Declarations as a MOF text writes them, before inheritance. Made by MofParser, used up by ClassResolver.
#pragma once

#include "hostschema/ClassInfo.h"

#include <string>
#include <vector>

namespace KDV::Host {

struct PropertyDeclaration {
    PropertyInfo info;
    bool hasDefault = false; // a written NULL counts
    unsigned line = 0;
};

struct MethodDeclaration {
    MethodInfo info;
    unsigned line = 0;
};

struct ClassDeclaration {
    std::string file;
    unsigned line = 0;
    std::string name;
    std::string superclass; // empty: none
    QualifierList qualifiers;
    std::vector<PropertyDeclaration> properties;
    std::vector<MethodDeclaration> methods;
};

} // namespace KDV::Host
