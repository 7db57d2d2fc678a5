// Holds a CIM-XML document against the rules of its document type and says what is wrong first. Any thread.
#pragma once

#include <string>

namespace KDV::Host::Test {

// Empty if the document is well-formed and valid; else the first mistake with its line.
std::string checkReply(const std::string& document);

} // namespace KDV::Host::Test
