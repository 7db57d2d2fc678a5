// What the tests against a broker share: a small schema, a broker that checks lifetimes, and scopes to run in. Each
// test runs under every profile, since servers differ in what they leave to the provider.
#pragma once

#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiStatus.h"
#include "hostschema/ClassRepository.h"

#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

class BrokerTest : public testing::TestWithParam<KDV::Host::Profile> {
protected:
    BrokerTest();
    ~BrokerTest() override;

    const CMPIBroker* cmpi() const { return broker.cmpi(); }

    // Runs as one request of a server; what it leaves to the scope is counted when it ends.
    template <class Body>
    void inRequest(Body body)
    {
        KDV::Host::RequestScope scope(broker, "root/vnr");
        body();
    }

    CmpiCpp::CmpiObjectPath makePath(const char* className) const
    {
        return CmpiCpp::makeCmpiObjectPath(cmpi(), "root/vnr", className);
    }
    CmpiCpp::CmpiObjectPath makeFan(const char* id) const; // all keys of "Fan"

    // Nothing was released wrongly and, but for what a test expects, nothing was left behind.
    void expectClean(std::uint64_t left = 0) const;

    bool isStandard() const { return GetParam() == KDV::Host::Profile::Standard; }
    bool isSfcb() const { return GetParam() == KDV::Host::Profile::Sfcb; }
    bool isPegasus() const { return GetParam() == KDV::Host::Profile::Pegasus; }

private:
    KDV::Host::ClassRepository _repository;

protected:
    KDV::Host::Broker broker;
    KDV::Host::CollectingSink sink;
};

std::string profileOfTest(const testing::TestParamInfo<KDV::Host::Profile>& parameter);

#define KDV_FOR_EACH_PROFILE(suite)                                                                                    \
    INSTANTIATE_TEST_SUITE_P(Broker, suite, testing::ValuesIn(KDV::Host::allProfiles), profileOfTest)

// The code of the CmpiStatus that body throws; 0 when it throws nothing.
template <class Body>
int codeOf(Body body)
{
    try {
        body();
        return 0;
    } catch (const CmpiCpp::CmpiStatus& status) {
        return status.code();
    }
}
