#include "Model.h"

#include "common/KDVUtil.h"

#include <algorithm>
#include <cstring>
#include <utility>

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char classes[] = R"(
class T_Base { [Key] string Id; [Key] string Sub; string Label; uint16 Status; };
class T_Disk : T_Base { };
class T_FastDisk : T_Disk { };
class T_System : T_Base { };
class T_Outside : T_Base { };
[Association] class T_Link { [Key] T_Base REF Left; [Key] T_Base REF Right; string Label; };
[Association] class T_FastLink : T_Link { };
[Association] class T_Part { [Key] T_Base REF Whole; [Key] T_Base REF Right; string Label; };
[Association] class T_Tagged { [Key] T_Base REF Left; [Key] T_Base REF Right; [Key] string Tag; string Label; };
)";

Host::ClassRepository& load(Host::ClassRepository& repository)
{
    repository.loadText(classes, modelNameSpace, "model.mof");
    return repository;
}

std::string textAt(const char* field, std::size_t size) { return std::string(field, strnlen(field, size)); }

} // namespace

void setText(char* field, std::size_t size, const std::string& text)
{
    std::memset(field, 0, size);
    std::memcpy(field, text.data(), std::min(size - 1, text.size()));
}

StandIn::StandIn(Asked& asked, const std::string& className, const KeyRecord& record, std::string label)
    : CmpiManagedInstance(className), _asked(asked), _record(record), _label(std::move(label))
{
    keysReadFrom(record.id, sizeof record.id);
    keysReadFrom(record.sub, sizeof record.sub);
}

StandIn::~StandIn() { _asked.destroyed.push_back(_label); }

CmpiObjectPath StandIn::getPath() const
{
    ++_asked.paths;
    CmpiObjectPath path = makeCmpiObjectPath(KDVUtil::getBroker(), modelNameSpace, getClassName());
    path.setHost("host");
    path.addKey("Id", textAt(_record.id, sizeof _record.id));
    path.addKey("Sub", textAt(_record.sub, sizeof _record.sub));
    return path;
}

CmpiInstance StandIn::getInstance()
{
    ++_asked.instances;
    CmpiInstance instance = makeCmpiInstance(KDVUtil::getBroker(), getPath());
    instance.addProperty("Label", _label);
    instance.addProperty("Status", std::uint16_t{2});
    return instance;
}

StandInLink::StandInLink(Asked& asked, LinkKind kind, const std::string& className, const End& first, const End& second,
                         std::string label, std::unique_ptr<CmpiObjectPath> fixed)
    : CmpiManagedInstanceAssociation(className), _asked(asked), _kind(kind), _label(std::move(label)),
      _fixed(std::move(fixed)), _first(first), _second(second)
{
    for (End* end : {&_first, &_second})
        if (!end->instance) end->path = _fixed.get();
    if (declares()) joins(_first, _second);
}

StandInLink::~StandInLink() { _asked.destroyed.push_back(_label); }

CmpiObjectPath StandInLink::pathOf(const End& end) { return end.instance ? end.instance->getPath() : *end.path; }

CmpiObjectPath StandInLink::getPath() const
{
    ++_asked.paths;
    CmpiObjectPath path = makeCmpiObjectPath(KDVUtil::getBroker(), modelNameSpace, getClassName());
    path.setHost("host");
    path.addKey(_first.role, pathOf(_first));
    path.addKey(_second.role, pathOf(_second));
    if (_kind == LinkKind::tagged) path.addKey("Tag", "t");
    return path;
}

CmpiInstance StandInLink::getInstance()
{
    ++_asked.instances;
    CmpiInstance instance = makeCmpiInstance(KDVUtil::getBroker(), getPath());
    instance.addProperty("Label", _label);
    return instance;
}

CmpiObjectPath StandInLink::getAssociatedPath(const CmpiObjectPath& given) const
{
    ++_asked.associated;
    CmpiObjectPath first = pathOf(_first);
    CmpiObjectPath second = pathOf(_second);
    if (given == first) return second;
    if (given == second) return first;
    return makeCmpiObjectPath(KDVUtil::getBroker());
}

