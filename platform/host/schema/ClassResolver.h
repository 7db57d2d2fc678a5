// Adds a declared class to its namespace: takes over what it inherits, puts overrides in place and checks that they
// fit. One for each loading thread's call; MofError names the declaration at fault.
#pragma once

#include "hostschema/ClassRepository.h"
#include "hostschema/MofDeclarations.h"

namespace KDV::Host {

class ClassResolver {
public:
    ClassResolver(ClassRepository& repository, Namespace& nameSpace) : _repository(repository), _nameSpace(nameSpace) {}

    const ClassInfo& add(ClassDeclaration&& declaration);
    void addQualifier(QualifierInfo qualifier);
    const QualifierInfo* qualifier(std::string_view name) const noexcept;
    void addInstance(InstanceDeclaration instance) { _nameSpace._instances.push_back(std::move(instance)); }
    const Namespace& nameSpace() const noexcept { return _nameSpace; }

private:
    void inherit(ClassInfo& info, const ClassInfo& superclass);
    void addProperty(ClassInfo& info, PropertyDeclaration&& declared, const ClassDeclaration& by);
    void addMethod(ClassInfo& info, MethodDeclaration&& declared);

    ClassRepository& _repository;
    Namespace& _nameSpace;
};

} // namespace KDV::Host
