// The links of one small machine: what the .rows files beside this file say is published for it, and what a provider
// answers.
//
// A .rows file lists every association of its class in order of creation, each after a line "link", with its properties
// in order: type, name, value. An end is written as class and keys; its host and namespace are those of every path, and
// $host stands for the local host's name.
#pragma once

#include "harness/Requests.h"
#include "machine/TestMachine.h"

#include <string>
#include <vector>

namespace KDV::Test {

// Two adapters, the second bare. The first has a box, a mirror with a spare, a volume without, and disks of every kind.
void buildGoldenMachine(TestMachine& machine);

using PublishedRows = std::vector<std::string>; // "type name value"

std::vector<PublishedRows> expectedLinks(const std::string& className); // throws without a file
std::vector<PublishedRows> publishedLinks(const Requests& ask, const std::string& className);

// Every association class that the schema has for the provider.
std::vector<std::string> associationClasses();

// The name of an instance from the text of its path.
ObjectName nameOf(const std::string& path);

} // namespace KDV::Test
