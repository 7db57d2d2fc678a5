// A query of the form SELECT ... FROM class [WHERE ...], in WQL or in the query language of DSP0202, compiled once and
// then constant: any number of threads may evaluate it. Conditions have three answers, as in SQL; only True matches.
// Compiling throws QueryError; evaluating throws nothing of its own.
#pragma once

#include "indications/QueryValue.h"

#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

struct PathSegment {
    std::string scope; // the class in "Class::Name"; empty: any
    std::string name;
    int index = -1; // of an array element; -1: the whole
};

// A property, or a property of an embedded instance; empty means the instance itself (only left of ISA).
using PropertyPath = std::vector<PathSegment>;

// What a query is asked about.
class QuerySource {
public:
    virtual ~QuerySource();
    virtual bool isA(std::string_view className) const = 0;
    // Null for what is not there.
    virtual QueryValue value(const PropertyPath& path) const = 0;
    // Of an embedded instance; Unknown if there is none.
    virtual Truth isA(const PropertyPath& path, std::string_view className) const = 0;
};

struct QueryOperand {
    bool isPath = false;
    PropertyPath path;
    QueryValue value; // a literal; its text is `text`
    std::string text;
};

struct QueryCondition {
    enum class Kind { And, Or, Not, Compare, IsNull, IsA };
    Kind kind = Kind::And;
    std::vector<QueryCondition> parts; // of And, Or, Not
    Comparison comparison = Comparison::Equal;
    QueryOperand left;
    QueryOperand right;    // of Compare
    std::string className; // of IsA
};

class Query {
public:
    static constexpr std::size_t maxLength = 8192;
    static constexpr unsigned maxDepth = 32;
    static constexpr unsigned maxTerms = 500; // conditions and selected properties together

    // "WQL", "DMTF:CQL" and "CIM:CQL", without regard to case.
    static bool knowsLanguage(std::string_view language) noexcept;
    static Query compile(std::string_view text, std::string_view language);

    const std::string& className() const noexcept { return _className; }
    const std::vector<std::string>& selected() const noexcept { return _selected; } // empty: all properties
    // The properties of the class itself that the query names, selected ones included.
    std::vector<std::string> propertiesNamed() const;
    bool hasCondition() const noexcept { return _hasCondition; }
    bool matches(const QuerySource& source) const;

private:
    friend class QueryParser;
    std::string _className;
    std::vector<std::string> _selected;
    bool _hasCondition = false;
    QueryCondition _condition;
};

} // namespace KDV::Host
