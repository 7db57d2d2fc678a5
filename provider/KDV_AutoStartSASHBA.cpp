#include "provider/KDV_AutoStartSASHBA.h"

#include "instances/DevicePath.h"
#include "instances/Rows.h"
#include "provider/Names.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_AutoStartSASHBA";

constexpr std::uint16_t pollSeconds = 30;
constexpr std::uint16_t staggerSeconds = 28; // just below the interval: first passes spread over nearly all of it

} // namespace

KDV_AutoStartSASHBA::KDV_AutoStartSASHBA(const Logger& logger, const std::string& nameSpace)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className)
{
}

KDV_AutoStartSASHBA::~KDV_AutoStartSASHBA() = default;

CmpiObjectPath KDV_AutoStartSASHBA::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("ProviderName", providerName);
    return path;
}

CmpiInstance KDV_AutoStartSASHBA::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ProviderName", providerName);
    row.string("WorkerMethodNameSpace", _nameSpace);
    row.uint16("WorkerPollInterval", pollSeconds);
    row.uint16("WorkerPollIntervalStagger", staggerSeconds);
    return row.instance();
}

} // namespace KDV
