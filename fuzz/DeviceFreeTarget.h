#pragma once

#include "CommandStream.h"
#include "FuzzedContext.h"

#include <memory>

namespace renderengine::fuzz
{

/// Runs an input on a renderer without a device: its first byte chooses the road, the others are the stream.
template <class Renderer> void runDeviceFree(const uint8_t* bytes, size_t size)
{
    ByteReader reader(bytes, size);
    const bool threaded = reader.flag();
    FuzzedContext context(threaded, std::make_unique<Renderer>(false));
    context.init();
    CommandStream(context, threaded, reader, Limits()).run();
}

} // namespace renderengine::fuzz
