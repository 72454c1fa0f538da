#include "platform/PlatformLayer.h"

#include <atomic>

namespace renderengine
{

namespace
{

std::atomic<PlatformLayer*> s_replacement{nullptr};

} // namespace

PlatformLayer& platform()
{
    PlatformLayer* replacement = s_replacement.load(std::memory_order_acquire);
    return replacement ? *replacement : nativePlatform();
}

void setPlatform(PlatformLayer* layer)
{
    s_replacement.store(layer, std::memory_order_release);
}

} // namespace renderengine
