// The rules of the CIM-XML document type (DSP0203) that a checker needs: what an element may hold, in which order, and
// its attributes.
#pragma once

#include <string>
#include <vector>

namespace KDV::Host::Test {

struct AttributeRule {
    std::string name;
    bool required;
    std::string values; // alternatives joined by "|"; empty: any text
};

struct ElementRule {
    std::string name;
    std::string content; // "#PCDATA", or an expression over child names with , | ? * + and parentheses; empty: nothing
    std::vector<AttributeRule> attributes;
};

const std::vector<ElementRule>& dtdRules();

} // namespace KDV::Host::Test
