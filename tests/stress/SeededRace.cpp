// A client that breaks the rule "one thread at a time may use a cache", for the thread checker to find. Nothing orders
// the two uses, so it is found whichever comes first, and neither can do harm.

#include <renderengine/RenderCache.h>

#include <cstdio>
#include <thread>

int main()
{
    renderengine::RenderCache cache;
    std::thread recorder([&cache] { cache.draw(renderengine::DrawHandle(1)); });
    const unsigned long long size = cache.getCommandBufferSize();
    recorder.join();
    std::printf("seeded race: nothing stopped it, size %llu\n", size);
    return 0;
}
