#include "CommandStream.h"
#include "FuzzedContext.h"
#include "SilentLog.h"
#include "Target.h"

#include "gl/RendererGL41.h"
#include "gl/RendererGL46.h"

#include <glbinding/RecordingGL.h>

#include <memory>

namespace
{

using namespace renderengine;

/// The recording keeps the memory of buffers and a draw may need one index for each vertex, so both stay small.
fuzz::Limits recordingLimits()
{
    fuzz::Limits limits;
    limits.bufferSize = 4096;
    limits.drawCount = 4096;
    limits.textureSize = 64;
    return limits;
}

template <class Renderer> void run(fuzz::ByteReader& reader)
{
    glbinding::RecordingGL gl;
    fuzz::FuzzedContext context(false, std::make_unique<Renderer>(false));
    context.init();
    fuzz::CommandStream(context, false, reader, recordingLimits()).run();
    context.getRenderer()->destroy();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    static const bool s_silent = fuzz::silenceLog();
    fuzz::ByteReader reader(bytes, size);
    if (s_silent && reader.flag())
    {
        run<RendererGL46>(reader);
    }
    else
    {
        run<RendererGL41>(reader);
    }
    return 0;
}
