#pragma once

#include <glbinding/gl.h>

namespace renderengine
{

/// What the present steps share: a program that covers the framebuffer with one triangle made from `gl_VertexID`, and
/// the vertex array that such a draw needs.
namespace fullscreen
{

/// Compiles and links the two texts, takes the program into use and gives "tex0" unit 0 and "depthTex" unit 1. No
/// status is read. The caller owns the program.
GLuint buildProgram(const char* vertexText, const char* fragmentText);

/// Binds array 0. A core context cannot draw without an array: there a temporary one is made, bound and returned.
GLuint bindVertexArray();

/// Deletes what `bindVertexArray` returned; nothing for 0.
void deleteVertexArray(GLuint vertexArray);

/// Binds a 2D texture to the active unit and makes both of its filters nearest.
void bindNearest(GLuint texture);

/// One integer of the context's state.
GLint getInteger(GLenum name);

} // namespace fullscreen

} // namespace renderengine
