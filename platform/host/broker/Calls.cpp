#include "broker/Calls.h"

namespace KDV::Host {

CMPIStatus failedWith(Broker& broker, CMPIrc rc, std::string_view text) noexcept
{
    CMPIStatus status = failed(rc);
    try {
        if (RequestScope* scope = RequestScope::current(broker)) status.msg = scope->string(text);
    } catch (...) {
        status.msg = nullptr;
    }
    return status;
}

CMPIString* textInScope(Broker& broker, std::string_view text)
{
    RequestScope* scope = RequestScope::current(broker);
    if (!scope) return nullptr;
    return makeString(Placement::own(broker, scope, ObjectKind::String, sizeof(StringObject) + text.size() + 1), text);
}

CMPIStatus countUseAfterRelease(const ObjectHead& head) noexcept
{
    ++head.broker->counters().usesAfterRelease;
    return failed(CMPI_RC_ERR_INVALID_HANDLE);
}

CMPIStatus releaseObject(ObjectHead& head, Memory* memory) noexcept
{
    Broker::Counters& counters = head.broker->counters();
    switch (head.state) {
    case ObjectState::Released:
        ++counters.doubleReleases;
        return failed(CMPI_RC_ERR_INVALID_HANDLE);
    case ObjectState::Lent:
        ++counters.lentReleases;
        return failed(counters.profile == Profile::Pegasus ? CMPI_RC_OK : CMPI_RC_ERR_FAILED);
    case ObjectState::Clone:
        head.state = ObjectState::Released;
        --counters.liveClones;
        if (head.broker->checksLifetimes())
            counters.keepReleasedClone(memory);
        else
            memory->destroy();
        return ok();
    case ObjectState::Live:
        break;
    }
    if (!head.scope->ownThread()) {
        ++counters.foreignReleases;
        return failed(CMPI_RC_ERR_FAILED);
    }
    head.state = ObjectState::Released;
    head.scope->uncount(head.kind);
    if (!head.broker->checksLifetimes()) memory->destroy();
    return ok();
}

} // namespace KDV::Host
