#include "indications/QueryParser.h"

#include "hostschema/SchemaName.h"
#include "indications/QueryError.h"

#include <array>

namespace KDV::Host {

namespace {

constexpr std::array<std::string_view, 12> reserved{"SELECT", "FROM", "WHERE", "AND",  "OR",    "NOT",
                                                    "IS",     "ISA",  "NULL",  "TRUE", "FALSE", "LIKE"};

bool isReserved(std::string_view word) noexcept
{
    for (std::string_view name : reserved)
        if (sameName(name, word)) return true;
    return false;
}

} // namespace

QueryParser::QueryParser(std::string_view text, bool cql) : _lexer(text), _cql(cql) { advance(); }

void QueryParser::refuse(const std::string& expected) const
{
    std::string found = _token.kind == TokenKind::End    ? "the end"
                        : _token.kind == TokenKind::Text ? "a text"
                                                         : _token.text;
    if (found.empty()) found = "a number";
    throw QueryError(CMPI_RC_ERR_INVALID_QUERY, "column " + std::to_string(_token.column) + ": expected " + expected +
                                                    ", found " + found.substr(0, 64));
}

bool QueryParser::isWord(std::string_view word) const noexcept
{
    return _token.kind == TokenKind::Word && sameName(_token.text, word);
}

bool QueryParser::isSign(std::string_view sign) const noexcept
{
    return _token.kind == TokenKind::Sign && _token.text == sign;
}

bool QueryParser::takeWord(std::string_view word)
{
    const bool there = isWord(word);
    if (there) advance();
    return there;
}

bool QueryParser::takeSign(std::string_view sign)
{
    const bool there = isSign(sign);
    if (there) advance();
    return there;
}

void QueryParser::expectWord(const char* word)
{
    if (!takeWord(word)) refuse(word);
}

void QueryParser::expectSign(const char* sign)
{
    if (!takeSign(sign)) refuse(sign);
}

void QueryParser::countTerm()
{
    if (++_terms > Query::maxTerms)
        throw QueryError(CMPI_RC_ERR_INVALID_QUERY,
                         "a query has at most " + std::to_string(Query::maxTerms) + " conditions and properties");
}

Query QueryParser::parse()
{
    Query query;
    expectWord("SELECT");
    parseSelected(query);
    expectWord("FROM");
    _className = parseName("the name of a class");
    query._className = _className;
    if (takeWord("WHERE")) {
        query._hasCondition = true;
        query._condition = parseOr(0);
        resolve(query._condition);
    }
    if (_token.kind != TokenKind::End) refuse("WHERE, AND, OR or the end");
    // The class may stand before the names of selected properties too.
    for (std::string& name : query._selected) {
        const std::size_t point = name.find('.');
        if (point == std::string::npos) continue;
        if (!sameName(std::string_view(name).substr(0, point), _className))
            throw QueryError(CMPI_RC_ERR_INVALID_QUERY,
                             "only properties of " + _className + " can be selected, not " + name.substr(0, 64));
        name.erase(0, point + 1);
    }
    if (!query._selected.empty() && query._selected.front() == "*") query._selected.clear();
    return query;
}

// Leaves "Class.Property" as it is: the class becomes known only after FROM.
void QueryParser::parseSelected(Query& query)
{
    if (takeSign("*")) return;
    do {
        countTerm();
        std::string name = parseName("a property or *");
        if (takeSign(".")) {
            if (takeSign("*")) {
                query._selected = {name + ".*"};
                return;
            }
            name += '.' + parseName("the name of a property");
        }
        query._selected.push_back(std::move(name));
    } while (takeSign(","));
}

QueryCondition QueryParser::parseOr(unsigned depth)
{
    QueryCondition first = parseAnd(depth);
    if (!isWord("OR")) return first;
    QueryCondition any;
    any.kind = QueryCondition::Kind::Or;
    any.parts.push_back(std::move(first));
    while (takeWord("OR"))
        any.parts.push_back(parseAnd(depth));
    return any;
}

QueryCondition QueryParser::parseAnd(unsigned depth)
{
    QueryCondition first = parseNot(depth);
    if (!isWord("AND")) return first;
    QueryCondition all;
    all.kind = QueryCondition::Kind::And;
    all.parts.push_back(std::move(first));
    while (takeWord("AND"))
        all.parts.push_back(parseNot(depth));
    return all;
}

QueryCondition QueryParser::parseNot(unsigned depth)
{
    if (depth >= Query::maxDepth)
        throw QueryError(CMPI_RC_ERR_INVALID_QUERY,
                         "a query nests at most " + std::to_string(Query::maxDepth) + " deep");
    if (takeWord("NOT")) {
        QueryCondition none;
        none.kind = QueryCondition::Kind::Not;
        none.parts.push_back(parseNot(depth + 1));
        return none;
    }
    if (takeSign("(")) {
        QueryCondition inner = parseOr(depth + 1);
        expectSign(")");
        return inner;
    }
    return parsePredicate();
}

QueryCondition QueryParser::parsePredicate()
{
    countTerm();
    QueryCondition condition;
    condition.left = parseOperand();
    if (takeWord("IS")) {
        parseIs(condition);
        return condition;
    }
    if (takeWord("ISA")) {
        parseIsA(condition);
        return condition;
    }
    condition.kind = QueryCondition::Kind::Compare;
    condition.comparison = parseComparison();
    condition.right = parseOperand();
    if (!condition.left.isPath && !condition.right.isPath)
        throw QueryError(CMPI_RC_ERR_INVALID_QUERY,
                         "column " + std::to_string(_token.column) + ": one side of a comparison must be a property");
    return condition;
}

void QueryParser::parseIs(QueryCondition& condition)
{
    const bool not_ = takeWord("NOT");
    expectWord("NULL");
    if (!condition.left.isPath) refuse("a property before IS");
    condition.kind = QueryCondition::Kind::IsNull;
    if (!not_) return;
    QueryCondition inner = std::move(condition);
    condition = QueryCondition();
    condition.kind = QueryCondition::Kind::Not;
    condition.parts.push_back(std::move(inner));
}

void QueryParser::parseIsA(QueryCondition& condition)
{
    if (!condition.left.isPath) refuse("a property or the class before ISA");
    condition.kind = QueryCondition::Kind::IsA;
    if (_token.kind != TokenKind::Text) {
        condition.className = parseName("the name of a class");
        return;
    }
    condition.className = _token.text;
    advance();
    if (condition.className.empty()) refuse("the name of a class");
}

Comparison QueryParser::parseComparison()
{
    if (takeSign("=")) return Comparison::Equal;
    if (takeSign("<>") || (!_cql && takeSign("!="))) return Comparison::NotEqual;
    if (takeSign("<=")) return Comparison::LessOrEqual;
    if (takeSign("<")) return Comparison::Less;
    if (takeSign(">=")) return Comparison::GreaterOrEqual;
    if (takeSign(">")) return Comparison::Greater;
    refuse("=, <>, <, <=, >, >=, IS or ISA");
}

QueryOperand QueryParser::parseOperand()
{
    QueryOperand operand;
    if (_token.kind == TokenKind::Text) {
        operand.text = _token.text;
        operand.value = QueryValue::ofText({});
        advance();
        return operand;
    }
    if (isWord("TRUE") || isWord("FALSE")) {
        operand.value = QueryValue::ofBoolean(isWord("TRUE"));
        advance();
        return operand;
    }
    if (_token.kind == TokenKind::Word) {
        operand.isPath = true;
        operand.path = parsePath();
        return operand;
    }
    return parseNumber();
}

QueryOperand QueryParser::parseNumber()
{
    const bool minus = takeSign("-");
    if (!minus) takeSign("+");
    QueryOperand operand;
    if (_token.kind == TokenKind::Real) {
        operand.value = QueryValue::ofReal(minus ? -_token.real : _token.real);
    } else if (_token.kind == TokenKind::Integer) {
        operand.value = QueryValue::ofUnsigned(_token.magnitude);
        operand.value.negative = minus && _token.magnitude != 0;
    } else {
        refuse("a property, a text, a number, TRUE or FALSE");
    }
    advance();
    return operand;
}

PropertyPath QueryParser::parsePath()
{
    PropertyPath path;
    do {
        countTerm();
        path.push_back(parseSegment());
    } while (takeSign("."));
    return path;
}

PathSegment QueryParser::parseSegment()
{
    PathSegment segment;
    segment.name = parseName("the name of a property");
    if (_cql && takeSign("::")) {
        segment.scope = std::move(segment.name);
        segment.name = parseName("the name of a property");
    }
    if (!_cql || !takeSign("[")) return segment;
    if (_token.kind != TokenKind::Integer || _token.magnitude > 65535)
        refuse("the index of an array element, at most 65535");
    segment.index = static_cast<int>(_token.magnitude);
    advance();
    expectSign("]");
    return segment;
}

std::string QueryParser::parseName(const char* what)
{
    if (_token.kind != TokenKind::Word || isReserved(_token.text)) refuse(what);
    std::string name = std::move(_token.text);
    advance();
    return name;
}

void QueryParser::dropPrefix(PropertyPath& path, bool mayBeWhole) const
{
    if (path.empty() || (path.size() == 1 && !mayBeWhole)) return;
    const PathSegment& first = path.front();
    if (first.index < 0 && first.scope.empty() && sameName(first.name, _className)) path.erase(path.begin());
}

void QueryParser::resolve(QueryCondition& condition) const
{
    dropPrefix(condition.left.path, condition.kind == QueryCondition::Kind::IsA);
    dropPrefix(condition.right.path, false);
    for (QueryCondition& part : condition.parts)
        resolve(part);
}

} // namespace KDV::Host
