#pragma once

namespace renderengine
{

/// Sets spdlog's default logger up, once in the life of the process; later calls do nothing, even when settings
/// changed. To be called by one thread at a time, before the engine logs.
///
/// - The renderer setting "LOG", in any case: trace level and bare messages on the console; other settings are not
/// read.
/// - `KVR_RENDERENGINE_LOG_TYPE` 0: lines go to SoError::post, as "RenderEngine: [level] message". Any other value: the
///   same lines go to spdlog's console logger.
/// - `KVR_RENDERENGINE_LOG_LEVEL`: "TRACE", "DEBUG", "INFO", "ERROR", "FATAL" or "CRITICAL", in upper case only; all
///   else is warning.
void initLogging();

} // namespace renderengine
