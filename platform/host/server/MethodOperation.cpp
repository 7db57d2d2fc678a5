#include "hostserver/CimError.h"
#include "hostserver/Operations.h"
#include "hostserver/RequestPaths.h"
#include "hostxml/XmlFragments.h"
#include "hostxml/XmlText.h"

namespace KDV::Host {

namespace {

// The return value of a method: the first that the provider returns. It is written at once, since texts and paths in it
// live no longer than the provider's call.
class ReturnValue : public ResultSink {
public:
    explicit ReturnValue(Call& call) : _call(call) {}
    bool instance(const InstanceObject&) override { return false; }
    bool objectPath(const PathObject&) override { return false; }
    bool data(const CMPIData& data) override
    {
        if (!_written) {
            ReplyBuffer& out = _call.reply.out();
            out.append("<RETURNVALUE PARAMTYPE=\"");
            out.append(xmlTypeName(data.type));
            out.append("\">");
            _call.writer.value(data);
            out.append("</RETURNVALUE>\n");
        }
        _written = true;
        return true;
    }

private:
    Call& _call;
    bool _written = false;
};

void readInputs(Call& call, const MethodInfo* method, ArgsObject& in)
{
    for (const RequestParameter& given : call.request.parameters) {
        const ParameterInfo* declared = nullptr;
        if (method)
            for (const ParameterInfo& each : method->parameters)
                if (each.in && sameName(each.name, given.name)) declared = &each;
        if (!declared)
            throw CimError(CMPI_RC_ERR_INVALID_PARAMETER,
                           "the method " + call.request.method + " has no parameter " + given.name);
        const CMPIData data = makeValue(call.scope, call.nameSpace, declared->type, given.value);
        in.add(declared->name, isNull(data) ? nullptr : &data.value, data.type);
    }
}

} // namespace

void invokeMethod(Router& router, Call& call)
{
    const RequestPath& target = call.request.target;
    const ClassInfo& classInfo = call.classOf(target, CMPI_RC_ERR_INVALID_CLASS);
    const PathObject& path = makePath(call.scope, call.nameSpace, classInfo, target, target.isInstance);
    const MethodInfo* method = classInfo.findMethod(call.request.method);
    ArgsObject& in = call.scope.args();
    ArgsObject& out = call.scope.args();
    if (method) readInputs(call, method, in);
    ReturnValue result(call);
    throwIfFailed(router.invokeMethod(&call.context, path, call.request.method.c_str(), &in, &out, result));
    for (const NamedValue& value : out.values) {
        ReplyBuffer& text = call.reply.out();
        text.append("<PARAMVALUE NAME=\"");
        appendAttribute(text, value.name->text());
        text.append("\" PARAMTYPE=\"");
        text.append(xmlTypeName(value.data.type));
        text.append("\">");
        call.writer.value(value.data);
        text.append("</PARAMVALUE>\n");
    }
}

} // namespace KDV::Host
