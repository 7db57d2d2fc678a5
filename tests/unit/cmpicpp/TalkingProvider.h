// A provider of all four kinds that writes each call down, with what arrived, and then does what the test asks.
#pragma once

#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"

#include <functional>
#include <string>
#include <vector>

inline std::string listed(const char* const* names)
{
    if (!names) return "all";
    std::string text = "{";
    for (; *names; ++names)
        text.append(*names).append(" ");
    return text + "}";
}

class TalkingProvider : public CmpiCpp::CmpiInstanceProvider,
                        public CmpiCpp::CmpiAssociationProvider,
                        public CmpiCpp::CmpiIndicationProvider,
                        public CmpiCpp::CmpiMethodProvider {
public:
    void enumInstanceNames(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path,
                           const CmpiCpp::CmpiObjectPathResult&) override
    {
        note("enumInstanceNames " + path.getClassName());
    }
    void enumInstances(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path, const char* const* properties,
                       const CmpiCpp::CmpiInstanceResult&) override
    {
        note("enumInstances " + path.getClassName() + " " + listed(properties));
    }
    void getInstance(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path, const char* const* properties,
                     const CmpiCpp::CmpiInstanceResult&) override
    {
        note("getInstance " + path.getClassName() + " " + listed(properties));
    }
    void createInstance(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path, const CMPIInstance*,
                        const CmpiCpp::CmpiObjectPathResult&) override
    {
        note("createInstance " + path.getClassName());
    }
    void modifyInstance(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path, const CMPIInstance*,
                        const char* const* properties) override
    {
        note("modifyInstance " + path.getClassName() + " " + listed(properties));
    }
    void deleteInstance(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path) override
    {
        note("deleteInstance " + path.getClassName());
    }
    void execQuery(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path, const char* query,
                   const char* language, const CmpiCpp::CmpiInstanceResult&) override
    {
        note("execQuery " + path.getClassName() + " " + CmpiCpp::CmpiName(query).c_str() + " " +
             CmpiCpp::CmpiName(language).c_str());
    }
    void associators(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path,
                     const CmpiCpp::CmpiName& association, const CmpiCpp::CmpiName& resultClass,
                     const CmpiCpp::CmpiName& role, const CmpiCpp::CmpiName& resultRole, const char* const* properties,
                     const CmpiCpp::CmpiInstanceResult&) override
    {
        note("associators " + path.getClassName() + filters(association, resultClass, role, resultRole) + " " +
             listed(properties));
    }
    void associatorNames(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path,
                         const CmpiCpp::CmpiName& association, const CmpiCpp::CmpiName& resultClass,
                         const CmpiCpp::CmpiName& role, const CmpiCpp::CmpiName& resultRole,
                         const CmpiCpp::CmpiObjectPathResult&) override
    {
        note("associatorNames " + path.getClassName() + filters(association, resultClass, role, resultRole));
    }
    void references(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path,
                    const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role, const char* const* properties,
                    const CmpiCpp::CmpiInstanceResult&) override
    {
        note("references " + path.getClassName() + filters("", resultClass, role, "") + " " + listed(properties));
    }
    void referenceNames(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path,
                        const CmpiCpp::CmpiName& resultClass, const CmpiCpp::CmpiName& role,
                        const CmpiCpp::CmpiObjectPathResult&) override
    {
        note("referenceNames " + path.getClassName() + filters("", resultClass, role, ""));
    }
    void authorizeFilter(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiSelectExp& filter,
                         const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& path,
                         const char* owner) override
    {
        note("authorizeFilter " + filterText(filter, className, path) + CmpiCpp::CmpiName(owner).c_str());
    }
    void mustPoll(const CmpiCpp::CmpiContext&) override { note("mustPoll"); }
    void activateFilter(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiSelectExp& filter,
                        const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& path, bool first) override
    {
        note("activateFilter " + filterText(filter, className, path) + (first ? "first" : "again"));
    }
    void deactivateFilter(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiSelectExp& filter,
                          const CmpiCpp::CmpiName& className, const CmpiCpp::CmpiObjectPath& path, bool last) override
    {
        note("deactivateFilter " + filterText(filter, className, path) + (last ? "last" : "more"));
    }
    void enableIndications(const CmpiCpp::CmpiContext&) override { note("enableIndications"); }
    void disableIndications(const CmpiCpp::CmpiContext&) override { note("disableIndications"); }
    void invokeMethod(const CmpiCpp::CmpiContext&, const CmpiCpp::CmpiObjectPath& path, const CmpiCpp::CmpiName& method,
                      const CmpiCpp::CmpiArgs& arguments, const CmpiCpp::CmpiMethodResult& result) override
    {
        note("invokeMethod " + path.getClassName() + " " + method.c_str() + (arguments.in() ? " in" : ""));
        if (answersMethods) result.returnData(17);
    }
    bool cleanup(const CmpiCpp::CmpiContext&, bool terminating) override
    {
        note(terminating ? "cleanup terminating" : "cleanup");
        return cleanupAnswer;
    }
    bool unloadOK(const CmpiCpp::CmpiContext&) override
    {
        note("unloadOK");
        return unloadAnswer;
    }

    std::vector<std::string> calls;
    std::function<void()> then;
    bool answersMethods = true;
    bool cleanupAnswer = true;
    bool unloadAnswer = true;

private:
    void note(const std::string& call)
    {
        calls.push_back(call);
        if (then) then();
    }
    static std::string filters(const CmpiCpp::CmpiName& a, const CmpiCpp::CmpiName& b, const CmpiCpp::CmpiName& c,
                               const CmpiCpp::CmpiName& d)
    {
        return std::string(" ") + a.c_str() + "," + b.c_str() + "," + c.c_str() + "," + d.c_str();
    }
    static std::string filterText(const CmpiCpp::CmpiSelectExp& filter, const CmpiCpp::CmpiName& className,
                                  const CmpiCpp::CmpiObjectPath& path)
    {
        return std::string(filter.raw() ? "filter " : "none ") + className.c_str() + " " + path.getClassName() + " ";
    }
};
