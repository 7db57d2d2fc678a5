#include "indications/QueryCompiler.h"

#include "hostschema/SchemaName.h"
#include "indications/QueryError.h"

#include <utility>

namespace KDV::Host {

namespace {

bool instanceIsA(const InstanceObject& instance, std::string_view className)
{
    for (const ClassInfo* one = instance.classInfo; one; one = one->superclass())
        if (sameName(one->name(), className)) return true;
    return !instance.classInfo && sameName(instance.path->className, className);
}

QueryValue valueOf(CMPIType type, const CMPIValue& value)
{
    switch (type) {
    case CMPI_boolean:
        return QueryValue::ofBoolean(value.boolean != 0);
    case CMPI_char16:
        return QueryValue::ofUnsigned(value.char16);
    case CMPI_uint8:
        return QueryValue::ofUnsigned(value.uint8);
    case CMPI_uint16:
        return QueryValue::ofUnsigned(value.uint16);
    case CMPI_uint32:
        return QueryValue::ofUnsigned(value.uint32);
    case CMPI_uint64:
        return QueryValue::ofUnsigned(value.uint64);
    case CMPI_sint8:
        return QueryValue::ofSigned(value.sint8);
    case CMPI_sint16:
        return QueryValue::ofSigned(value.sint16);
    case CMPI_sint32:
        return QueryValue::ofSigned(value.sint32);
    case CMPI_sint64:
        return QueryValue::ofSigned(value.sint64);
    case CMPI_real32:
        return QueryValue::ofReal(static_cast<double>(value.real32));
    case CMPI_real64:
        return QueryValue::ofReal(value.real64);
    case CMPI_chars:
        return value.chars ? QueryValue::ofText(value.chars) : QueryValue();
    case CMPI_string:
        return value.string && !StringObject::of(value.string).isNull ? QueryValue::ofText(textOf(value))
                                                                      : QueryValue();
    case CMPI_dateTime:
        return value.dateTime ? QueryValue::ofDateTime(dateTextOf(value)) : QueryValue();
    default:
        return QueryValue::other();
    }
}

// One step: the property of the segment, or its array element.
bool take(CMPIData data, const PathSegment& segment, CMPIData& found)
{
    if (isNull(data) || (data.state & (CMPI_notFound | CMPI_badValue)) != 0) return false;
    found = data;
    if (segment.index < 0) return true;
    if ((data.type & CMPI_ARRAY) == 0 || !data.value.array) return false;
    const ArrayObject& array = ArrayObject::of(data.value.array);
    if (static_cast<CMPICount>(segment.index) >= array.size) return false;
    found = array.elements[segment.index];
    found.type = array.elementType;
    return !isNull(found);
}

bool find(const InstanceObject& start, const PropertyPath& path, CMPIData& found)
{
    const InstanceObject* instance = &start;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const PathSegment& segment = path[i];
        if (!segment.scope.empty() && !instanceIsA(*instance, segment.scope)) return false;
        const PropertyEntry* entry = instance->find(segment.name);
        if (!entry || !take(entry->data(), segment, found)) return false;
        if (i + 1 == path.size()) return true;
        if (found.type != CMPI_instance || !found.value.inst) return false;
        instance = &InstanceObject::of(found.value.inst);
    }
    return false;
}

// Values that a provider gives itself, property by property; embedded objects are not followed.
class AccessorSource : public QuerySource {
public:
    AccessorSource(CMPIAccessor* accessor, void* parameter) : _accessor(accessor), _parameter(parameter) {}
    // The provider asks about its own data: of the class it says nothing, so the query's class is taken for true.
    bool isA(std::string_view) const override { return true; }
    QueryValue value(const PropertyPath& path) const override
    {
        CMPIData found{};
        if (path.size() != 1 || !take(_accessor(path.front().name.c_str(), _parameter), path.front(), found)) return {};
        return valueOf(found.type, found.value);
    }
    Truth isA(const PropertyPath&, std::string_view) const override { return Truth::Unknown; }

private:
    CMPIAccessor* _accessor;
    void* _parameter;
};

class Evaluator : public SelectEvaluator {
public:
    explicit Evaluator(std::shared_ptr<const Query> query) : _query(std::move(query)) {}
    bool matches(const InstanceObject& instance) const override { return _query->matches(InstanceSource(instance)); }
    bool matches(CMPIAccessor* accessor, void* parameter) const override
    {
        return _query->matches(AccessorSource(accessor, parameter));
    }

private:
    std::shared_ptr<const Query> _query;
};

} // namespace

bool InstanceSource::isA(std::string_view className) const { return instanceIsA(_instance, className); }

QueryValue InstanceSource::value(const PropertyPath& path) const
{
    CMPIData found{};
    return find(_instance, path, found) ? valueOf(found.type, found.value) : QueryValue();
}

Truth InstanceSource::isA(const PropertyPath& path, std::string_view className) const
{
    CMPIData found{};
    if (!find(_instance, path, found) || found.type != CMPI_instance || !found.value.inst) return Truth::Unknown;
    return truthOf(instanceIsA(InstanceObject::of(found.value.inst), className));
}

std::shared_ptr<const SelectEvaluator> evaluatorOf(std::shared_ptr<const Query> query)
{
    return std::make_shared<Evaluator>(std::move(query));
}

std::shared_ptr<const SelectEvaluator> QueryCompiler::compile(std::string_view query, std::string_view language,
                                                              Outcome& outcome)
{
    try {
        return evaluatorOf(std::make_shared<const Query>(Query::compile(query, language)));
    } catch (const QueryError& error) {
        outcome = {error.rc(), error.what()};
        return nullptr;
    }
}

} // namespace KDV::Host
