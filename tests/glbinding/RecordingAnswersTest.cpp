#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
using renderengine::glbinding::RecordingGL;
using renderengine::glbinding::ShaderReflection;
using renderengine::glbinding::t_table;

class RecordingAnswers : public ::testing::Test
{
protected:
    static GLint get(GLenum name)
    {
        GLint value = -1;
        glGetIntegerv(name, &value);
        return value;
    }

    static std::string text(GLenum name)
    {
        const GLubyte* value = glGetString(name);
        return value != nullptr ? reinterpret_cast<const char*>(value) : "null";
    }

    static ShaderReflection sampleReflection()
    {
        ShaderReflection reflection;
        reflection.attributes = {{"position", GL_FLOAT_VEC3}, {"normal", GL_FLOAT_VEC3, 1, 7}};
        reflection.uniforms = {{"color", GL_FLOAT_VEC4},
                               {"lights[0]", GL_FLOAT_VEC4, 4},
                               {"time", GL_FLOAT},
                               {"Block.member", GL_FLOAT, 1, -1}};
        reflection.uniformBlocks = {{"Camera", 0, 128, 0, 3}};
        reflection.shaderStorageBlocks = {{"Instances", 0, 0, 0, 5}, {"DrawsIndirectBuffer"}};
        return reflection;
    }

    RecordingGL gl;
};

TEST_F(RecordingAnswers, TellsVersionVendorAndExtensions)
{
    EXPECT_EQ(text(GL_VENDOR), "Recording");
    EXPECT_EQ(text(GL_VERSION), "4.6 Recording");
    EXPECT_EQ(get(GL_MAJOR_VERSION), 4);
    EXPECT_EQ(get(GL_MINOR_VERSION), 6);
    EXPECT_EQ(get(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_TRUE(t_table->kvr_common__GLEW_ARB_base_instance);
    gl.setVersion(4, 1);
    gl.setExtensions({"GL_KHR_debug", "GL_own"});
    gl.answerString(GL_VENDOR, "NVIDIA Corporation");
    EXPECT_EQ(text(GL_VENDOR), "NVIDIA Corporation");
    EXPECT_EQ(text(GL_SHADING_LANGUAGE_VERSION), "4.10");
    EXPECT_EQ(get(GL_MINOR_VERSION), 1);
    EXPECT_EQ(t_table->minorVersion, 1);
    EXPECT_EQ(get(GL_NUM_EXTENSIONS), 2);
    EXPECT_STREQ(reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, 1)), "GL_own");
    EXPECT_EQ(glGetStringi(GL_EXTENSIONS, 2), nullptr);
    EXPECT_FALSE(t_table->kvr_common__GLEW_ARB_base_instance);
    EXPECT_TRUE(t_table->kvr_common__GLEW_KHR_debug);
}

TEST_F(RecordingAnswers, BindingsAreFollowed)
{
    GLuint framebuffers[2] = {};
    glGenFramebuffers(2, framebuffers);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[0]);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffers[1]);
    EXPECT_EQ(get(GL_DRAW_FRAMEBUFFER_BINDING), 1);
    EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), 1);
    EXPECT_EQ(get(GL_READ_FRAMEBUFFER_BINDING), 2);
    glDeleteFramebuffers(1, framebuffers);
    EXPECT_EQ(get(GL_DRAW_FRAMEBUFFER_BINDING), 0);
    EXPECT_EQ(get(GL_READ_FRAMEBUFFER_BINDING), 2);
    glUseProgram(9);
    EXPECT_EQ(get(GL_CURRENT_PROGRAM), 9);
    glBindBufferBase(GL_UNIFORM_BUFFER, 3, 8);
    EXPECT_EQ(get(GL_UNIFORM_BUFFER_BINDING), 8);
    GLint indexed = 0;
    glGetIntegeri_v(GL_UNIFORM_BUFFER_BINDING, 3, &indexed);
    EXPECT_EQ(indexed, 8);
}

