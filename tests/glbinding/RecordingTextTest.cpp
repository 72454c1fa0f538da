#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <gtest/gtest.h>

namespace
{
using Texts = std::vector<std::string>;

class RecordingText : public ::testing::Test
{
protected:
    static const void* offset(std::uintptr_t bytes) { return reinterpret_cast<const void*>(bytes); }

    renderengine::glbinding::RecordingGL gl;
};

TEST_F(RecordingText, EnumerantsPrintAsTheParameterMeansThem)
{
    glEnable(GL_CULL_FACE);
    glDrawArrays(GL_POINTS, 0, 3);
    glDrawBuffer(GL_NONE);
    glBlendFunc(GL_ONE, GL_ZERO);
    glBegin(GL_LINES);
    glStencilOp(GL_ZERO, GL_KEEP, GL_REPLACE);
    glActiveTexture(GL_TEXTURE0 + 5);
    glDrawBuffer(GL_COLOR_ATTACHMENT0 + 3);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glEnable(GL_CULL_FACE)", "glDrawArrays(GL_POINTS, 0, 3)", "glDrawBuffer(GL_NONE)",
                     "glBlendFunc(GL_ONE, GL_ZERO)", "glBegin(GL_LINES)", "glStencilOp(GL_ZERO, GL_KEEP, GL_REPLACE)",
                     "glActiveTexture(GL_TEXTURE5)", "glDrawBuffer(GL_COLOR_ATTACHMENT3)"}));
}

TEST_F(RecordingText, NameOfTheCoreProfileIsPreferred)
{
    glEnable(GL_CLIP_PLANE0);
    glEnable(GL_VERTEX_PROGRAM_POINT_SIZE);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glEnable(GL_CLIP_DISTANCE0)", "glEnable(GL_PROGRAM_POINT_SIZE)"}));
}

TEST_F(RecordingText, UnknownEnumerantPrintsAsNumber)
{
    glEnable(0x2020);
    glEnable(7);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glEnable(0x2020)", "glEnable(7)"}));
}

TEST_F(RecordingText, BitsAreJoinedInAlphabeticalOrder)
{
    glClear(GL_STENCIL_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT);
    glClear(0);
    glClear(GL_COLOR_BUFFER_BIT | 0x80000000u);
    glMapBufferRange(GL_ARRAY_BUFFER, 4, 8, GL_MAP_WRITE_BIT | GL_MAP_READ_BIT);
    glMemoryBarrier(GL_ALL_BARRIER_BITS);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT)",
                                     "glClear(0)", "glClear(GL_COLOR_BUFFER_BIT | 0x80000000)",
                                     "glMapBufferRange(GL_ARRAY_BUFFER, 4, 8, GL_MAP_READ_BIT | GL_MAP_WRITE_BIT)",
                                     "glMemoryBarrier(GL_ALL_BARRIER_BITS)", "glPushAttrib(GL_ALL_ATTRIB_BITS)"}));
}

TEST_F(RecordingText, NumbersPrintAsTheyAre)
{
    glDepthMask(GL_TRUE);
    glColorMaski(2, GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    glUniform1i(-1, -7);
    glUniform1f(3, 0.1f);
    glClearDepth(0.1);
    glPolygonOffset(1.0f, 1e-20f);
    glWaitSync(nullptr, 0, GL_TIMEOUT_IGNORED);
    glPrimitiveRestartIndex(0xFFFFFFFFu);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glDepthMask(GL_TRUE)", "glColorMaski(2, GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE)",
                     "glUniform1i(-1, -7)", "glUniform1f(3, 0.1)", "glClearDepth(0.1)", "glPolygonOffset(1, 1e-20)",
                     "glWaitSync(null, 0, 18446744073709551615)", "glPrimitiveRestartIndex(4294967295)"}));
}

TEST_F(RecordingText, IntegersThatHoldEnumerantsPrintByName)
{
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 9729);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_NONE);
    glSamplerParameteri(1, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, static_cast<GLfloat>(GL_DECAL));
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 9729)",
                     "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_NONE)",
                     "glSamplerParameteri(1, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)",
                     "glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE)",
                     "glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP)",
                     "glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL)",
                     "glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1)", "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)"}));
}

TEST_F(RecordingText, PointersPrintAsNullOffsetOrPointer)
{
    const float data[3] = {};
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_INT, nullptr);
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, offset(12));
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 12, data);
    glBufferData(GL_ARRAY_BUFFER, 12, data, GL_STATIC_DRAW);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_INT, null)",
                                     "glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, 12)",
                                     "glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 12, <pointer>)",
                                     "glBufferData(GL_ARRAY_BUFFER, 12, <pointer>, GL_STATIC_DRAW)"}));
}

