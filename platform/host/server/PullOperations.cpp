#include "hostserver/CimError.h"
#include "hostserver/Operations.h"
#include "hostserver/PullContexts.h"
#include "hostserver/RequestPaths.h"

namespace KDV::Host {

namespace {

// Puts the first objects into the reply and the rest into a context. The provider is never held: what does not go out
// at once is in the stream's store or in the context's.
class OpenSink : public ResultSink {
public:
    OpenSink(Call& call, PullKind kind, std::uint64_t first, const PullLimits& limits)
        : _call(call), _kind(kind), _left(first), _limits(limits)
    {
    }
    bool instance(const InstanceObject& instance) override
    {
        return _kind == PullKind::InstancesWithPath && add([&] { _call.writer.instanceWithPath(instance); });
    }
    bool objectPath(const PathObject& path) override
    {
        return _kind == PullKind::InstancePaths && add([&] { _call.writer.instancePath(path); });
    }
    bool data(const CMPIData&) override { return false; }

    std::uint64_t count() const noexcept { return _count; }
    std::unique_ptr<PullContext> takeContext() { return std::move(_context); }

private:
    template <class Write>
    bool add(Write write)
    {
        ReplyBuffer& out = _call.reply.out();
        const std::size_t begin = out.size();
        write();
        ++_count;
        if (_left > 0) {
            --_left;
            return _call.reply.stream().elementWritten();
        }
        if (!_context) _context = std::make_unique<PullContext>(_kind, _call.nameSpace.name(), _limits.memory);
        _context->add(out.view().substr(begin));
        out.truncate(begin);
        return true;
    }

    Call& _call;
    PullKind _kind;
    std::uint64_t _left;
    std::uint64_t _count = 0;
    const PullLimits& _limits;
    std::unique_ptr<PullContext> _context;
};

struct Pulls {
    Router& router;
    PullContexts& contexts;

    std::uint64_t most(std::uint64_t asked) const
    {
        return std::min<std::uint64_t>(asked, contexts.limits().mostObjects);
    }
    static void writeState(Call& call, const std::string& context)
    {
        if (context.empty())
            call.reply.nullParameter("EnumerationContext", "string");
        else
            call.reply.parameter("EnumerationContext", "string", context);
        call.reply.parameter("EndOfSequence", "boolean", context.empty() ? "TRUE" : "FALSE");
    }

    // What all Open operations have in common; `ask` runs the provider.
    template <class Ask>
    void open(Call& call, PullKind kind, const PathObject* source, Ask ask)
    {
        if (call.flag("ContinueOnError", false))
            throw CimError(continuationOnErrorNotSupported, "ContinueOnError is not supported");
        if (call.text("FilterQuery") || call.text("FilterQueryLanguage"))
            throw CimError(filteredEnumerationNotSupported, "filter queries are not supported");
        const auto asked = call.number("OperationTimeout");
        const std::uint32_t timeout = contexts.timeout(asked ? &*asked : nullptr);
        OpenSink sink(call, kind, most(call.number("MaxObjectCount").value_or(0)), contexts.limits());
        ReplyStream& stream = call.reply.stream();
        call.reply.openReturn();
        stream.providerBegins();
        const Outcome outcome = ask(sink);
        stream.providerEnds();
        if (!stream.alive()) return;
        throwIfFailed(outcome);
        if (source && sink.count() == 0) checkExists(call, *source);
        std::string name;
        if (auto context = sink.takeContext()) name = contexts.keep(std::move(context), timeout);
        call.reply.closeReturn();
        writeState(call, name);
    }

    // An instance without associations and one that is not there look the same to the provider's caller.
    void checkExists(Call& call, const PathObject& path)
    {
        class Nothing : public ResultSink {
            bool instance(const InstanceObject&) override { return true; }
            bool objectPath(const PathObject&) override { return true; }
            bool data(const CMPIData&) override { return true; }
        } nothing;
        throwIfFailed(router.getInstance(&call.context, path, nullptr, nothing));
    }

    void pull(Call& call, PullKind kind)
    {
        call.allow({"EnumerationContext", "MaxObjectCount"});
        const auto name = call.text("EnumerationContext");
        const auto asked = call.number("MaxObjectCount");
        if (!name || !asked)
            throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "EnumerationContext and MaxObjectCount must be given");
        std::uint32_t timeout = 0;
        auto context = contexts.take(*name, timeout);
        try {
            if (context->kind != kind || context->nameSpace != call.nameSpace.name())
                throw CimError(invalidEnumerationContext, "the enumeration is of another kind or namespace");
            call.reply.openReturn();
            std::string element;
            for (std::uint64_t left = most(*asked); left > 0 && context->next(element); --left) {
                call.reply.out().append(element);
                if (!call.reply.stream().elementWritten()) break;
            }
            call.reply.closeReturn();
        } catch (const std::exception&) {
            contexts.putBack(*name, std::move(context), timeout);
            throw;
        }
        const bool atEnd = context->atEnd();
        if (atEnd) context.reset();
        contexts.putBack(*name, std::move(context), timeout);
        writeState(call, atEnd ? std::string() : *name);
    }