TEST_F(RecordingAnswers, TextureBindingsBelongToTheirUnit)
{
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D_ARRAY, texture);
    EXPECT_EQ(get(GL_ACTIVE_TEXTURE), GL_TEXTURE3);
    EXPECT_EQ(get(GL_TEXTURE_BINDING_2D_ARRAY), 1);
    EXPECT_EQ(get(GL_TEXTURE_BINDING_2D), 0);
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(get(GL_TEXTURE_BINDING_2D_ARRAY), 0);
    glDeleteTextures(1, &texture);
    glActiveTexture(GL_TEXTURE3);
    EXPECT_EQ(get(GL_TEXTURE_BINDING_2D_ARRAY), 0);
}

TEST_F(RecordingAnswers, ElementBufferBelongsToTheVertexArray)
{
    glBindVertexArray(1);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 5);
    glBindVertexArray(2);
    EXPECT_EQ(get(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
    EXPECT_EQ(get(GL_VERTEX_ARRAY_BINDING), 2);
    glBindVertexArray(1);
    EXPECT_EQ(get(GL_ELEMENT_ARRAY_BUFFER_BINDING), 5);
}

TEST_F(RecordingAnswers, ValuesAndCapabilitiesAreFollowed)
{
    GLint numbers[4] = {};
    glViewport(1, 2, 30, 40);
    glGetIntegerv(GL_VIEWPORT, numbers);
    EXPECT_EQ(numbers[3], 40);
    GLfloat color[4] = {};
    glClearColor(0.5f, 0, 0, 1);
    glGetFloatv(GL_COLOR_CLEAR_VALUE, color);
    EXPECT_EQ(color[0], 0.5f);
    EXPECT_EQ(get(GL_DEPTH_FUNC), GL_LESS);
    glDepthFunc(GL_GEQUAL);
    EXPECT_EQ(get(GL_DEPTH_FUNC), GL_GEQUAL);
    GLboolean mask[4] = {};
    glColorMaski(1, GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    glGetBooleani_v(GL_COLOR_WRITEMASK, 1, mask);
    EXPECT_EQ(mask[0], GL_TRUE);
    EXPECT_EQ(mask[1], GL_FALSE);
    glGetBooleani_v(GL_COLOR_WRITEMASK, 0, mask);
    EXPECT_EQ(mask[1], GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    glEnable(GL_BLEND);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_MULTISAMPLE), GL_TRUE);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    EXPECT_EQ(get(GL_PACK_ALIGNMENT), 1);
    glStencilMaskSeparate(GL_BACK, 3);
    EXPECT_EQ(get(GL_STENCIL_WRITEMASK), 0xFF);
    EXPECT_EQ(get(GL_STENCIL_BACK_WRITEMASK), 3);
}

TEST_F(RecordingAnswers, GivenAnswersWinOverFollowedState)
{
    gl.answer(GL_MAX_TEXTURE_SIZE, 64);
    gl.answer(GL_VIEWPORT, {1, 2, 3, 4});
    gl.answer(GL_MAX_COMPUTE_WORK_GROUP_COUNT, {10, 20, 30});
    gl.answer(GL_LINE_WIDTH, 2.5);
    gl.answer(GL_QUERY_RESULT, 77u);
    glViewport(0, 0, 9, 9);
    EXPECT_EQ(get(GL_MAX_TEXTURE_SIZE), 64);
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[3], 4);
    GLint count = 0;
    glGetIntegeri_v(GL_MAX_COMPUTE_WORK_GROUP_COUNT, 1, &count);
    EXPECT_EQ(count, 20);
    GLdouble width = 0;
    glGetDoublev(GL_LINE_WIDTH, &width);
    EXPECT_EQ(width, 2.5);
    GLuint64 result = 0;
    glGetQueryObjectui64v(1, GL_QUERY_RESULT, &result);
    EXPECT_EQ(result, 77u);
}

