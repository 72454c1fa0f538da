// Streams on a real device: the driver that the system gives, which is llvmpipe where there is no GPU.

#include "CommandStream.h"
#include "SilentLog.h"
#include "Target.h"

#include "context/ContextFactory.h"
#include "context/ContextGL.h"
#include "renderer/RendererBase.h"

#include <kavelor/SoPreferences.h>

namespace
{

using namespace renderengine;

/// The driver draws and stores for real: what it would do is kept small, or so large that it refuses.
fuzz::Limits deviceLimits()
{
    fuzz::Limits limits;
    limits.bufferSize = 65536;
    limits.drawCount = 64;
    limits.textureSize = 48;
    limits.refusedTextureSize = 16385;
    limits.groupCount = 4;
    limits.refusedGroupCount = 65536;
    limits.validShaders = true;
    return limits;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    static const bool s_silent = fuzz::silenceLog();
    fuzz::ByteReader reader(bytes, size);
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", s_silent && reader.flag() ? "GL" : "GL41");
    // A context of its own for each input, so that a finding depends on nothing but its bytes.
    ContextGL context(ContextShare);
    context.init();
    fuzz::CommandStream(context, false, reader, deviceLimits()).run();
    if (context.makeCurrent())
    {
        context.getRenderer()->destroy();
        context.doneCurrent();
    }
    return 0;
}
