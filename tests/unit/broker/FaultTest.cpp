#include "BrokerFixture.h"

using namespace KDV::Host;

namespace {

// A provider's whole way for one instance; stops at the first call that fails.
CMPIrc publish(BrokerFixture& f, const CMPIResult* result)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIObjectPath* path = f.eft().newObjectPath(f.mb(), "root/test", "Thing", &status);
    if (!path) return status.rc;
    status = BrokerFixture::addKey(path, "Name", "n");
    CMPIInstance* instance = status.rc ? nullptr : f.eft().newInstance(f.mb(), path, &status);
    CMPIArray* array = instance ? f.eft().newArray(f.mb(), 1, CMPI_uint16, &status) : nullptr;
    if (array) {
        CMPIValue value{};
        value.uint16 = 2;
        status = array->ft->setElementAt(array, 0, &value, CMPI_uint16);
        value.array = array;
        if (!status.rc) status = instance->ft->setProperty(instance, "Codes", &value, CMPI_uint16A);
        array->ft->release(array);
    }
    if (array && !status.rc) status = result->ft->returnInstance(result, instance);
    if (instance) instance->ft->release(instance);
    path->ft->release(path);
    return status.rc;
}

} // namespace

struct Faults : EveryProfile {};
INSTANTIATE_TEST_SUITE_P(Broker, Faults, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Faults, HitEveryCallOnceInTurn)
{
    unsigned n = 1;
    for (;; ++n) {
        CollectingSink sink;
        ResultObject result(*broker, sink);
        broker->failAfter(n, CMPI_RC_ERR_ACCESS_DENIED);
        const CMPIrc rc = publish(*this, &result);
        if (!broker->faultFired()) {
            EXPECT_EQ(rc, CMPI_RC_OK);
            EXPECT_EQ(sink.instances.size(), 1u);
            break;
        }
        EXPECT_EQ(rc, CMPI_RC_ERR_ACCESS_DENIED) << "call " << n;
        EXPECT_TRUE(sink.instances.empty()) << "call " << n;
        EXPECT_EQ(publish(*this, &result), CMPI_RC_OK) << "a fault comes once";
    }
    EXPECT_EQ(n, 8u) << "seven calls can fail";
    EXPECT_TRUE(broker->statistics().lifetimesClean());
    scope.reset();
    EXPECT_EQ(broker->statistics().leftToScope, 0u);
}

TEST_P(Faults, EndWhenSwitchedOff)
{
    broker->failAfter(1, CMPI_RC_ERR_FAILED);
    broker->failAfter(0, CMPI_RC_OK);
    EXPECT_NE(string("a"), nullptr);
    EXPECT_FALSE(broker->faultFired());
}

TEST_P(Faults, HitReadingCallsToo)
{
    CMPIObjectPath* p = path();
    addKey(p, "Name", "n");
    broker->failAfter(2, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(p->ft->getKeyCount(p, &status), 1u);
    p->ft->getKeyAt(p, 0, nullptr, &status);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_FAILED);
    p->ft->getKeyAt(p, 0, nullptr, &status);
    EXPECT_EQ(status.rc, CMPI_RC_OK);
}
