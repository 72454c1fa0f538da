#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace renderengine
{
class ContextInterface;
}

namespace viewer
{

/// Prints the platform, the device, its version, extensions of interest and limits, and every setting that was asked
/// for with its value and default. `platform` is what the engine told of its choice of platform. The context must be
/// initialised; what its info does not hold is asked by a client task.
void printInfo(std::ostream& out, renderengine::ContextInterface& context, const std::vector<std::string>& platform);

} // namespace viewer
