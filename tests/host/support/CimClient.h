// Builds CIM-XML requests and sends them over a RawClient. Texts of requests are written here once, in the ways that
// different clients write them.
#pragma once

#include "hosttest/RawClient.h"

#include <string>
#include <utility>
#include <vector>

namespace KDV::Host::Test {

// "name" -> <IPARAMVALUE NAME="name">content</IPARAMVALUE>
std::string parameter(const std::string& name, const std::string& content);
std::string value(const std::string& text);
std::string className(const std::string& name); // <CLASSNAME NAME=.../>
// <INSTANCENAME> with text keys; a key that begins with "#" is a number.
std::string instanceName(const std::string& ofClass, const std::vector<std::pair<std::string, std::string>>& keys);
std::string classParameter(const std::string& name); // the parameter ClassName

std::string intrinsic(const std::string& method, const std::string& parameters,
                      const std::string& nameSpace = "root/test");
std::string extrinsic(const std::string& method, const std::string& target, const std::string& parameters,
                      const std::string& nameSpace = "root/test");

// A POST with this body and further header lines ("Name: value\r\n").
std::string post(const std::string& body, const std::string& headers = {});

// The code of the ERROR element, 0 if there is none.
unsigned errorCode(const std::string& reply);
std::size_t count(const std::string& text, const std::string& part);
// What stands between the first `begin` and the next `end`; empty if there is none.
std::string between(const std::string& text, const std::string& begin, const std::string& end);

// One request on a connection of its own; the reply must be HTTP 200 and valid CIM-XML, else std::runtime_error.
std::string askHost(std::uint16_t port, const std::string& body);

} // namespace KDV::Host::Test
