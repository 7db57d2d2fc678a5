// The part of the MOF reader that turns written values into typed ones, checking that they fit.
#include "hostschema/MofParser.h"

namespace KDV::Host {
namespace {

constexpr std::size_t mostElements = 65536;

struct IntegerRange {
    CMPIType type;
    std::uint64_t most;      // largest value
    std::uint64_t mostBelow; // magnitude of the smallest value
};

constexpr IntegerRange ranges[] = {
    {CMPI_uint8, UINT8_MAX, 0},           {CMPI_uint16, UINT16_MAX, 0},         {CMPI_uint32, UINT32_MAX, 0},
    {CMPI_uint64, UINT64_MAX, 0},         {CMPI_sint8, INT8_MAX, 1ull << 7},    {CMPI_sint16, INT16_MAX, 1ull << 15},
    {CMPI_sint32, INT32_MAX, 1ull << 31}, {CMPI_sint64, INT64_MAX, 1ull << 63},
};

bool storeInteger(const MofToken& token, CMPIType type, CMPIValue& value)
{
    for (const IntegerRange& range : ranges) {
        if (range.type != type) continue;
        if (token.number > (token.negative ? range.mostBelow : range.most)) return false;
        const std::uint64_t bits = token.negative ? 0 - token.number : token.number;
        switch (type & 0xf0) {
        case 0x80:
        case 0xc0:
            value.uint8 = static_cast<CMPIUint8>(bits);
            break;
        case 0x90:
        case 0xd0:
            value.uint16 = static_cast<CMPIUint16>(bits);
            break;
        case 0xa0:
        case 0xe0:
            value.uint32 = static_cast<CMPIUint32>(bits);
            break;
        default:
            value.uint64 = bits;
        }
        return true;
    }
    return false;
}

bool isWordToken(const MofToken& token, std::string_view word)
{
    return token.kind == MofTokenKind::Identifier && sameName(token.text, word);
}

const char* kindWanted(CMPIType type)
{
    switch (type) {
    case CMPI_boolean:
        return "TRUE or FALSE";
    case CMPI_string:
        return "a string";
    case CMPI_char16:
        return "a character";
    case CMPI_dateTime:
        return "a datetime in quotes (25 characters)";
    case CMPI_ref:
        return "an object path in quotes";
    case CMPI_real32:
    case CMPI_real64:
        return "a real number";
    default:
        return "an integer that fits the type";
    }
}

} // namespace

// One value; adjacent strings are one.
MofToken MofParser::scalar()
{
    MofToken token = _token;
    switch (_token.kind) {
    case MofTokenKind::String:
        advance();
        for (; _token.kind == MofTokenKind::String; advance())
            token.text += _token.text;
        return token;
    case MofTokenKind::Integer:
    case MofTokenKind::Real:
    case MofTokenKind::Character:
        advance();
        return token;
    case MofTokenKind::Identifier:
        if (isWord("true") || isWord("false") || isWord("null")) {
            advance();
            return token;
        }
        [[fallthrough]];
    default:
        expected("a value");
    }
}

MofParser::Literal MofParser::literal()
{
    Literal result;
    if (!takeIfSymbol('{')) {
        result.tokens.push_back(scalar());
        result.isNull = isWordToken(result.tokens.back(), "null");
        return result;
    }
    result.isArray = true;
    if (takeIfSymbol('}')) return result;
    do {
        if (result.tokens.size() >= mostElements) expected("at most " + std::to_string(mostElements) + " elements");
        result.tokens.push_back(scalar());
    } while (takeIfSymbol(','));
    takeSymbol('}');
    return result;
}

SchemaValue MofParser::typed(const MofToken& token, CMPIType type) const
{
    SchemaValue value;
    value.type = type;
    if (isWordToken(token, "null")) return value;
    value.isNull = false;
    bool fits = false;
    switch (type) {
    case CMPI_boolean:
        fits = token.kind == MofTokenKind::Identifier;
        value.number.boolean = isWordToken(token, "true");
        break;
    case CMPI_string:
    case CMPI_ref:
    case CMPI_instance:
    case CMPI_dateTime:
        fits = token.kind == MofTokenKind::String && (type != CMPI_dateTime || token.text.size() == 25);
        value.text = token.text;
        break;
    case CMPI_char16:
        fits = token.kind == MofTokenKind::Character;
        value.number.char16 = static_cast<CMPIChar16>(token.number);
        break;
    case CMPI_real32:
    case CMPI_real64: {
        fits = token.kind == MofTokenKind::Real || token.kind == MofTokenKind::Integer;
        const double whole = static_cast<double>(token.number);
        const double real = token.kind == MofTokenKind::Real ? token.real : token.negative ? -whole : whole;
        if (type == CMPI_real64)
            value.number.real64 = real;
        else
            value.number.real32 = static_cast<CMPIReal32>(real);
        break;
    }
    default:
        fits = token.kind == MofTokenKind::Integer && storeInteger(token, type, value.number);
    }
    if (!fits) _lexer.fail(token.line, std::string("expected ") + kindWanted(type) + ", found " + token.shown());
    return value;
}

SchemaValue MofParser::typed(const Literal& literal, CMPIType type) const
{
    SchemaValue value;
    value.type = type;
    if (literal.isNull) return value;
    if (literal.isArray != ((type & CMPI_ARRAY) != 0))
        _lexer.fail(literal.tokens.empty() ? _token.line : literal.tokens.front().line,
                    literal.isArray ? "expected one value, found a list" : "expected a list of values in braces");
    if (!literal.isArray) return typed(literal.tokens.front(), type);
    value.isNull = false;
    for (const MofToken& token : literal.tokens)
        value.elements.push_back(typed(token, static_cast<CMPIType>(type & ~CMPI_ARRAY)));
    return value;
}

// The type that a value of an undeclared qualifier shows by itself.
SchemaValue MofParser::inferred(const Literal& literal) const
{
    CMPIType type = CMPI_string;
    if (!literal.tokens.empty()) {
        const MofToken& first = literal.tokens.front();
        if (first.kind == MofTokenKind::Integer)
            type = CMPI_sint64;
        else if (first.kind == MofTokenKind::Real)
            type = CMPI_real64;
        else if (first.kind == MofTokenKind::Character)
            type = CMPI_char16;
        else if (first.kind == MofTokenKind::Identifier && !isWordToken(first, "null"))
            type = CMPI_boolean;
    }
    return typed(literal, static_cast<CMPIType>(literal.isArray ? type | CMPI_ARRAY : type));
}

} // namespace KDV::Host
