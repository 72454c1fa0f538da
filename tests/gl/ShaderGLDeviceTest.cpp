#include "GLDeviceTestSupport.h"

#include "gl/ShaderBufferGL.h"
#include "gl/ShaderObjectGL.h"
#include "gl/ShaderProgramGL.h"

#include <array>
#include <vector>

namespace renderengine
{

namespace
{

enum Stage : uint32_t
{
    Vertex,
    Geometry,
    Fragment,
    TessControl,
    TessEvaluation,
    Compute
};

const char* const s_vertex = R"(#version 410
in vec3 position;
in vec4 tint;
out vec4 outTint;
out vec3 outPosition;
uniform mat4 matrices[3];
uniform float scalar;
uniform int KvrUseMergedShaderBuffers;
struct Light { vec4 color; float weights[2]; };
uniform Light lights[2];
layout(std140) uniform Camera { mat4 view; };
layout(std140) uniform Material { vec4 diffuse; };
void main()
{
    outTint = tint * diffuse + lights[1].color * lights[0].weights[1] + lights[0].color * lights[1].weights[0];
    outPosition = position * scalar * float(KvrUseMergedShaderBuffers + gl_VertexID);
    gl_Position = matrices[0] * matrices[1] * matrices[2] * view * vec4(position, 1.0);
}
)";

const char* const s_fragment = R"(#version 410
in vec4 outTint;
in vec3 outPosition;
out vec4 color;
void main() { color = outTint + vec4(outPosition, 0.0); }
)";

class ShaderGLDeviceTest : public ResourceDeviceTest
{
protected:
    using ResourceDeviceTest::ResourceDeviceTest;

    void TearDown() override
    {
        program.destroy();
        ResourceDeviceTest::TearDown();
    }

    GLuint compile(uint32_t stage, const std::string& source)
    {
        ShaderObjectProperties properties;
        properties.stage = stage;
        properties.source = source;
        ShaderObjectGL shader;
        EXPECT_TRUE(shader.compile(properties)) << infoLog(shader);
        return shader.getId();
    }

    template <typename Object> static std::string infoLog(const Object& object)
    {
        std::string text;
        object.getInfoLog(text);
        return text;
    }

    void link(const std::vector<GLuint>& shaders)
    {
        EXPECT_TRUE(program.link(shaders)) << infoLog(program);
        for (const GLuint shader : shaders)
        {
            glDeleteShader(shader);
        }
    }

    void expectReflection()
    {
        link({compile(Vertex, s_vertex), compile(Fragment, s_fragment)});
        const GLuint id = program.getId();
        EXPECT_EQ(program.getAttributes().size(), 2u);
        EXPECT_EQ(program.getAttributes().find("tint")->type, GLenum{GL_FLOAT_VEC4});
        EXPECT_EQ(program.getAttribLocation("position"), glGetAttribLocation(id, "position"));
        for (const char* name : {"scalar", "matrices", "matrices[0]", "matrices[1]", "matrices[2]", "lights[1].color",
                                 "lights[0].weights[1]", "lights[1].weights"})
        {
            SCOPED_TRACE(name);
            EXPECT_GE(program.getUniformLocation(name), 0);
            EXPECT_EQ(program.getUniformLocation(name), glGetUniformLocation(id, name));
        }
        EXPECT_EQ(program.getUniformLocation("view"), -1);
        EXPECT_EQ(program.getUseMergedShaderBuffersLocation(), glGetUniformLocation(id, "KvrUseMergedShaderBuffers"));
        EXPECT_EQ(program.getUniformBlocks().size(), 2u);
        EXPECT_EQ(*program.getUniformBlocks().find("Camera"), glGetUniformBlockIndex(id, "Camera"));
        EXPECT_EQ(*program.getUniformBlocks().find("Material"), glGetUniformBlockIndex(id, "Material"));
        EXPECT_TRUE(program.getShaderStorageBlocks().empty());
    }

    ShaderProgramGL program;
};

class ShaderGLCoreDeviceTest : public ShaderGLDeviceTest
{
protected:
    ShaderGLCoreDeviceTest() : ShaderGLDeviceTest(GLProfile::Core) {}
};

