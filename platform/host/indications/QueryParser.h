// Makes a Query of its text, by recursive descent with a limit on depth. One parser reads one query. What the two
// languages do not share (array elements, scopes of names, "!=") is refused in the one that lacks it.
#pragma once

#include "indications/Query.h"
#include "indications/QueryLexer.h"

#include <string>
#include <string_view>

namespace KDV::Host {

class QueryParser {
public:
    QueryParser(std::string_view text, bool cql);
    Query parse();

private:
    void parseSelected(Query& query);
    QueryCondition parseOr(unsigned depth);
    QueryCondition parseAnd(unsigned depth);
    QueryCondition parseNot(unsigned depth);
    QueryCondition parsePredicate();
    void parseIs(QueryCondition& condition);
    void parseIsA(QueryCondition& condition);
    QueryOperand parseOperand();
    QueryOperand parseNumber();
    PropertyPath parsePath();
    PathSegment parseSegment();
    Comparison parseComparison();
    std::string parseName(const char* what);

    void dropPrefix(PropertyPath& path, bool mayBeWhole) const;
    void resolve(QueryCondition& condition) const;
    void countTerm();
    void advance() { _token = _lexer.next(); }
    bool isWord(std::string_view word) const noexcept;
    bool isSign(std::string_view sign) const noexcept;
    bool takeWord(std::string_view word);
    bool takeSign(std::string_view sign);
    void expectWord(const char* word);
    void expectSign(const char* sign);
    [[noreturn]] void refuse(const std::string& expected) const;

    QueryLexer _lexer;
    QueryToken _token;
    bool _cql;
    unsigned _terms = 0;
    std::string _className;
};

} // namespace KDV::Host
