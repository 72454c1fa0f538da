#pragma once

namespace renderengine
{

/// Reports a programming error on standard error and ends the process. \p condition is the text that did not hold,
/// \p path the source file without its extension, relative to the root of the sources.
[[noreturn]] void assertionFailed(const char* condition, const char* path, int line);

} // namespace renderengine

/// Checks, in builds with assertions, that CONDITION holds.
#ifdef NDEBUG
#define RENDERENGINE_ASSERT(CONDITION, PATH) static_cast<void>(PATH)
#else
#define RENDERENGINE_ASSERT(CONDITION, PATH) \
    ((CONDITION) ? static_cast<void>(0) : ::renderengine::assertionFailed(#CONDITION, PATH, __LINE__))
#endif
