#include "renderer/Assertion.h"

#include <cstdio>
#include <cstdlib>

namespace renderengine
{

void assertionFailed(const char* condition, const char* path, int line)
{
    // Not through the log: a message of a process that is about to end must not wait in a sink.
    std::fprintf(stderr, "%s:%d: assertion \"%s\" failed\n", path, line, condition);
    std::fflush(stderr);
    std::abort();
}

} // namespace renderengine