TEST_F(RecordingAnswers, QueriesWithoutAnAnswerWriteZero)
{
    GLint value = -1;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &value);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(get(GL_MAX_CLIP_DISTANCES), 0);
    GLuint available = 0;
    glGetQueryObjectuiv(1, GL_QUERY_RESULT_AVAILABLE, &available);
    EXPECT_EQ(available, 1u);
}

TEST_F(RecordingAnswers, StatusIsGoodUntilToldToFail)
{
    const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
    GLint status = -1;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    EXPECT_EQ(status, GL_FALSE) << "not compiled yet";
    glCompileShader(shader);
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    EXPECT_EQ(status, GL_TRUE);
    const GLuint program = glCreateProgram();
    gl.fail("glLinkProgram");
    gl.setInfoLog("out of luck");
    glLinkProgram(program);
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    EXPECT_EQ(status, GL_FALSE);
    GLint length = 0;
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    EXPECT_EQ(length, 12);
    GLchar log[16] = {};
    glGetProgramInfoLog(program, 4, &length, log);
    EXPECT_STREQ(log, "out");
    EXPECT_EQ(length, 3);
    gl.succeed("glLinkProgram");
    glLinkProgram(program);
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    EXPECT_EQ(status, GL_TRUE);
}

TEST_F(RecordingAnswers, FailedCallsReturnNothingAndAreRecorded)
{
    GLuint buffer = 7;
    gl.fail("glGenBuffers", 1);
    glGenBuffers(1, &buffer);
    EXPECT_EQ(buffer, 0u);
    EXPECT_EQ(gl.made("Buffer"), 0u);
    EXPECT_EQ(gl.calls().at(0), "glGenBuffers(1, -> 0)");
    glGenBuffers(1, &buffer);
    EXPECT_EQ(buffer, 1u) << "only one call was to fail";
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    gl.fail("glMapBufferRange");
    EXPECT_EQ(glMapBufferRange(GL_ARRAY_BUFFER, 0, 4, GL_MAP_READ_BIT), nullptr);
    gl.succeed("glMapBufferRange");
    EXPECT_NE(glMapBufferRange(GL_ARRAY_BUFFER, 0, 4, GL_MAP_READ_BIT), nullptr);
    gl.fail("glUnmapBuffer");
    EXPECT_EQ(glUnmapBuffer(GL_ARRAY_BUFFER), GL_FALSE);
    EXPECT_NE(glMapBuffer(GL_ARRAY_BUFFER, GL_READ_ONLY), nullptr) << "a failed unmap unmaps";
    gl.fail("glFenceSync");
    EXPECT_EQ(glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0), nullptr);
    gl.fail("glCheckFramebufferStatus");
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_UNSUPPORTED));
    gl.fail("glGetUniformLocation");
    EXPECT_EQ(glGetUniformLocation(1, "color"), -1);
    gl.fail("glGetUniformBlockIndex");
    EXPECT_EQ(glGetUniformBlockIndex(1, "Camera"), GL_INVALID_INDEX);
    EXPECT_THROW(gl.fail("glMapBuffers"), std::invalid_argument);
}

TEST_F(RecordingAnswers, ReturnsFollowTheGivenValues)
{
    gl.answerReturn("glClientWaitSync", {GL_TIMEOUT_EXPIRED, GL_CONDITION_SATISFIED});
    EXPECT_EQ(glClientWaitSync(nullptr, 0, 0), static_cast<GLenum>(GL_TIMEOUT_EXPIRED));
    EXPECT_EQ(glClientWaitSync(nullptr, 0, 0), static_cast<GLenum>(GL_CONDITION_SATISFIED));
    EXPECT_EQ(glClientWaitSync(nullptr, 0, 0), static_cast<GLenum>(GL_CONDITION_SATISFIED));
    gl.answerReturn("glCheckFramebufferStatus", GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT));
    EXPECT_THROW(gl.answerReturn("glWait", 0), std::invalid_argument);
}

