// The broker's factory table (eft).
#include "broker/Calls.h"
#include "broker/DateTimeText.h"
#include "broker/MessageText.h"

#include <cstdarg>
#include <ctime>

namespace KDV::Host {
namespace {

CMPIInstance* newInstance(const CMPIBroker* mb, const CMPIObjectPath* instPath, CMPIStatus* status)
{
    return produce<CMPIInstance>(
        mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> CMPIInstance* {
            const PathObject* path = argument<PathObject>(instPath);
            const Profile profile = broker.profile();
            if (!path && profile == Profile::Sfcb) path = &scope.path({}, "*NoClassName*");
            if (!path) {
                outcome =
                    failed(profile == Profile::Pegasus ? CMPI_RC_ERR_INVALID_PARAMETER : CMPI_RC_ERR_INVALID_HANDLE);
                return nullptr;
            }
            if (!path->classInfo && profile == Profile::Standard) {
                outcome = failedWith(broker, CMPI_RC_ERR_NOT_FOUND, "class not found: " + std::string(path->className));
                return nullptr;
            }
            return makeInstance(Placement::own(broker, &scope, ObjectKind::Instance, ownInstanceSize), *path);
        });
}

CMPIObjectPath* newObjectPath(const CMPIBroker* mb, const char* ns, const char* cn, CMPIStatus* status)
{
    return produce<CMPIObjectPath>(
        mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> CMPIObjectPath* {
            const std::string_view nameSpace = viewOf(ns);
            const std::string_view className = viewOf(cn);
            bool nameSpaceKnown = false;
            const ClassInfo* info = scope.findClass(nameSpace, className, nameSpaceKnown);
            if (!info && broker.profile() == Profile::Standard && (nameSpaceKnown || !nameSpace.empty())) {
                outcome = failedWith(broker, nameSpaceKnown ? CMPI_RC_ERR_NOT_FOUND : CMPI_RC_ERR_INVALID_NAMESPACE,
                                     nameSpaceKnown ? "class not found: " + std::string(className)
                                                    : "namespace not found: " + std::string(nameSpace));
                return nullptr;
            }
            return makePath(Placement::own(broker, &scope, ObjectKind::ObjectPath, ownPathSize), info, nameSpace,
                            className);
        });
}

CMPIArgs* newArgs(const CMPIBroker* mb, CMPIStatus* status)
{
    return produce<CMPIArgs>(mb, status, [](Broker& broker, RequestScope& scope, CMPIStatus&) {
        return makeArgs(Placement::own(broker, &scope, ObjectKind::Args, ownListSize));
    });
}

CMPIString* newString(const CMPIBroker* mb, const char* data, CMPIStatus* status)
{
    return produce<CMPIString>(mb, status,
                               [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> CMPIString* {
                                   if (!data && broker.profile() != Profile::Sfcb) {
                                       outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
                                       return nullptr;
                                   }
                                   const std::string_view text = viewOf(data);
                                   return makeString(Placement::own(broker, &scope, ObjectKind::String,
                                                                    sizeof(StringObject) + text.size() + 1),
                                                     text, !data);
                               });
}

CMPIArray* newArray(const CMPIBroker* mb, CMPICount size, CMPIType type, CMPIStatus* status)
{
    return produce<CMPIArray>(mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> CMPIArray* {
        constexpr CMPICount most = 16u * 1024 * 1024;
        auto elementType = static_cast<CMPIType>(type & ~CMPI_ARRAY);
        const bool flagged = (type & CMPI_ARRAY) != 0;
        if (size > most || elementType == CMPI_null || (flagged && broker.profile() == Profile::Standard)) {
            outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
            return nullptr;
        }
        if (elementType == CMPI_chars && broker.profile() != Profile::Pegasus) elementType = CMPI_string;
        const bool growable = size == 0 && broker.profile() == Profile::Sfcb;
        const std::size_t bytes = ownArraySize + size * (sizeof(CMPIData) + 48);
        return makeArray(Placement::own(broker, &scope, ObjectKind::Array, bytes), size, elementType, growable);
    });
}

CMPIDateTime* dateOf(Broker& broker, RequestScope& scope, const char* text)
{
    return makeDateTime(Placement::own(broker, &scope, ObjectKind::DateTime, sizeof(DateTimeObject) + 96), text);
}

CMPIDateTime* newDateTimeFromBinary(const CMPIBroker* mb, CMPIUint64 binTime, CMPIBoolean interval, CMPIStatus* status)
{
    return produce<CMPIDateTime>(mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus&) {
        char text[26];
        dateTimeFromBinary(binTime, interval != 0, broker.profile() == Profile::Sfcb, text);
        return dateOf(broker, scope, text);
    });
}

CMPIDateTime* newDateTime(const CMPIBroker* mb, CMPIStatus* status)
{
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    const auto microseconds =
        static_cast<CMPIUint64>(now.tv_sec) * 1000000 + static_cast<CMPIUint64>(now.tv_nsec) / 1000;
    return newDateTimeFromBinary(mb, microseconds, 0, status);
}

CMPIDateTime* newDateTimeFromChars(const CMPIBroker* mb, const char* datetime, CMPIStatus* status)
{
    return produce<CMPIDateTime>(mb, status,
                                 [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> CMPIDateTime* {
                                     if (!isDateTimeText(viewOf(datetime), broker.profile() != Profile::Sfcb)) {
                                         outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
                                         return nullptr;
                                     }
                                     return dateOf(broker, scope, datetime);
                                 });
}

CMPISelectExp* newSelectExp(const CMPIBroker* mb, const char* query, const char* lang, CMPIArray** projection,
                            CMPIStatus* status)
{
    return produce<CMPISelectExp>(
        mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus& outcome) -> CMPISelectExp* {
            if (projection) *projection = nullptr;
            if (!query || !lang) {
                outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
                return nullptr;
            }
            SelectCompiler* compiler = broker.selectCompiler();
            if (!compiler) {
                outcome = failed(CMPI_RC_ERR_NOT_SUPPORTED);
                return nullptr;
            }
            Outcome compiled;
            auto evaluator = compiler->compile(query, lang, compiled);
            if (!evaluator) {
                outcome = failedWith(broker, compiled.rc == CMPI_RC_OK ? CMPI_RC_ERR_INVALID_QUERY : compiled.rc,
                                     compiled.message);
                return nullptr;
            }
            return makeSelectExp(Placement::own(broker, &scope, ObjectKind::SelectExp, ownListSize), query, lang,
                                 scope.keep(std::move(evaluator)));
        });
}

CMPIBoolean classPathIsA(const CMPIBroker* mb, const CMPIObjectPath* classPath, const char* className,
                         CMPIStatus* status)
{
    if (!mb) {
        tell(status, failed(CMPI_RC_ERR_INVALID_HANDLE));
        return 0;
    }
    Broker& broker = Broker::of(mb);
    CMPIStatus outcome = failed(broker.faultArmed() ? broker.takeFault() : CMPI_RC_OK);
    bool is = false;
    if (outcome.rc == CMPI_RC_OK) {
        const PathObject* path = argument<PathObject>(classPath);
        if (!path || !className) {
            outcome = failed(broker.profile() == Profile::Sfcb ? CMPI_RC_OK : CMPI_RC_ERR_INVALID_PARAMETER);
        } else if (sameName(path->className, className)) {
            is = true;
        } else if (path->classInfo) {
            const ClassInfo* base = path->classInfo->nameSpace().find(className);
            is = base && path->classInfo->isA(*base);
        }
    }
    tell(status, outcome);
    return is;
}

constexpr const char* kindNames[objectKinds] = {"CMPIString",    "CMPIArray", "CMPIDateTime", "CMPIObjectPath",
                                                "CMPIInstance",  "CMPIArgs",  "CMPIContext",  "CMPIEnumeration",
                                                "CMPISelectExp", "CMPIError", "CMPIResult"};

// Every encapsulated object begins with the pointer to its head.
const ObjectHead* headOf(const void* object) noexcept
{
    if (!object) return nullptr;
    const auto* head = static_cast<const ObjectHead*>(static_cast<const CMPIString*>(object)->hdl);
    return head && head->magic == ObjectHead::mark ? head : nullptr;
}

CMPIString* toString(const CMPIBroker* mb, const void* object, CMPIStatus* status)
{
    return produce<CMPIString>(mb, status, [&](Broker& broker, RequestScope&, CMPIStatus& outcome) -> CMPIString* {
        const ObjectHead* head = headOf(object);
        if (!head) {
            outcome = failed(CMPI_RC_ERR_INVALID_HANDLE);
            return nullptr;
        }
        std::string text;
        if (!describe(*head, object, text)) {
            outcome = failed(CMPI_RC_ERR_NOT_SUPPORTED);
            return nullptr;
        }
        return textInScope(broker, text);
    });
}

CMPIBoolean isOfType(const CMPIBroker* mb, const void* object, const char* type, CMPIStatus* status)
{
    const ObjectHead* head = headOf(object);
    const bool usable = mb && head && type;
    tell(status, failed(usable ? CMPI_RC_OK : CMPI_RC_ERR_INVALID_PARAMETER));
    return usable && std::string_view(kindNames[static_cast<unsigned>(head->kind)]) == type;
}

CMPIString* getType(const CMPIBroker* mb, const void* object, CMPIStatus* status)
{
    return produce<CMPIString>(mb, status, [&](Broker& broker, RequestScope&, CMPIStatus& outcome) -> CMPIString* {
        const ObjectHead* head = headOf(object);
        if (!head) {
            outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
            return nullptr;
        }
        return textInScope(broker, kindNames[static_cast<unsigned>(head->kind)]);
    });
}

CMPIString* message(const CMPIBroker* mb, const char* defMsg, CMPIStatus* status, CMPICount count, va_list values)
{
    if (mb && Broker::of(mb).profile() == Profile::Sfcb) {
        // Sfcb gives the text as it is, and says that it could do no better.
        CMPIString* text = newString(mb, defMsg, status);
        tell(status, failed(CMPI_RC_ERR_NOT_SUPPORTED));
        return text;
    }
    return produce<CMPIString>(mb, status, [&](Broker& broker, RequestScope&, CMPIStatus& outcome) -> CMPIString* {
        std::string text;
        if (!defMsg || !fillMessage(defMsg, count, values, text)) {
            outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
            return nullptr;
        }
        return textInScope(broker, text);
    });
}

CMPIString* getMessage(const CMPIBroker* mb, const char*, const char* defMsg, CMPIStatus* status, CMPICount count, ...)
{
    va_list values;
    va_start(values, count);
    CMPIString* text = message(mb, defMsg, status, count, values);
    va_end(values);
    return text;
}

CMPIString* getMessage2(const CMPIBroker* mb, const char*, CMPIMsgFileHandle, const char* defMsg, CMPIStatus* status,
                        CMPICount count, ...)
{
    va_list values;
    va_start(values, count);
    CMPIString* text = message(mb, defMsg, status, count, values);
    va_end(values);
    return text;
}

// A text and a string: either may be missing, not both.
template <class Write>
CMPIStatus logged(const CMPIBroker* mb, const char* text, const CMPIString* string, Write&& write)
{
    if (!mb) return failed(CMPI_RC_ERR_INVALID_HANDLE);
    Broker& broker = Broker::of(mb);
    if (broker.profile() == Profile::Sfcb) return failed(CMPI_RC_ERR_NOT_SUPPORTED);
    if (broker.faultArmed())
        if (const CMPIrc fault = broker.takeFault(); fault != CMPI_RC_OK) return failed(fault);
    const StringObject* object = argument<StringObject>(string);
    if (!text && !object) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    try {
        if (LogSink* log = broker.logSink()) write(*log, text ? std::string_view(text) : object->text());
    } catch (...) {
        return failed(CMPI_RC_ERR_FAILED);
    }
    return ok();
}

CMPIStatus logMessage(const CMPIBroker* mb, CMPISeverity severity, const char* id, const char* text,
                      const CMPIString* string)
{
    return logged(mb, text, string,
                  [&](LogSink& log, std::string_view line) { log.message(severity, viewOf(id), line); });
}

CMPIStatus trace(const CMPIBroker* mb, CMPILevel level, const char* component, const char* text,
                 const CMPIString* string)
{
    if (!component && mb && Broker::of(mb).profile() == Profile::Pegasus) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    return logged(mb, text, string,
                  [&](LogSink& log, std::string_view line) { log.trace(level, viewOf(component), line); });
}

CMPIError* newCMPIError(const CMPIBroker* mb, const char* owner, const char* msgID, const char* msg,
                        CMPIErrorSeverity sev, CMPIErrorProbableCause pc, CMPIrc cimStatusCode, CMPIStatus* status)
{
    return produce<CMPIError>(mb, status, [&](Broker& broker, RequestScope& scope, CMPIStatus&) {
        ErrorObject* error = makeError(Placement::own(broker, &scope, ObjectKind::Error, 1000));
        const Placement inside = Placement::inside(error->head, error->memory);
        error->owningEntity = makeString(inside, viewOf(owner));
        error->messageID = makeString(inside, viewOf(msgID));
        error->message = makeString(inside, viewOf(msg));
        error->severity = sev;
        error->probableCause = pc;
        error->statusCode = cimStatusCode;
        return error;
    });
}

// Message files hold translations, which this broker has none of: opening succeeds and the default texts serve.
CMPIStatus openMessageFile(const CMPIBroker* mb, const char* msgFile, CMPIMsgFileHandle* handle)
{
    if (!mb || !msgFile || !handle) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
    *handle = nullptr;
    return ok();
}

CMPIStatus closeMessageFile(const CMPIBroker* mb, CMPIMsgFileHandle)
{
    return failed(mb ? CMPI_RC_OK : CMPI_RC_ERR_INVALID_PARAMETER);
}

} // namespace

CMPIBrokerEncFT factoryTable(Profile profile)
{
    CMPIBrokerEncFT table{objectTableVersion(profile),
                          newInstance,
                          newObjectPath,
                          newArgs,
                          newString,
                          newArray,
                          newDateTime,
                          newDateTimeFromBinary,
                          newDateTimeFromChars,
                          newSelectExp,
                          classPathIsA,
                          toString,
                          isOfType,
                          getType,
                          getMessage,
                          logMessage,
                          trace,
                          newCMPIError,
                          openMessageFile,
                          closeMessageFile,
                          getMessage2,
                          nullptr,
                          nullptr,
                          nullptr};
    if (profile == Profile::Sfcb) {
        table.newCMPIError = nullptr;
        table.openMessageFile = nullptr;
        table.closeMessageFile = nullptr;
        table.getMessage2 = nullptr;
    }
    return table;
}

} // namespace KDV::Host
