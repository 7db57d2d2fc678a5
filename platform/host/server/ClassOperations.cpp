#include "hostserver/CimError.h"
#include "hostserver/Operations.h"
#include "hostxml/ClassWriter.h"

namespace KDV::Host {

namespace {

void getClass(Call& call)
{
    call.allow({"ClassName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
    // Unlike elsewhere, a class that is not there is "not found" here.
    const ClassInfo* classInfo = call.classInfo("ClassName", CMPI_RC_ERR_NOT_FOUND);
    if (!classInfo) throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "the parameter ClassName is missing");
    const auto properties = call.list("PropertyList");
    ClassForm form{call.flag("LocalOnly", true), call.flag("IncludeQualifiers", true),
                   call.flag("IncludeClassOrigin", false), properties ? &*properties : nullptr};
    call.reply.openReturn();
    appendClass(call.reply.out(), *classInfo, form);
    call.reply.closeReturn();
}

std::vector<const ClassInfo*> askedClasses(Call& call)
{
    const ClassInfo* base = call.classInfo("ClassName", CMPI_RC_ERR_INVALID_CLASS);
    return call.nameSpace.subclasses(base, call.flag("DeepInheritance", false));
}

void enumerateClasses(Call& call)
{
    call.allow({"ClassName", "DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin"});
    const ClassForm form{call.flag("LocalOnly", true), call.flag("IncludeQualifiers", true),
                         call.flag("IncludeClassOrigin", false), nullptr};
    const auto classes = askedClasses(call);
    call.reply.openReturn();
    for (const ClassInfo* classInfo : classes) {
        appendClass(call.reply.out(), *classInfo, form);
        if (!call.reply.stream().elementWritten()) return;
    }
    call.reply.closeReturn();
}

void enumerateClassNames(Call& call)
{
    call.allow({"ClassName", "DeepInheritance"});
    const auto classes = askedClasses(call);
    call.reply.openReturn();
    for (const ClassInfo* classInfo : classes) {
        appendClassName(call.reply.out(), classInfo->name());
        if (!call.reply.stream().elementWritten()) return;
    }
    call.reply.closeReturn();
}

} // namespace

void addClassOperations(OperationTable& table)
{
    table.add("GetClass", getClass);
    table.add("EnumerateClasses", enumerateClasses);
    table.add("EnumerateClassNames", enumerateClassNames);
}

} // namespace KDV::Host