TEST_F(RecordingText, ArraysOfKnownLengthPrintTheirElements)
{
    const GLuint names[2] = {1, 2};
    const GLfloat color[4] = {1, 0.5f, 0.25f, 0};
    const GLint swizzle[4] = {GL_RED, GL_ZERO, GL_ONE, GL_ALPHA};
    const GLenum buffers[2] = {GL_COLOR_ATTACHMENT0, GL_NONE};
    const GLsizei counts[2] = {3, 6};
    const void* offsets[2] = {nullptr, offset(12)};
    const GLint vertices[2] = {0, -4};
    glDeleteBuffers(2, names);
    glUniform2fv(5, 2, color);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, color);
    glLightfv(GL_LIGHT1, GL_SPOT_DIRECTION, color);
    glClearBufferfv(GL_COLOR, 0, color);
    glClearBufferfv(GL_DEPTH, 0, color);
    glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
    glDrawBuffers(2, buffers);
    glMultiDrawElementsBaseVertex(GL_TRIANGLES, counts, GL_UNSIGNED_INT, offsets, 2, vertices);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glDeleteBuffers(2, {1, 2})", "glUniform2fv(5, 2, {1, 0.5, 0.25, 0})",
                     "glLightfv(GL_LIGHT1, GL_DIFFUSE, {1, 0.5, 0.25, 0})",
                     "glLightfv(GL_LIGHT1, GL_SPOT_DIRECTION, {1, 0.5, 0.25})",
                     "glClearBufferfv(GL_COLOR, 0, {1, 0.5, 0.25, 0})", "glClearBufferfv(GL_DEPTH, 0, {1})",
                     "glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, {GL_RED, GL_ZERO, GL_ONE, GL_ALPHA})",
                     "glDrawBuffers(2, {GL_COLOR_ATTACHMENT0, GL_NONE})",
                     "glMultiDrawElementsBaseVertex(GL_TRIANGLES, {3, 6}, GL_UNSIGNED_INT, {null, 12}, 2, {0, -4})"}));
}

TEST_F(RecordingText, LongArraysAreCut)
{
    const std::vector<GLint> values(65, 7);
    glUniform1iv(0, 65, values.data());
    const std::string text = gl.calls().at(0);
    EXPECT_EQ(text.substr(0, 24), "glUniform1iv(0, 65, {7, ");
    EXPECT_EQ(text.substr(text.size() - 10), ", 7, ...})");
}

TEST_F(RecordingText, StringsAreQuoted)
{
    const GLchar* sources[2] = {"void main()\n", "{}rest"};
    const GLint lengths[2] = {-1, 2};
    glGetUniformLocation(1, "a\"b");
    glShaderSource(1, 2, sources, lengths);
    glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, 3, "grouped");
    glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, -1, "whole");
    EXPECT_EQ(gl.takeCalls(), (Texts{"glGetUniformLocation(1, \"a\\\"b\")",
                                     "glShaderSource(1, 2, {\"void main()\\n\", \"{}\"}, {-1, 2})",
                                     "glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, 3, \"gro\")",
                                     "glPushDebugGroup(GL_DEBUG_SOURCE_THIRD_PARTY, 1, -1, \"whole\")"}));
}

TEST_F(RecordingText, MadeNamesAreToldByTheCall)
{
    GLuint names[2] = {};
    glGenBuffers(1, names);
    glGenBuffers(2, names);
    glCreateShader(GL_VERTEX_SHADER);
    glCreateProgram();
    const GLsync sync = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    glDeleteSync(sync);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glGenBuffers(1, -> 1)", "glGenBuffers(2, -> {2, 3})",
                                     "glCreateShader(GL_VERTEX_SHADER) -> 1", "glCreateProgram() -> 2",
                                     "glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) -> 1", "glDeleteSync(<sync 1>)"}));
}

TEST_F(RecordingText, WrittenAnswersAreNotPrinted)
{
    GLint value = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &value);
    EXPECT_EQ(gl.takeCalls(), Texts{"glGetIntegerv(GL_MAX_TEXTURE_SIZE, <pointer>)"});
}

TEST_F(RecordingText, CallsAreFoundByPrefix)
{
    glBindBuffer(GL_ARRAY_BUFFER, 1);
    glBindBufferBase(GL_UNIFORM_BUFFER, 0, 2);
    glFlush();
    EXPECT_EQ(gl.callsMatching("glBindBuffer("), Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)"});
    EXPECT_EQ(gl.countOf("glBindBuffer"), 2u);
    gl.clear();
    EXPECT_EQ(gl.calls(), Texts{});
}

TEST_F(RecordingText, RecordingStopsAndContinues)
{
    gl.setRecording(false);
    glBindBuffer(GL_ARRAY_BUFFER, 1);
    gl.setRecording(true);
    GLint bound = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &bound);
    EXPECT_EQ(bound, 1);
    EXPECT_EQ(gl.calls().size(), 1u);
}
} // namespace