TEST_F(RecordingAnswers, PushedErrorsAreToldOnceInTurn)
{
    gl.pushError(GL_OUT_OF_MEMORY);
    gl.pushError(GL_INVALID_ENUM);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_OUT_OF_MEMORY));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(RecordingAnswers, ReflectionTellsLocations)
{
    gl.setReflection(sampleReflection());
    EXPECT_EQ(glGetAttribLocation(1, "position"), 0);
    EXPECT_EQ(glGetAttribLocation(1, "normal"), 7);
    EXPECT_EQ(glGetUniformLocation(1, "color"), 0);
    EXPECT_EQ(glGetUniformLocation(1, "lights"), 1);
    EXPECT_EQ(glGetUniformLocation(1, "lights[3]"), 4);
    EXPECT_EQ(glGetUniformLocation(1, "lights[4]"), -1);
    EXPECT_EQ(glGetUniformLocation(1, "time"), 5);
    EXPECT_EQ(glGetUniformLocation(1, "Block.member"), -1);
    EXPECT_EQ(glGetUniformLocation(1, "none"), -1);
    glBindAttribLocation(1, 12, "position");
    EXPECT_EQ(glGetAttribLocation(1, "position"), 12);
    EXPECT_EQ(glGetAttribLocation(2, "position"), 0);
}

TEST_F(RecordingAnswers, ReflectionOfOneProgramWins)
{
    gl.setReflection(sampleReflection());
    ShaderReflection own;
    own.uniforms = {{"only", GL_INT, 1, 4}};
    gl.setReflection(2, own);
    EXPECT_EQ(glGetUniformLocation(2, "only"), 4);
    EXPECT_EQ(glGetUniformLocation(2, "color"), -1);
    EXPECT_EQ(glGetUniformLocation(1, "color"), 0);
}

TEST_F(RecordingAnswers, ReflectionTellsActiveVariables)
{
    gl.setReflection(sampleReflection());
    GLint count = 0;
    glGetProgramiv(1, GL_ACTIVE_UNIFORMS, &count);
    EXPECT_EQ(count, 4);
    GLint longest = 0;
    glGetProgramiv(1, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
    EXPECT_EQ(longest, 13);
    GLsizei length = 0;
    GLint size = 0;
    GLenum type = 0;
    GLchar name[32] = {};
    glGetActiveUniform(1, 1, sizeof(name), &length, &size, &type, name);
    EXPECT_STREQ(name, "lights[0]");
    EXPECT_EQ(length, 9);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(type, static_cast<GLenum>(GL_FLOAT_VEC4));
    glGetActiveAttrib(1, 0, sizeof(name), nullptr, &size, &type, name);
    EXPECT_STREQ(name, "position");
}

TEST_F(RecordingAnswers, ReflectionTellsBlocks)
{
    gl.setReflection(sampleReflection());
    EXPECT_EQ(glGetUniformBlockIndex(1, "Camera"), 0u);
    GLint value = 0;
    glGetActiveUniformBlockiv(1, 0, GL_UNIFORM_BLOCK_DATA_SIZE, &value);
    EXPECT_EQ(value, 128);
    GLchar name[32] = {};
    glGetActiveUniformBlockName(1, 0, sizeof(name), nullptr, name);
    EXPECT_STREQ(name, "Camera");
    glGetProgramInterfaceiv(1, GL_SHADER_STORAGE_BLOCK, GL_ACTIVE_RESOURCES, &value);
    EXPECT_EQ(value, 2);
    GLsizei length = 0;
    glGetProgramResourceName(1, GL_SHADER_STORAGE_BLOCK, 1, sizeof(name), &length, name);
    EXPECT_STREQ(name, "DrawsIndirectBuffer");
    const GLenum properties[2] = {GL_NAME_LENGTH, GL_BUFFER_BINDING};
    GLint values[2] = {};
    glGetProgramResourceiv(1, GL_SHADER_STORAGE_BLOCK, 0, 2, properties, 2, &length, values);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(values[0], 10);
    EXPECT_EQ(values[1], 5);
    EXPECT_EQ(glGetProgramResourceIndex(1, GL_SHADER_STORAGE_BLOCK, "none"), GL_INVALID_INDEX);
}
} // namespace
