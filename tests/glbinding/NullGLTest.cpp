#include <glbinding/NullGL.h>
#include <glbinding/gl.h>

#include <gtest/gtest.h>

namespace
{
using renderengine::glbinding::NullGL;

TEST(NullGL, AnswersLikeADriverInGoodOrder)
{
    const NullGL gl;
    GLuint names[2] = {0, 0};
    glGenBuffers(2, names);
    EXPECT_NE(names[0], 0u);
    EXPECT_EQ(names[1], names[0] + 1);
    EXPECT_EQ(glIsBuffer(names[0]), GL_TRUE);
    EXPECT_EQ(glIsBuffer(0), GL_FALSE);
    const GLuint program = glCreateProgram();
    EXPECT_GT(program, names[1]);
    GLint status = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    EXPECT_EQ(status, GL_TRUE);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    EXPECT_NE(glMapBufferRange(GL_ARRAY_BUFFER, 0, 1024, GL_MAP_WRITE_BIT), nullptr);
    EXPECT_NE(glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0), nullptr);
    EXPECT_EQ(glClientWaitSync(nullptr, 0, 0), static_cast<GLenum>(GL_ALREADY_SIGNALED));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(NullGL, TellsVersionInTableAndQueries)
{
    const NullGL gl;
    EXPECT_EQ(renderengine::glbinding::t_table, NullGL::table());
    EXPECT_EQ(NullGL::table()->majorVersion, 4);
    GLint minor = 0;
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    EXPECT_EQ(minor, 6);
    EXPECT_STREQ(reinterpret_cast<const char*>(glGetString(GL_VERSION)), "4.6 Null");
}

TEST(NullGL, QueriesOfSeveralNumbersLeaveNoneUnwritten)
{
    const NullGL gl;
    GLint viewport[4] = {-1, -1, -1, -1};
    glGetIntegerv(GL_VIEWPORT, viewport);
    for (const GLint value : viewport)
    {
        EXPECT_EQ(value, 0);
    }
}
} // namespace