class ShaderGL41DeviceTest : public ShaderGLDeviceTest
{
protected:
    ShaderGL41DeviceTest() : ShaderGLDeviceTest(GLProfile::Core, GLVersion::Limited41) {}
};

} // namespace

TEST_F(ShaderGLDeviceTest, ReflectsWhatALinkedProgramExposes)
{
    expectReflection();
}

TEST_F(ShaderGLCoreDeviceTest, ReflectsWhatALinkedProgramExposes)
{
    expectReflection();
}

TEST_F(ShaderGL41DeviceTest, ReflectsWhatALinkedProgramExposes)
{
    expectReflection();
}

TEST_F(ShaderGL41DeviceTest, ReflectsUniformBlocksWithoutInterfaceQueries)
{
    GLEWContextStruct table = *glbinding::t_table;
    table.majorVersion = 4;
    table.minorVersion = 1;
    table.kvr_common__GLEW_ARB_program_interface_query = false;
    const glbinding::ScopedTable scope(&table);
    expectReflection();
}

TEST_F(ShaderGLDeviceTest, EveryStageCompiles)
{
    struct Row
    {
        uint32_t stage;
        GLenum type;
        const char* source;
    };
    for (const Row& row :
         {Row{Vertex, GL_VERTEX_SHADER, "#version 410\nvoid main() { gl_Position = vec4(0.0); }"},
          Row{Geometry, GL_GEOMETRY_SHADER,
              "#version 410\nlayout(points) in; layout(points, max_vertices = 1) out;\n"
              "void main() { gl_Position = vec4(0.0); EmitVertex(); }"},
          Row{Fragment, GL_FRAGMENT_SHADER, s_fragment},
          Row{TessControl, GL_TESS_CONTROL_SHADER,
              "#version 410\nlayout(vertices = 3) out;\nvoid main() { gl_TessLevelOuter[0] = 1.0; }"},
          Row{TessEvaluation, GL_TESS_EVALUATION_SHADER,
              "#version 410\nlayout(triangles) in;\nvoid main() { gl_Position = vec4(0.0); }"},
          Row{Compute, GL_COMPUTE_SHADER, "#version 430\nlayout(local_size_x = 1) in;\nvoid main() {}"}})
    {
        SCOPED_TRACE(row.stage);
        const GLuint shader = compile(row.stage, row.source);
        GLint type = 0;
        GLint status = GL_FALSE;
        glGetShaderiv(shader, GL_SHADER_TYPE, &type);
        glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
        EXPECT_EQ(static_cast<GLenum>(type), row.type);
        EXPECT_EQ(status, GL_TRUE);
        glDeleteShader(shader);
    }
}

TEST_F(ShaderGLDeviceTest, EveryStageLinks)
{
    link({compile(Vertex, "#version 410\nin vec4 position;\nvoid main() { gl_Position = position; }"),
          compile(TessControl, "#version 410\nlayout(vertices = 3) out;\nuniform float level;\nvoid main()\n"
                               "{ gl_TessLevelOuter[0] = gl_TessLevelOuter[1] = gl_TessLevelOuter[2] = level;\n"
                               "gl_TessLevelInner[0] = level;\n"
                               "gl_out[gl_InvocationID].gl_Position = gl_in[gl_InvocationID].gl_Position; }"),
          compile(TessEvaluation, "#version 410\nlayout(triangles) in;\nuniform float height;\nvoid main()\n"
                                  "{ gl_Position = gl_in[0].gl_Position * gl_TessCoord.x * height; }"),
          compile(Geometry, "#version 410\nlayout(triangles) in;\nlayout(points, max_vertices = 1) out;\n"
                            "uniform vec4 shift;\nvoid main()\n"
                            "{ gl_Position = gl_in[0].gl_Position + shift; EmitVertex(); }"),
          compile(Fragment, "#version 410\nuniform vec4 tone;\nout vec4 color;\nvoid main() { color = tone; }")});
    EXPECT_EQ(program.getUniforms().size(), 4u);
    for (const char* name : {"level", "height", "shift", "tone"})
    {
        EXPECT_GE(program.getUniformLocation(name), 0) << name;
    }
    EXPECT_GE(program.getAttribLocation("position"), 0);
    program.destroy();
    link({compile(Compute, "#version 430\nlayout(local_size_x = 1) in;\nlayout(rgba8) uniform image2D picture;\n"
                           "uniform vec4 tone;\nvoid main() { imageStore(picture, ivec2(0), tone); }")});
    EXPECT_GE(program.getUniformLocation("picture"), 0);
    EXPECT_GE(program.getUniformLocation("tone"), 0);
}

