#pragma once

#include "context/ContextGL.h"
#include "renderer/RendererBase.h"

#include <gtest/gtest.h>

namespace renderengine::testing
{

/// Deletes the GL objects of the renderer of a context without a render thread. They would die with the context, but
/// then nobody could tell them from objects that the engine forgot.
inline void deleteObjects(ContextGL& context)
{
    ASSERT_TRUE(context.makeCurrent());
    context.getRenderer()->destroy();
    context.doneCurrent();
}

} // namespace renderengine::testing
