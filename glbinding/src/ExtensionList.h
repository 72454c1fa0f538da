#pragma once

#include <set>
#include <string>

namespace renderengine::glbinding
{
/// Splits a list of extension names at its blanks; null is an empty list.
std::set<std::string> splitExtensions(const char* text);
} // namespace renderengine::glbinding
