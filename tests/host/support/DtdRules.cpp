#include "hosttest/DtdRules.h"

namespace KDV::Host::Test {

namespace {

const std::string types =
    "boolean|string|char16|uint8|sint8|uint16|sint16|uint32|sint32|uint64|sint64|datetime|real32|real64";
const std::string parameterTypes = types + "|reference|object|instance";
const std::string truth = "true|false";
const AttributeRule name{"NAME", true, ""};
const AttributeRule type{"TYPE", true, types};
const AttributeRule origin{"CLASSORIGIN", false, ""};
const AttributeRule propagated{"PROPAGATED", false, truth};
const AttributeRule embedded{"EmbeddedObject", false, "object|instance"};
const AttributeRule arraySize{"ARRAYSIZE", false, ""};
const AttributeRule referenceClass{"REFERENCECLASS", false, ""};
const std::string anyProperty = "(PROPERTY|PROPERTY.ARRAY|PROPERTY.REFERENCE)*";

std::vector<ElementRule> envelope()
{
    return {
        {"CIM", "MESSAGE", {{"CIMVERSION", true, ""}, {"DTDVERSION", true, ""}}},
        {"MESSAGE", "SIMPLEREQ|SIMPLERSP|SIMPLEEXPREQ|SIMPLEEXPRSP", {{"ID", true, ""}, {"PROTOCOLVERSION", true, ""}}},
        {"SIMPLERSP", "METHODRESPONSE|IMETHODRESPONSE", {}},
        {"SIMPLEREQ", "METHODCALL|IMETHODCALL", {}},
        {"SIMPLEEXPREQ", "EXPMETHODCALL", {}},
        {"EXPMETHODCALL", "EXPPARAMVALUE*", {name}},
        {"EXPPARAMVALUE", "INSTANCE?", {name}},
        {"IMETHODRESPONSE", "ERROR|(IRETURNVALUE?,PARAMVALUE*)", {name}},
        {"METHODRESPONSE", "ERROR|(RETURNVALUE?,PARAMVALUE*)", {name}},
        {"ERROR", "INSTANCE*", {{"CODE", true, ""}, {"DESCRIPTION", false, ""}}},
        {"RETURNVALUE", "(VALUE|VALUE.REFERENCE)?", {embedded, {"PARAMTYPE", false, parameterTypes}}},
        {"IRETURNVALUE",
         "CLASSNAME*|INSTANCENAME*|INSTANCEPATH*|VALUE*|VALUE.OBJECTWITHPATH*|VALUE.OBJECTWITHLOCALPATH*|VALUE.OBJECT*|"
         "OBJECTPATH*|VALUE.ARRAY?|VALUE.REFERENCE?|CLASS*|INSTANCE*|VALUE.NAMEDINSTANCE*|VALUE.INSTANCEWITHPATH*",
         {}},
        {"PARAMVALUE",
         "(VALUE|VALUE.REFERENCE|VALUE.ARRAY|VALUE.REFARRAY|CLASSNAME|INSTANCENAME|CLASS|INSTANCE|VALUE.NAMEDINSTANCE)"
         "?",
         {name, embedded, {"PARAMTYPE", false, parameterTypes}}},
    };
}

std::vector<ElementRule> values()
{
    return {
        {"VALUE", "#PCDATA", {}},
        {"VALUE.ARRAY", "(VALUE|VALUE.NULL)*", {}},
        {"VALUE.REFARRAY", "(VALUE.REFERENCE|VALUE.NULL)*", {}},
        {"VALUE.NULL", "", {}},
        {"VALUE.REFERENCE", "CLASSPATH|LOCALCLASSPATH|CLASSNAME|INSTANCEPATH|LOCALINSTANCEPATH|INSTANCENAME", {}},
        {"VALUE.NAMEDINSTANCE", "INSTANCENAME,INSTANCE", {}},
        {"VALUE.OBJECTWITHPATH", "(CLASSPATH,CLASS)|(INSTANCEPATH,INSTANCE)", {}},
        {"VALUE.INSTANCEWITHPATH", "INSTANCEPATH,INSTANCE", {}},
        {"NAMESPACEPATH", "HOST,LOCALNAMESPACEPATH", {}},
        {"LOCALNAMESPACEPATH", "NAMESPACE+", {}},
        {"HOST", "#PCDATA", {}},
        {"NAMESPACE", "", {name}},
        {"CLASSPATH", "NAMESPACEPATH,CLASSNAME", {}},
        {"LOCALCLASSPATH", "LOCALNAMESPACEPATH,CLASSNAME", {}},
        {"CLASSNAME", "", {name}},
        {"INSTANCEPATH", "NAMESPACEPATH,INSTANCENAME", {}},
        {"LOCALINSTANCEPATH", "LOCALNAMESPACEPATH,INSTANCENAME", {}},
        {"INSTANCENAME", "KEYBINDING*|KEYVALUE?|VALUE.REFERENCE?", {{"CLASSNAME", true, ""}}},
        {"OBJECTPATH", "INSTANCEPATH|CLASSPATH", {}},
        {"KEYBINDING", "KEYVALUE|VALUE.REFERENCE", {name}},
        {"KEYVALUE", "#PCDATA", {{"VALUETYPE", false, "string|boolean|numeric"}, {"TYPE", false, types}}},
    };
}

std::vector<ElementRule> declarations()
{
    return {
        {"CLASS", "QUALIFIER*," + anyProperty + ",METHOD*", {name, {"SUPERCLASS", false, ""}}},
        {"INSTANCE", "QUALIFIER*," + anyProperty, {{"CLASSNAME", true, ""}}},
        {"QUALIFIER",
         "(VALUE|VALUE.ARRAY)?",
         {name,
          type,
          propagated,
          {"OVERRIDABLE", false, truth},
          {"TOSUBCLASS", false, truth},
          {"TOINSTANCE", false, truth},
          {"TRANSLATABLE", false, truth}}},
        {"PROPERTY", "QUALIFIER*,VALUE?", {name, type, origin, propagated, embedded}},
        {"PROPERTY.ARRAY", "QUALIFIER*,VALUE.ARRAY?", {name, type, arraySize, origin, propagated, embedded}},
        {"PROPERTY.REFERENCE", "QUALIFIER*,VALUE.REFERENCE?", {name, referenceClass, origin, propagated}},
        {"METHOD",
         "QUALIFIER*,(PARAMETER|PARAMETER.REFERENCE|PARAMETER.ARRAY|PARAMETER.REFARRAY)*",
         {name, {"TYPE", false, types}, origin, propagated}},
        {"PARAMETER", "QUALIFIER*", {name, type}},
        {"PARAMETER.REFERENCE", "QUALIFIER*", {name, referenceClass}},
        {"PARAMETER.ARRAY", "QUALIFIER*", {name, type, arraySize}},
        {"PARAMETER.REFARRAY", "QUALIFIER*", {name, referenceClass, arraySize}},
    };
}

} // namespace

const std::vector<ElementRule>& dtdRules()
{
    static const std::vector<ElementRule> rules = [] {
        std::vector<ElementRule> all = envelope();
        for (auto& more : {values(), declarations()})
            all.insert(all.end(), more.begin(), more.end());
        return all;
    }();
    return rules;
}

} // namespace KDV::Host::Test
