#pragma once

#include <renderengine/ContextInfo.h>

namespace renderengine
{

/// Reads version, vendor, extensions and limits of the GL context that is current on the calling thread. A version
/// below 4.1 is logged as an error and reported as it is.
ContextInfo probeCurrentContext();

} // namespace renderengine
