#pragma once

/// GL for clients of the engine: types, enumerants and functions under their usual names. Each call looks up the table
/// of the context that is current on the calling thread, so a client may switch contexts as it likes between calls.
/// The engine's own code includes gl.h instead; a source file includes one of the two.

#ifdef GLBINDING_ENTRY
#error "gl.h and client.h exclude each other"
#endif

#include <glbinding/GLEWContextStruct.h>
#include <glbinding/GLEnums.h>
#include <glbinding/WGLEWContextStruct.h>
#include <renderengine/Export.h>

namespace renderengine
{
// Defined by the engine, see <renderengine/GLUtils.h>.
RENDERENGINE_API GLEWContextStruct* glewGetContext();
RENDERENGINE_API WGLEWContextStruct* wglewGetContext();
} // namespace renderengine

#define GLBINDING_ENTRY(member) (::renderengine::glewGetContext()->member)
#define WGLBINDING_ENTRY(member) (::renderengine::wglewGetContext()->member)
#include <glbinding/GLNames.h>
