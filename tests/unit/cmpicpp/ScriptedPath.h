// A path whose keys have any type and state that a server could send, for what no well-behaved broker gives. Made and
// owned by a test; counts releases and clones instead of doing them, so nothing may outlive the ScriptedPath.
#pragma once

#include "cmpi/Objects.h"
#include "cmpicpp/CmpiObjectPath.h"

#include <cstdint>
#include <deque>
#include <string>
#include <utility>
#include <vector>

struct ScriptedString : CMPIString {
    explicit ScriptedString(const char* content);
    ScriptedString(const ScriptedString&) = delete;
    ScriptedString& operator=(const ScriptedString&) = delete;
    std::string text;
    bool isNull;
};

class ScriptedPath : public CMPIObjectPath {
    std::deque<ScriptedString> _strings; // before the members that are made in it

public:
    explicit ScriptedPath(const char* className, const char* nameSpace = "root/vnr", const char* host = "");
    ScriptedPath(const ScriptedPath&) = delete;
    ScriptedPath& operator=(const ScriptedPath&) = delete;

    ScriptedPath& text(const char* name, const char* value);
    ScriptedPath& chars(const char* name, const char* value);
    ScriptedPath& reference(const char* name, const CMPIObjectPath* target);
    ScriptedPath& boolean(const char* name, bool value);
    ScriptedPath& signedNumber(const char* name, CMPIType type, std::int64_t value);
    ScriptedPath& unsignedNumber(const char* name, CMPIType type, std::uint64_t value);
    ScriptedPath& real(const char* name, CMPIType type, double value);
    ScriptedPath& key(const char* name, CMPIType type, CMPIValueState state, const CMPIValue& value);

    CmpiCpp::CmpiObjectPath lent() const { return CmpiCpp::CmpiObjectPath::lent(this); }

    struct Key {
        ScriptedString* name;
        CMPIData data;
    };
    std::vector<Key> keys;
    ScriptedString* className;
    ScriptedString* nameSpace;
    ScriptedString* host;
    int releases = 0;
    int clones = 0;
    CMPIrc failing = CMPI_RC_OK; // every getter answers with this

    ScriptedString* keep(const char* text);
};
