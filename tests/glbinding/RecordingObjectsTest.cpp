#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <thread>

namespace
{
using renderengine::glbinding::RecordingGL;
using Texts = std::vector<std::string>;

class RecordingObjects : public ::testing::Test
{
protected:
    RecordingGL gl;
};

TEST_F(RecordingObjects, NamesCountUpForEachKindOnItsOwn)
{
    GLuint buffer = 0;
    GLuint texture = 0;
    glGenBuffers(1, &buffer);
    glGenTextures(1, &texture);
    EXPECT_EQ(buffer, 1u);
    EXPECT_EQ(texture, 1u);
    glGenTextures(1, &texture);
    EXPECT_EQ(texture, 2u);
    EXPECT_EQ(glIsTexture(2), GL_TRUE);
    EXPECT_EQ(glIsTexture(3), GL_FALSE);
}

TEST_F(RecordingObjects, DeletedNamesAreNotGivenAgain)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glDeleteBuffers(1, &name);
    EXPECT_EQ(glIsBuffer(name), GL_FALSE);
    glGenBuffers(1, &name);
    EXPECT_EQ(name, 2u);
}

TEST_F(RecordingObjects, BalanceOfMadeAndDeletedIsKept)
{
    GLuint names[3] = {};
    glGenTextures(3, names);
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    const GLuint program = glCreateProgram();
    const GLsync sync = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    EXPECT_EQ(gl.made("Texture"), 3u);
    EXPECT_EQ(gl.liveObjects(), (Texts{"Program 2", "Shader 1", "Sync 1", "Texture 1", "Texture 2", "Texture 3"}));
    glDeleteTextures(2, names);
    glDeleteTextures(1, names);
    const GLuint none = 0;
    glDeleteTextures(1, &none);
    EXPECT_EQ(gl.deleted("Texture"), 2u);
    EXPECT_EQ(gl.live("Texture"), 1u);
    glDeleteTextures(1, names + 2);
    glDeleteShader(shader);
    glDeleteProgram(program);
    glDeleteSync(sync);
    EXPECT_EQ(gl.liveObjects(), Texts{});
    EXPECT_THROW(gl.made("Textures"), std::invalid_argument);
}

TEST_F(RecordingObjects, BufferKeepsWhatWasUploaded)
{
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    const char data[4] = {1, 2, 3, 4};
    glBufferData(GL_ARRAY_BUFFER, 4, data, GL_STATIC_DRAW);
    glBufferSubData(GL_ARRAY_BUFFER, 1, 2, data);
    GLint64 size = 0;
    glGetBufferParameteri64v(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(gl.uploadedBytes(), 6u);
    EXPECT_EQ(gl.bufferContent(buffer),
              (std::vector<std::byte>{std::byte{1}, std::byte{1}, std::byte{2}, std::byte{4}}));
    EXPECT_TRUE(gl.bufferContent(99).empty());
}

TEST_F(RecordingObjects, MappedMemoryIsTheBuffers)
{
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_COPY_WRITE_BUFFER, buffer);
    glBufferData(GL_COPY_WRITE_BUFFER, 8, nullptr, GL_DYNAMIC_DRAW);
    void* memory = glMapBufferRange(GL_COPY_WRITE_BUFFER, 4, 4, GL_MAP_WRITE_BIT);
    ASSERT_NE(memory, nullptr);
    std::memset(memory, 7, 4);
    EXPECT_EQ(glMapBuffer(GL_COPY_WRITE_BUFFER, GL_READ_ONLY), nullptr) << "a second mapping";
    EXPECT_EQ(glUnmapBuffer(GL_COPY_WRITE_BUFFER), GL_TRUE);
    EXPECT_EQ(glUnmapBuffer(GL_COPY_WRITE_BUFFER), GL_FALSE);
    EXPECT_EQ(gl.bufferContent(buffer)[3], std::byte{0});
    EXPECT_EQ(gl.bufferContent(buffer)[4], std::byte{7});
    EXPECT_EQ(glMapBufferRange(GL_COPY_WRITE_BUFFER, 4, 5, GL_MAP_WRITE_BIT), nullptr) << "beyond the end";
}

TEST_F(RecordingObjects, CopiesMoveContentBetweenBuffers)
{
    GLuint buffers[2] = {};
    glGenBuffers(2, buffers);
    glBindBuffer(GL_COPY_READ_BUFFER, buffers[0]);
    glBindBuffer(GL_COPY_WRITE_BUFFER, buffers[1]);
    glBufferData(GL_COPY_READ_BUFFER, 4, "abcd", GL_STATIC_DRAW);
    glBufferData(GL_COPY_WRITE_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 1, 2, 2);
    char content[4] = {};
    glGetBufferSubData(GL_COPY_WRITE_BUFFER, 0, 4, content);
    EXPECT_EQ(std::string(content, 4), std::string("\0\0bc", 4));
}

TEST_F(RecordingObjects, ShaderKeepsItsSource)
{
    const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
    const GLchar* sources[2] = {"#version 410\n", "void main() {}// cut"};
    const GLint lengths[2] = {-1, 14};
    glShaderSource(shader, 2, sources, lengths);
    EXPECT_EQ(gl.shaderSource(shader), "#version 410\nvoid main() {}");
    EXPECT_EQ(gl.shaderSource(99), "");
}

TEST_F(RecordingObjects, DebugCallbackReceivesPostedMessages)
{
    EXPECT_FALSE(gl.postDebugMessage(GL_DEBUG_SOURCE_API, GL_DEBUG_TYPE_ERROR, 1, GL_DEBUG_SEVERITY_HIGH, "lost"));
    std::string received;
    const auto callback = [](GLenum, GLenum, GLuint id, GLenum, GLsizei length, const GLchar* message, const void* user)
    {
        const std::string text(message, static_cast<std::size_t>(length));
        *static_cast<std::string*>(const_cast<void*>(user)) = std::to_string(id) + " " + text;
    };
    glDebugMessageCallback(callback, &received);
    EXPECT_TRUE(gl.postDebugMessage(GL_DEBUG_SOURCE_API, GL_DEBUG_TYPE_ERROR, 5, GL_DEBUG_SEVERITY_HIGH, "heard"));
    EXPECT_EQ(received, "5 heard");
}

TEST_F(RecordingObjects, InnerRecordingTakesTheCallsUntilItEnds)
{
    {
        const RecordingGL inner;
        glFlush();
        EXPECT_EQ(inner.calls(), Texts{"glFlush()"});
    }
    glFinish();
    EXPECT_EQ(gl.calls(), Texts{"glFinish()"});
}

TEST_F(RecordingObjects, OtherThreadsRecordOnlyWhenAttached)
{
    std::thread(
        [this]
        {
            glFlush();
            const RecordingGL::Attach attach(gl);
            glFinish();
        })
        .join();
    EXPECT_EQ(gl.calls(), Texts{"glFinish()"});
}

TEST_F(RecordingObjects, ServesThreadsThatFindItsTableByTheResolver)
{
    EXPECT_EQ(RecordingGL::table(), renderengine::glbinding::t_table);
    gl.serveAllThreads();
    renderengine::glbinding::setTableResolver(&RecordingGL::table);
    const auto work = []
    {
        renderengine::glbinding::refreshCurrentTable();
        for (int call = 0; call < 100; ++call)
        {
            glFlush();
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    renderengine::glbinding::setTableResolver(nullptr);
    EXPECT_EQ(gl.countOf("glFlush()"), 200u);
}
} // namespace
