#include "hostschema/ClassResolver.h"

#include <algorithm>

namespace KDV::Host {
namespace {

constexpr std::size_t mostProperties = 4096;

// Qualifiers of what is overridden go on below, unless they are restricted or written again.
void inheritQualifiers(QualifierList& own, const QualifierList& inherited)
{
    for (const QualifierInfo& qualifier : inherited) {
        if (!qualifier.toSubclass || own.find(qualifier.name)) continue;
        QualifierInfo copy = qualifier;
        copy.propagated = true;
        own.add(std::move(copy));
    }
}

template <class Feature>
void markInherited(Feature& feature)
{
    QualifierList kept;
    inheritQualifiers(kept, feature.qualifiers);
    feature.qualifiers = std::move(kept);
    feature.propagated = true;
}

bool isEmbedded(const QualifierList& qualifiers)
{
    return qualifiers.find("EmbeddedInstance") || qualifiers.isTrue("EmbeddedObject");
}

} // namespace

const QualifierInfo* ClassResolver::qualifier(std::string_view name) const noexcept
{
    for (const QualifierInfo& declared : _nameSpace._qualifiers)
        if (sameName(declared.name, name)) return &declared;
    return nullptr;
}

void ClassResolver::addQualifier(QualifierInfo qualifier)
{
    for (QualifierInfo& declared : _nameSpace._qualifiers)
        if (sameName(declared.name, qualifier.name)) {
            declared = std::move(qualifier);
            return;
        }
    _nameSpace._qualifiers.push_back(std::move(qualifier));
}

void ClassResolver::inherit(ClassInfo& info, const ClassInfo& superclass)
{
    info._ancestors = superclass._ancestors;
    info._properties = superclass._properties;
    info._methods = superclass._methods;
    for (PropertyInfo& property : info._properties)
        markInherited(property);
    for (MethodInfo& method : info._methods)
        markInherited(method);
    inheritQualifiers(info._qualifiers, superclass._qualifiers);
}

void ClassResolver::addProperty(ClassInfo& info, PropertyDeclaration&& declared, const ClassDeclaration& by)
{
    const auto fail = [&](const std::string& what) { throw MofError(by.file, declared.line, what); };
    PropertyInfo& property = declared.info;
    if (isEmbedded(property.qualifiers) && property.elementType() == CMPI_string)
        property.type = static_cast<CMPIType>(CMPI_instance | (property.type & CMPI_ARRAY));
    const auto same = [&](const PropertyInfo& other) { return sameName(other.name, property.name); };
    const auto old = std::find_if(info._properties.begin(), info._properties.end(), same);
    property.key = property.qualifiers.isTrue("Key");
    // Instances of a class and of its subclasses are told apart by the same keys.
    const bool isKeyAbove = old != info._properties.end() && old->key;
    if (property.key && !isKeyAbove && info.superclass() && !info.superclass()->keys().empty())
        fail("the key " + property.name + " of " + info._name + " is added to those that " + info.superclass()->name() +
             " has already");
    property.origin = &info;
    property.file = by.file;
    property.line = declared.line;
    if (old == info._properties.end()) {
        if (info._properties.size() >= mostProperties)
            fail("expected at most " + std::to_string(mostProperties) + " properties in a class");
        info._properties.push_back(std::move(property));
        return;
    }
    if (!old->propagated) fail("the property " + property.name + " is declared twice in " + info._name);
    if (old->elementType() == CMPI_instance && property.elementType() == CMPI_string)
        property.type = static_cast<CMPIType>(CMPI_instance | (property.type & CMPI_ARRAY));
    if (old->type != property.type)
        fail("the property " + property.name + " of " + info._name + " has another type than in " +
             old->origin->name());
    inheritQualifiers(property.qualifiers, old->qualifiers);
    property.key = property.key || old->key;
    property.origin = old->origin;
    if (!declared.hasDefault) property.defaultValue = old->defaultValue;
    *old = std::move(property);
}

void ClassResolver::addMethod(ClassInfo& info, MethodDeclaration&& declared)
{
    MethodInfo& method = declared.info;
    method.origin = &info;
    for (ParameterInfo& parameter : method.parameters) {
        parameter.in = !parameter.qualifiers.find("In") || parameter.qualifiers.isTrue("In");
        parameter.out = parameter.qualifiers.isTrue("Out");
    }
    for (MethodInfo& old : info._methods)
        if (sameName(old.name, method.name)) {
            inheritQualifiers(method.qualifiers, old.qualifiers);
            method.origin = old.origin;
            old = std::move(method);
            return;
        }
    info._methods.push_back(std::move(method));
}

const ClassInfo& ClassResolver::add(ClassDeclaration&& declaration)
{
    const auto fail = [&](const std::string& what) { throw MofError(declaration.file, declaration.line, what); };
    if (_nameSpace.find(declaration.name))
        fail("the class " + declaration.name + " is declared a second time in " + _nameSpace.name());
    ClassInfo* superclass = nullptr;
    if (!declaration.superclass.empty()) {
        const auto found = _nameSpace._byName.find(declaration.superclass);
        if (found == _nameSpace._byName.end())
            fail("expected a class declared before as superclass of " + declaration.name + ", found \"" +
                 declaration.superclass + "\"");
        superclass = found->second;
        if (superclass->qualifiers().isTrue("Terminal"))
            fail("the class " + superclass->name() + " is terminal and can have no subclass");
    }
    std::unique_ptr<ClassInfo> info(new ClassInfo);
    info->_name = declaration.name;
    info->_nameSpace = &_nameSpace;
    info->_number = _repository._classCount;
    info->_qualifiers = std::move(declaration.qualifiers);
    if (superclass) inherit(*info, *superclass);
    info->_ancestors.push_back(info.get());
    for (PropertyDeclaration& property : declaration.properties)
        addProperty(*info, std::move(property), declaration);
    for (MethodDeclaration& method : declaration.methods)
        addMethod(*info, std::move(method));
    info->_abstract = info->_qualifiers.isTrue("Abstract");
    info->_association = info->_qualifiers.isTrue("Association");
    info->_indication = info->_qualifiers.isTrue("Indication");
    info->indexProperties();
    ++_repository._classCount;
    if (superclass) superclass->_subclasses.push_back(info.get());
    ClassInfo& added = *info;
    _nameSpace._classes.push_back(std::move(info));
    _nameSpace._byName.emplace(added._name, &added);
    return added;
}

} // namespace KDV::Host
