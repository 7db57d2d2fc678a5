// A broker over a small schema, and the calls of a provider in short form. One per test; the scope stands for the call
// that the provider is in.
#pragma once

#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"

#include <optional>
#include <string>

#include <gmock/gmock.h>

namespace KDV::Host {

inline const char* const testSchema = R"(
class Thing { [Key] string Name; [Key] uint16 Number; uint16 State = 5; string Label; uint16 Codes[]; string Words[];
    datetime When; boolean Good; uint64 Size = 7; sint8 Small; real32 Ratio; [EmbeddedInstance("Thing")] string Inner;
    [Description("does it")] uint32 Work([In, Description("how")] string How); };
class SubThing : Thing { string Extra; };
[Association] class Link { [Key] Thing REF From; [Key] Thing REF To; };
)";

struct BrokerFixture {
    explicit BrokerFixture(Profile profile, bool checkLifetimes = true)
    {
        repository.loadText(testSchema, "root/test");
        broker.emplace(repository, BrokerOptions{profile, checkLifetimes});
        scope.emplace(*broker, "root/test");
    }

    const CMPIBroker* mb() const { return broker->cmpi(); }
    const CMPIBrokerEncFT& eft() const { return *mb()->eft; }
    CMPIObjectPath* path(const char* className = "Thing")
    {
        return eft().newObjectPath(mb(), "root/test", className, &status);
    }
    CMPIInstance* instance(const char* className = "Thing")
    {
        CMPIObjectPath* from = path(className);
        CMPIInstance* made = eft().newInstance(mb(), from, &status);
        from->ft->release(from);
        return made;
    }
    CMPIString* string(const char* text) { return eft().newString(mb(), text, &status); }
    static CMPIStatus setText(const CMPIInstance* to, const char* name, const char* text)
    {
        return to->ft->setProperty(to, name, reinterpret_cast<const CMPIValue*>(text), CMPI_chars);
    }
    static CMPIStatus setNumber(const CMPIInstance* to, const char* name, CMPIUint16 number)
    {
        CMPIValue value{};
        value.uint16 = number;
        return to->ft->setProperty(to, name, &value, CMPI_uint16);
    }
    static CMPIStatus addKey(const CMPIObjectPath* to, const char* name, const char* text)
    {
        return to->ft->addKey(to, name, reinterpret_cast<const CMPIValue*>(text), CMPI_chars);
    }
    static CMPIStatus addKey(const CMPIObjectPath* to, const char* name, CMPIUint16 number)
    {
        CMPIValue value{};
        value.uint16 = number;
        return to->ft->addKey(to, name, &value, CMPI_uint16);
    }
    // What the provider set, as "Name=value", in order.
    static std::vector<std::string> given(const CMPIInstance* of)
    {
        std::vector<std::string> all;
        for (const CollectedProperty& property : collect(InstanceObject::of(of)).properties)
            if (!property.preset) all.push_back(property.name + "=" + property.value);
        return all;
    }

    ClassRepository repository;
    std::optional<Broker> broker;
    std::optional<RequestScope> scope;
    CMPIStatus status{CMPI_RC_OK, nullptr};
};

struct EveryProfile : BrokerFixture, testing::TestWithParam<Profile> {
    EveryProfile() : BrokerFixture(GetParam()) {}

    // The value that belongs to the profile of this run.
    template <class Value>
    static Value by(Value standard, Value sfcb, Value pegasus)
    {
        return GetParam() == Profile::Standard ? standard : GetParam() == Profile::Sfcb ? sfcb : pegasus;
    }
};

inline auto profileOf = [](const testing::TestParamInfo<Profile>& run) { return std::string(profileName(run.param)); };

} // namespace KDV::Host
