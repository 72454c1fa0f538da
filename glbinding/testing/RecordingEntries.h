#pragma once

#include "CallText.h"

namespace renderengine::glbinding
{
/// Hands a call to the recording of the calling thread; 0 when it has none.
std::uint64_t recordCall(FunctionIndex function, const CallValue* values);

/// The table whose entries call recordCall.
extern const GLEWContextStruct g_recordingTable;
} // namespace renderengine::glbinding
