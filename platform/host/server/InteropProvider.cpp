#include "hostserver/InteropProvider.h"

namespace KDV::Host {

namespace {

constexpr const char* managerClass = "CIM_ObjectManager";
constexpr const char* nameSpaceClass = "CIM_Namespace";
constexpr const char* childClass = "__Namespace";
constexpr const char* profileClass = "CIM_RegisteredProfile";
constexpr const char* conformanceClass = "CIM_ElementConformsToProfile";
constexpr const char* systemClass = "CIM_ComputerSystem";
constexpr const char* managerName = "kdv-cimhost";

} // namespace

InteropProvider::~InteropProvider() = default;

std::vector<ProviderRoute> InteropProvider::routes()
{
    std::vector<ProviderRoute> all;
    const std::pair<const char*, const char*> served[] = {{"interop", managerClass}, {"interop", nameSpaceClass},
                                                          {"interop", profileClass}, {"interop", conformanceClass},
                                                          {"root", childClass},      {"root", nameSpaceClass}};
    for (const auto& [nameSpace, className] : served)
        if (const ClassInfo* classInfo = broker().repository().find(nameSpace, className)) {
            ProviderRoute route;
            route.classInfo = classInfo;
            route.provider = this;
            route.instances = true;
            route.associations = classInfo->isAssociation();
            all.push_back(route);
        }
    return all;
}

BuiltInProvider::Instances InteropProvider::instancesOf(RequestScope& scope, const ClassInfo& classInfo) const
{
    const std::string& name = classInfo.name();
    if (name == managerClass) return {&objectManager(scope, classInfo)};
    if (name == nameSpaceClass) return nameSpaces(scope, classInfo);
    if (name == childClass) return childNameSpaces(scope, classInfo);
    if (name == profileClass) return {&profile(scope, classInfo)};
    if (name == conformanceClass) return {&conformance(scope, classInfo)};
    return {};
}

std::vector<const ClassInfo*> InteropProvider::associationsIn(const Namespace& nameSpace) const
{
    const ClassInfo* conforms = sameName(nameSpace.name(), "interop") ? nameSpace.find(conformanceClass) : nullptr;
    return conforms ? std::vector<const ClassInfo*>{conforms} : std::vector<const ClassInfo*>{};
}

InstanceObject& InteropProvider::objectManager(RequestScope& scope, const ClassInfo& classInfo) const
{
    InstanceObject& instance = make(scope, classInfo);
    set(instance, "SystemCreationClassName", std::string(systemClass));
    set(instance, "SystemName", _hostName);
    set(instance, "CreationClassName", std::string(managerClass));
    set(instance, "Name", std::string(managerName));
    set(instance, "ElementName", std::string("kdv-cimhost"));
    set(instance, "Description", std::string("Serves the SAS storage provider to WBEM clients."));
    setList(scope, instance, "OperationalStatus", {2});
    set(instance, "EnabledState", std::uint16_t{2});
    set(instance, "Started", true);
    set(instance, "GatherStatisticalData", false);
    return instance;
}

BuiltInProvider::Instances InteropProvider::nameSpaces(RequestScope& scope, const ClassInfo& classInfo) const
{
    Instances all;
    for (const auto& nameSpace : broker().repository().namespaces()) {
        InstanceObject& instance = make(scope, classInfo);
        set(instance, "SystemCreationClassName", std::string(systemClass));
        set(instance, "SystemName", _hostName);
        set(instance, "ObjectManagerCreationClassName", std::string(managerClass));
        set(instance, "ObjectManagerName", std::string(managerName));
        set(instance, "CreationClassName", std::string(nameSpaceClass));
        set(instance, "Name", nameSpace->name());
        set(instance, "ClassInfo", std::uint16_t{0}); // Unknown: superseded by ClassType
        all.push_back(&instance);
    }
    return all;
}

// Names relative to the namespace that is asked: "vnr" for "root/vnr" in "root".
BuiltInProvider::Instances InteropProvider::childNameSpaces(RequestScope& scope, const ClassInfo& classInfo) const
{
    Instances all;
    const auto add = [&](const std::string& name) {
        InstanceObject& instance = make(scope, classInfo);
        set(instance, "Name", name);
        all.push_back(&instance);
    };
    const std::string start = classInfo.nameSpace().name() + "/";
    for (const auto& nameSpace : broker().repository().namespaces()) {
        const std::string& name = nameSpace->name();
        if (name.size() > start.size() && sameName(std::string_view(name).substr(0, start.size()), start))
            add(name.substr(start.size()));
    }
    if (broker().repository().findNamespace(start + "interop")) add("interop"); // by its second name
    return all;
}

// The storage model follows the shape of several SNIA profiles, but conforms to none of them in full: mandatory
// methods and classes are missing. So the only profile that is claimed is the one by which profiles are claimed.
InstanceObject& InteropProvider::profile(RequestScope& scope, const ClassInfo& classInfo) const
{
    InstanceObject& instance = make(scope, classInfo);
    set(instance, "InstanceID", std::string("KDV:DMTF:Profile Registration:1.0.0"));
    set(instance, "RegisteredOrganization", std::uint16_t{2}); // DMTF
    set(instance, "RegisteredName", std::string("Profile Registration"));
    set(instance, "RegisteredVersion", std::string("1.0.0"));
    setList(scope, instance, "AdvertiseTypes", {2}); // Not Advertised
    return instance;
}

// The central instance of Profile Registration is the registered profile itself.
InstanceObject& InteropProvider::conformance(RequestScope& scope, const ClassInfo& classInfo) const
{
    const ClassInfo& registered = *classInfo.nameSpace().find(profileClass);
    const PathObject& path = *profile(scope, registered).path;
    InstanceObject& instance = make(scope, classInfo);
    set(instance, "ConformantStandard", path);
    set(instance, "ManagedElement", path);
    return instance;
}

} // namespace KDV::Host
