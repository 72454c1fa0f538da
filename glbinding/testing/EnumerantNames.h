#pragma once

#include <cstdint>
#include <string>

namespace renderengine::glbinding
{
/// The name of an enumerant as a member of the group (of groupTable, 0 for any); the number when it has none.
std::string enumerantName(std::uint64_t value, std::uint8_t group);

/// The names of the bits, in alphabetical order; what has no name is added as a hexadecimal number.
std::string bitNames(std::uint64_t value, std::uint8_t group);

/// The name of what a texture, sampler, texture environment or similar parameter is set to; the decimal number for
/// those parameters that hold no enumerant.
std::string parameterValueName(std::int64_t value, std::int64_t parameterName);
} // namespace renderengine::glbinding
