#include "indications/Query.h"

#include "hostschema/SchemaName.h"
#include "indications/QueryError.h"
#include "indications/QueryParser.h"

namespace KDV::Host {

QuerySource::~QuerySource() = default;

bool Query::knowsLanguage(std::string_view language) noexcept
{
    return sameName(language, "WQL") || sameName(language, "DMTF:CQL") || sameName(language, "CIM:CQL");
}

Query Query::compile(std::string_view text, std::string_view language)
{
    if (!knowsLanguage(language))
        throw QueryError(CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED, "the query languages are WQL and DMTF:CQL, not \"" +
                                                                       std::string(language.substr(0, 64)) + '"');
    if (text.size() > maxLength)
        throw QueryError(CMPI_RC_ERR_INVALID_QUERY, "a query has at most " + std::to_string(maxLength) +
                                                        " bytes, this one has " + std::to_string(text.size()));
    return QueryParser(text, !sameName(language, "WQL")).parse();
}

namespace {

Truth truth(const QueryCondition& condition, const QuerySource& source);

QueryValue valueOf(const QueryOperand& operand, const QuerySource& source)
{
    if (operand.isPath) return source.value(operand.path);
    QueryValue value = operand.value;
    if (value.kind == ValueClass::Text) value.text = operand.text;
    return value;
}

// And over all parts; Or is the same with the answers turned round.
Truth truthOfAll(const QueryCondition& condition, const QuerySource& source, Truth decisive)
{
    Truth result = negated(decisive);
    for (const QueryCondition& part : condition.parts) {
        const Truth one = truth(part, source);
        if (one == decisive) return one;
        if (one == Truth::Unknown) result = one;
    }
    return result;
}

Truth truth(const QueryCondition& condition, const QuerySource& source)
{
    switch (condition.kind) {
    case QueryCondition::Kind::And:
        return truthOfAll(condition, source, Truth::False);
    case QueryCondition::Kind::Or:
        return truthOfAll(condition, source, Truth::True);
    case QueryCondition::Kind::Not:
        return negated(truth(condition.parts.front(), source));
    case QueryCondition::Kind::Compare:
        return compare(valueOf(condition.left, source), condition.comparison, valueOf(condition.right, source));
    case QueryCondition::Kind::IsNull:
        return truthOf(valueOf(condition.left, source).kind == ValueClass::Null);
    case QueryCondition::Kind::IsA:
        return condition.left.path.empty() ? truthOf(source.isA(condition.className))
                                           : source.isA(condition.left.path, condition.className);
    }
    return Truth::Unknown;
}

void addName(std::vector<std::string>& names, const QueryOperand& operand)
{
    // A property that another class is named for need not be one of the class that is selected from.
    if (operand.isPath && !operand.path.empty() && operand.path.front().scope.empty())
        names.push_back(operand.path.front().name);
}

void addNames(std::vector<std::string>& names, const QueryCondition& condition)
{
    addName(names, condition.left);
    addName(names, condition.right);
    for (const QueryCondition& part : condition.parts)
        addNames(names, part);
}

} // namespace

std::vector<std::string> Query::propertiesNamed() const
{
    std::vector<std::string> names = _selected;
    if (_hasCondition) addNames(names, _condition);
    return names;
}

bool Query::matches(const QuerySource& source) const
{
    return source.isA(_className) && (!_hasCondition || truth(_condition, source) == Truth::True);
}

} // namespace KDV::Host
