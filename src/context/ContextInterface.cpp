#include <renderengine/ContextInterface.h>

#include "context/ContextFactory.h"
#include "context/ContextGL.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

uint8_t contextFlags()
{
    uint8_t flags = ContextShare;
    if (SoPreferences::getBool("KVR_RENDERENGINE_MULTITHREAD", true))
    {
        flags |= ContextMultithread;
    }
    if (SoPreferences::getBool("KVR_OPENGL_DEBUG", false))
    {
        flags |= ContextDebug;
    }
    return flags;
}

ContextInterface* createContext(uint8_t flags)
{
    // OpenGL is the only back end so far. Its init() warns about a renderer value that it does not know.
    return new ContextGL(flags);
}

ContextInterface* ContextInterface::createInstance()
{
    return createContext(contextFlags());
}

} // namespace renderengine