Model::Model(Host::Profile profile) : _broker(load(_repository), {profile, true}), _scope(_broker, modelNameSpace)
{
    KDVUtil::setBroker(_broker.cmpi());
    CmpiObjectPath::setDefaultNameSpace(modelNameSpace);
}

Model::~Model() { KDVUtil::setBroker(nullptr); }

CmpiObjectPath Model::path(const std::string& className, const std::string& id, const std::string& sub,
                           const std::string& nameSpace)
{
    CmpiObjectPath path = makeCmpiObjectPath(KDVUtil::getBroker(), nameSpace, className);
    path.addKey("Id", id);
    path.addKey("Sub", sub);
    return path;
}

std::string textOf(const CmpiObjectPath& path) { return Host::PathObject::of(path.raw()).text(); }

namespace {

const CmpiContext noContext(nullptr);

} // namespace

Texts Client::instancesFrom(const std::function<void(const CmpiInstanceResult&)>& call)
{
    Host::CollectingSink sink;
    {
        Host::RequestScope scope(_model.broker(), modelNameSpace);
        Host::ResultObject result(_model.broker(), sink, Host::ResultKind::Instances);
        call(CmpiInstanceResult(result.cmpi()));
    }
    instances = sink.instances;
    Texts texts;
    for (const Host::CollectedInstance& instance : instances) {
        const Host::CollectedProperty* label = instance.find("Label");
        texts.push_back(instance.path + " " + (label ? label->value : "no label"));
    }
    return texts;
}

Texts Client::pathsFrom(const std::function<void(const CmpiObjectPathResult&)>& call)
{
    Host::CollectingSink sink;
    {
        Host::RequestScope scope(_model.broker(), modelNameSpace);
        Host::ResultObject result(_model.broker(), sink, Host::ResultKind::ObjectPaths);
        call(CmpiObjectPathResult(result.cmpi(), _model.cmpi()));
    }
    return sink.paths;
}

Texts Client::enumerate(const std::string& className)
{
    return instancesFrom([&](const CmpiInstanceResult& result) {
        Host::PathObject& path = Host::RequestScope::current(_model.broker())->path(modelNameSpace, className);
        _collection.enumInstances(result, noContext, CmpiObjectPath::lent(&path), properties);
    });
}

Texts Client::enumerateNames(const std::string& className)
{
    return pathsFrom([&](const CmpiObjectPathResult& result) {
        Host::PathObject& path = Host::RequestScope::current(_model.broker())->path(modelNameSpace, className);
        _collection.enumInstanceNames(result, noContext, CmpiObjectPath::lent(&path));
    });
}

Texts Client::get(const CmpiObjectPath& path)
{
    bool found = false;
    Texts texts = instancesFrom([&](const CmpiInstanceResult& result) {
        found = _collection.getInstance(result, noContext, path, properties);
    });
    if (found != (texts.size() == 1)) texts.push_back("found does not agree with what was returned");
    return texts;
}

Texts Client::associators(const CmpiObjectPath& path, const Filter& filter)
{
    return instancesFrom([&](const CmpiInstanceResult& result) {
        _collection.associators(result, noContext, path, filter.associationClass, filter.resultClass, filter.role,
                                filter.resultRole, properties);
    });
}

Texts Client::associatorNames(const CmpiObjectPath& path, const Filter& filter)
{
    return pathsFrom([&](const CmpiObjectPathResult& result) {
        _collection.associatorNames(result, noContext, path, filter.associationClass, filter.resultClass, filter.role,
                                    filter.resultRole);
    });
}

Texts Client::references(const CmpiObjectPath& path, const Filter& filter)
{
    return instancesFrom([&](const CmpiInstanceResult& result) {
        _collection.references(result, noContext, path, filter.associationClass, filter.role, properties);
    });
}

Texts Client::referenceNames(const CmpiObjectPath& path, const Filter& filter)
{
    return pathsFrom([&](const CmpiObjectPathResult& result) {
        _collection.referenceNames(result, noContext, path, filter.associationClass, filter.role);
    });
}

} // namespace KDV