TEST_F(ShaderGLDeviceTest, AFailedCompileKeepsItsNameAndTellsWhy)
{
    ShaderObjectProperties properties;
    properties.stage = Fragment;
    properties.source = "#version 410\nvoid main() { nonsense }";
    ShaderObjectGL shader;
    EXPECT_FALSE(shader.compile(properties));
    EXPECT_TRUE(glIsShader(shader.getId()));
    const std::string text = infoLog(shader);
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\0');
    shader.destroy();
    EXPECT_EQ(shader.getId(), 0u);
    // Drivers announce the compiler's message as an error too.
    device.takeErrors();
}

TEST_F(ShaderGLDeviceTest, AFailedLinkReturnsFalseAndTellsWhy)
{
    const GLuint shader =
        compile(Fragment, "#version 410\nvec4 missing();\nout vec4 color;\nvoid main() { color = missing(); }");
    EXPECT_FALSE(program.link({shader}));
    glDeleteShader(shader);
    EXPECT_FALSE(infoLog(program).empty());
    EXPECT_TRUE(program.getUniforms().empty());
    device.takeErrors();
}

TEST_F(ShaderGLDeviceTest, StorageAndUniformBlocksAreConnected)
{
    link({compile(Compute, R"(#version 430
layout(local_size_x = 1) in;
layout(std430) buffer Results { float values[]; };
layout(std430) buffer Sources { float sources[]; };
layout(std140) uniform Factors { vec4 factor; };
void main() { values[0] = sources[0] * factor.x; }
)")});
    EXPECT_EQ(program.getShaderStorageBlocks().size(), 2u);
    EXPECT_EQ(program.getUniformBlocks().size(), 1u);
    ShaderBufferProperties properties;
    ShaderBufferGL buffer;
    properties.kind = 0;
    properties.name = "Sources";
    buffer.create(properties, nullptr);
    program.bindBlock(buffer, 5);
    properties.kind = 1;
    properties.name = "Factors";
    buffer.create(properties, nullptr);
    program.bindBlock(buffer, 3);
    const auto binding = [this](GLenum blockInterface, const char* name)
    {
        const GLuint index = glGetProgramResourceIndex(program.getId(), blockInterface, name);
        const GLenum property = GL_BUFFER_BINDING;
        GLint value = -1;
        glGetProgramResourceiv(program.getId(), blockInterface, index, 1, &property, 1, nullptr, &value);
        return value;
    };
    EXPECT_EQ(binding(GL_SHADER_STORAGE_BLOCK, "Sources"), 5);
    EXPECT_EQ(binding(GL_UNIFORM_BLOCK, "Factors"), 3);
}

TEST_F(ShaderGLDeviceTest, VaryingsAreCapturedAfterTheNextReflect)
{
    link({compile(Vertex, s_vertex), compile(Fragment, s_fragment)});
    const GLuint id = program.getId();
    program.setTransformFeedbackVaryings({"outPosition", "outTint"}, 1);
    EXPECT_TRUE(program.reflect());
    EXPECT_EQ(program.getId(), id);
    GLint mode = 0;
    GLint count = 0;
    glGetProgramiv(id, GL_TRANSFORM_FEEDBACK_BUFFER_MODE, &mode);
    glGetProgramiv(id, GL_TRANSFORM_FEEDBACK_VARYINGS, &count);
    EXPECT_EQ(mode, GL_SEPARATE_ATTRIBS);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(program.getAttributes().size(), 2u);
}

TEST_F(ShaderGLDeviceTest, UseSetsProgramAndPatchVertices)
{
    link({compile(Vertex, s_vertex), compile(Fragment, s_fragment)});
    program.use(4);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(program.getId()));
    EXPECT_EQ(integer(GL_PATCH_VERTICES), 4);
    glUseProgram(0);
}

} // namespace renderengine
