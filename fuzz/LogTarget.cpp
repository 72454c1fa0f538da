#include "DeviceFreeTarget.h"
#include "SilentLog.h"
#include "Target.h"

#include "renderer/RendererLog.h"

int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    static const bool s_silent = renderengine::fuzz::silenceLog();
    if (s_silent)
    {
        renderengine::fuzz::runDeviceFree<renderengine::RendererLog>(bytes, size);
    }
    return 0;
}
