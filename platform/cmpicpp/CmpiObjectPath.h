// An object path: namespace, class, host and keys of an instance. A value type over a broker object that is either lent
// (came with a request; never released) or owned (made by a factory or copied; released by the destructor). A copy is
// an independent clone and may be kept across calls. Use an object on one thread only.
// A path without a broker object is the empty path; what would change it throws CmpiStatus. Every function that is not
// noexcept throws CmpiStatus when the broker fails.
#pragma once

#include "cmpi/Broker.h"
#include "cmpi/Objects.h"
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/Export.h"

#include <cstdint>
#include <string>

namespace CmpiCpp {

class KDV_CMPICPP_API CmpiObjectPath {
public:
    static CmpiObjectPath lent(const CMPIObjectPath* raw) noexcept;
    static CmpiObjectPath owned(CMPIObjectPath* raw) noexcept;

    CmpiObjectPath(const CmpiObjectPath& other); // clones
    CmpiObjectPath(CmpiObjectPath&& other) noexcept;
    CmpiObjectPath& operator=(CmpiObjectPath other) noexcept;
    ~CmpiObjectPath();

    // A clone, to keep: what a factory made ends with the call, and a move would only carry it on.
    CmpiObjectPath copy() const { return *this; }

    bool empty() const; // no class: the answer "not associated"
    std::string getClassName() const;
    std::string getNameSpace() const;
    std::string getHost() const;
    void setHost(const std::string& host);
    void setNameSpace(const std::string& nameSpace);

    void addKey(const CmpiName& name, const char* text);
    void addKey(const CmpiName& name, const std::string& text);
    void addKey(const CmpiName& name, const CmpiObjectPath& reference);

    std::string keyText(const CmpiName& name) const; // empty when there is no such text key

    // "//host/ns:Class.Key="text",Ref="..."" with quotes and escapes as DSP0207 shows; keys in their order.
    std::string str() const;

    // Equal for requests: same class and namespace without regard to case, same set of keys in any order, key names
    // without regard to case, texts exactly, numbers by value, references by this rule. The host plays no part; a
    // missing namespace stands for the default namespace. References nested deeper than any real path equal nothing.
    bool equals(const CmpiObjectPath& other) const;

    // Equal paths have equal fingerprints. Costs one walk over the keys.
    std::uint64_t fingerprint() const;

    // The namespace that a path without one stands for; set once by the provider, before requests.
    static void setDefaultNameSpace(const std::string& nameSpace);

    const CMPIObjectPath* raw() const noexcept { return _raw; }

    // Gives an object made by a factory up to the server, which releases it at the end of the call; still readable here
    // until then. A copy has no such release: its object is then the caller's.
    CMPIObjectPath* detach() noexcept;

    // A copy is released by nobody but us, so it cannot be left to a server.
    bool isCopy() const noexcept { return _hold == Hold::cloned; }

private:
    enum class Hold : unsigned char { lent, made, cloned };
    CmpiObjectPath(CMPIObjectPath* raw, Hold hold) noexcept : _raw(raw), _hold(hold) {}

    const CMPIObjectPath* existing() const; // throws for the empty path

    CMPIObjectPath* _raw;
    Hold _hold;
};

inline bool operator==(const CmpiObjectPath& a, const CmpiObjectPath& b) { return a.equals(b); }
inline bool operator!=(const CmpiObjectPath& a, const CmpiObjectPath& b) { return !a.equals(b); }

// Makes a path in a namespace. Throws CmpiStatus when the broker refuses.
KDV_CMPICPP_API CmpiObjectPath makeCmpiObjectPath(const CMPIBroker* broker, const CmpiName& nameSpace,
                                                  const CmpiName& className);

// The empty path: no class, no keys.
KDV_CMPICPP_API CmpiObjectPath makeCmpiObjectPath(const CMPIBroker* broker);

// A path with the same host, namespace, class and keys, made by the broker's factory and not by cloning.
KDV_CMPICPP_API CmpiObjectPath remakeCmpiObjectPath(const CMPIBroker* broker, const CmpiObjectPath& path);

} // namespace CmpiCpp