    void close(Call& call)
    {
        call.allow({"EnumerationContext"});
        const auto name = call.text("EnumerationContext");
        if (!name) throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "EnumerationContext must be given");
        std::uint32_t timeout = 0;
        contexts.take(*name, timeout);
        contexts.putBack(*name, nullptr, 0);
    }
};

std::string filterClass(Call& call, std::string_view name)
{
    const ClassInfo* classInfo = call.classInfo(name, CMPI_RC_ERR_INVALID_PARAMETER);
    return classInfo ? classInfo->name() : std::string();
}

const char* orNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

void openEnumerate(Pulls pulls, Call& call, PullKind kind)
{
    if (kind == PullKind::InstancesWithPath)
        call.allow({"ClassName", "DeepInheritance", "IncludeClassOrigin", "PropertyList", "FilterQueryLanguage",
                    "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"});
    else
        call.allow({"ClassName", "FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError",
                    "MaxObjectCount"});
    const PathObject& path = call.scope.path(call.nameSpace.name(), call.requiredClass("ClassName").name());
    if (kind == PullKind::InstancesWithPath) call.shapeInstances();
    pulls.open(call, kind, nullptr, [&](ResultSink& sink) {
        return kind == PullKind::InstancesWithPath
                   ? pulls.router.enumerateInstances(&call.context, path, call.propertyNames(), sink)
                   : pulls.router.enumerateInstanceNames(&call.context, path, sink);
    });
}

void openAssociators(Pulls pulls, Call& call, PullKind kind)
{
    const bool paths = kind == PullKind::InstancePaths;
    if (paths)
        call.allow({"InstanceName", "AssocClass", "ResultClass", "Role", "ResultRole", "FilterQueryLanguage",
                    "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"});
    else
        call.allow({"InstanceName", "AssocClass", "ResultClass", "Role", "ResultRole", "IncludeClassOrigin",
                    "PropertyList", "FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError",
                    "MaxObjectCount"});
    const PathObject& path = call.instanceName("InstanceName", CMPI_RC_ERR_INVALID_PARAMETER);
    const std::string assocClass = filterClass(call, "AssocClass"), resultClass = filterClass(call, "ResultClass");
    const std::string role = call.text("Role").value_or(""), resultRole = call.text("ResultRole").value_or("");
    if (!paths) call.shapeInstances();
    pulls.open(call, kind, &path, [&](ResultSink& sink) {
        return paths ? pulls.router.associatorNames(&call.context, path, orNull(assocClass), orNull(resultClass),
                                                    orNull(role), orNull(resultRole), sink)
                     : pulls.router.associators(&call.context, path, orNull(assocClass), orNull(resultClass),
                                                orNull(role), orNull(resultRole), call.propertyNames(), sink);
    });
}

void openReferences(Pulls pulls, Call& call, PullKind kind)
{
    const bool paths = kind == PullKind::InstancePaths;
    if (paths)
        call.allow({"InstanceName", "ResultClass", "Role", "FilterQueryLanguage", "FilterQuery", "OperationTimeout",
                    "ContinueOnError", "MaxObjectCount"});
    else
        call.allow({"InstanceName", "ResultClass", "Role", "IncludeClassOrigin", "PropertyList", "FilterQueryLanguage",
                    "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"});
    const PathObject& path = call.instanceName("InstanceName", CMPI_RC_ERR_INVALID_PARAMETER);
    const std::string resultClass = filterClass(call, "ResultClass"), role = call.text("Role").value_or("");
    if (!paths) call.shapeInstances();
    pulls.open(call, kind, &path, [&](ResultSink& sink) {
        return paths ? pulls.router.referenceNames(&call.context, path, orNull(resultClass), orNull(role), sink)
                     : pulls.router.references(&call.context, path, orNull(resultClass), orNull(role),
                                               call.propertyNames(), sink);
    });
}

} // namespace

void addPullOperations(OperationTable& table, Router& router, PullContexts& contexts)
{
    const Pulls pulls{router, contexts};
    constexpr PullKind instances = PullKind::InstancesWithPath, paths = PullKind::InstancePaths;
    table.add("OpenEnumerateInstances", [=](Call& call) { openEnumerate(pulls, call, instances); });
    table.add("OpenEnumerateInstancePaths", [=](Call& call) { openEnumerate(pulls, call, paths); });
    table.add("OpenAssociatorInstances", [=](Call& call) { openAssociators(pulls, call, instances); });
    table.add("OpenAssociatorInstancePaths", [=](Call& call) { openAssociators(pulls, call, paths); });
    table.add("OpenReferenceInstances", [=](Call& call) { openReferences(pulls, call, instances); });
    table.add("OpenReferenceInstancePaths", [=](Call& call) { openReferences(pulls, call, paths); });
    table.add("PullInstancesWithPath", [=](Call& call) { Pulls(pulls).pull(call, instances); });
    table.add("PullInstancePaths", [=](Call& call) { Pulls(pulls).pull(call, paths); });
    // Only an enumeration by query, which is not served, gives instances without paths.
    table.add("PullInstances", [](Call& call) {
        call.allow({"EnumerationContext", "MaxObjectCount"});
        throw CimError(invalidEnumerationContext, "no enumeration gives instances without their paths");
    });
    table.add("CloseEnumeration", [=](Call& call) { Pulls(pulls).close(call); });
}

} // namespace KDV::Host
