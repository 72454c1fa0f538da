#include "support/ProcessUsage.h"

// The order matters: the second needs the first.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

namespace renderengine::testing
{

ProcessUsage readProcessUsage()
{
    ProcessUsage usage;
    PROCESS_MEMORY_COUNTERS memory = {};
    memory.cb = sizeof(memory);
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory)))
    {
        usage.memory = memory.PagefileUsage;
    }
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles))
    {
        usage.handles = handles;
    }
    usage.windowObjects =
        GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS) + GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    return usage;
}

} // namespace renderengine::testing
