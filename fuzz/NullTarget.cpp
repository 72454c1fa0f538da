#include "DeviceFreeTarget.h"
#include "Target.h"

#include "renderer/RendererNull.h"

int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    renderengine::fuzz::runDeviceFree<renderengine::RendererNull>(bytes, size);
    return 0;
}
