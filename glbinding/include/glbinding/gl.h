#pragma once

/// GL for the engine's own code: types, enumerants and functions under their usual names. A function's name is a macro
/// over the calling thread's table (CurrentTable.h), so no GL library is linked and no two contexts share a function.
/// Clients of the engine include client.h instead; a source file includes one of the two.

#ifdef GLBINDING_ENTRY
#error "gl.h and client.h exclude each other"
#endif

#include <glbinding/CurrentTable.h>
#include <glbinding/GLEnums.h>

#define GLBINDING_ENTRY(member) (::renderengine::glbinding::t_table->member)
#include <glbinding/GLNames.h>
