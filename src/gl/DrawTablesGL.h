#pragma once

#include "gl/GLTables.h"

#include <glbinding/gl.h>

#include <cstdint>

namespace renderengine
{

struct OverallAttribute;

namespace gltables
{

/// `DrawRange::primitive`.
inline constexpr GLTable primitiveModes("primitive type",
                                        std::array<GLTableRow, 11>{{{0, "points", GL_POINTS},
                                                                    {1, "lines", GL_LINES},
                                                                    {2, "line loop", GL_LINE_LOOP},
                                                                    {3, "line strip", GL_LINE_STRIP},
                                                                    {4, "triangles", GL_TRIANGLES},
                                                                    {5, "triangle strip", GL_TRIANGLE_STRIP},
                                                                    {6, "triangle fan", GL_TRIANGLE_FAN},
                                                                    {7, "patches", GL_PATCHES},
                                                                    {8, "quads", GL_QUADS},
                                                                    {9, "quad strip", GL_QUAD_STRIP},
                                                                    {10, "polygon", GL_POLYGON}}});

/// The type of a query.
inline constexpr GLTable queryTargets(
    "query type",
    std::array<GLTableRow, 7>{{{0, "samples passed", GL_SAMPLES_PASSED},
                               {1, "any samples passed", GL_ANY_SAMPLES_PASSED},
                               {2, "any samples passed conservative", GL_ANY_SAMPLES_PASSED_CONSERVATIVE},
                               {3, "primitives generated", GL_PRIMITIVES_GENERATED},
                               {4, "transform feedback primitives written", GL_TRANSFORM_FEEDBACK_PRIMITIVES_WRITTEN},
                               {5, "time elapsed", GL_TIME_ELAPSED},
                               {6, "timestamp", GL_TIMESTAMP}}});

/// `TextureImageProperties::access`. 3 has no meaning of its own.
inline constexpr GLTable imageAccesses("image access", std::array<GLTableRow, 4>{{{0, "read", GL_READ_ONLY},
                                                                                  {1, "write", GL_WRITE_ONLY},
                                                                                  {2, "both", GL_READ_WRITE},
                                                                                  {3, "both", GL_READ_WRITE}}});

static_assert(primitiveModes.isInOrder() && queryTargets.isInOrder() && imageAccesses.isInOrder(),
              "a row does not stand at the place of its index");

} // namespace gltables

/// Sends a constant vertex attribute with the `glVertexAttrib` entry that its type, component count and normalised flag
/// select. A combination without an entry is skipped in silence.
void applyOverallAttribute(GLuint location, const OverallAttribute& attribute);

} // namespace renderengine
