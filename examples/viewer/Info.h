#pragma once

#include <iosfwd>

namespace renderengine
{
struct ContextInfo;
}

namespace viewer
{

/// Prints the device, its version and limits, and every setting that was asked for with its value and default.
void printInfo(std::ostream& out, const renderengine::ContextInfo& info);

} // namespace viewer
