#include "GLRecordingFixture.h"

#include "gl/ShaderBufferGL.h"
#include "gl/ShaderObjectGL.h"
#include "gl/ShaderProgramGL.h"

#include <array>
#include <map>
#include <string>

namespace renderengine
{

namespace
{

using glbinding::ShaderReflection;
using LocationMap = std::map<std::string, GLint>;
using BlockMap = std::map<std::string, GLuint>;

/// The entries of a map in a container that can be compared.
template <class Value> std::map<std::string, Value> entriesOf(const NameMap<Value>& names)
{
    return {names.getEntries().begin(), names.getEntries().end()};
}

ShaderObjectProperties source(uint32_t stage, const std::string& text)
{
    ShaderObjectProperties properties;
    properties.stage = stage;
    properties.source = text;
    return properties;
}

ShaderBufferGL& named(ShaderBufferGL& buffer, uint32_t kind, const std::string& name)
{
    ShaderBufferProperties properties;
    properties.kind = kind;
    properties.name = name;
    buffer.create(properties, nullptr);
    return buffer;
}

} // namespace

using ShaderObjectGLTest = GLRecordingTest;

TEST_F(ShaderObjectGLTest, CompileRunsItsCallsInOrder)
{
    ShaderObjectGL shader;
    EXPECT_TRUE(shader.compile(source(0, "void main() {}")));
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glCreateShader(GL_VERTEX_SHADER) -> 1", "glShaderSource(1, 1, {\"void main() {}\"}, null)",
                     "glCompileShader(1)", "glGetShaderiv(1, GL_COMPILE_STATUS, <pointer>)"}));
    EXPECT_EQ(shader.getId(), 1u);
    EXPECT_EQ(shader.getStage(), GLenum{GL_VERTEX_SHADER});
}

TEST_F(ShaderObjectGLTest, EachTypeHasItsStage)
{
    const std::array<const char*, 6> stages{"VERTEX",       "GEOMETRY",        "FRAGMENT",
                                            "TESS_CONTROL", "TESS_EVALUATION", "COMPUTE"};
    for (uint32_t i = 0; i < stages.size(); ++i)
    {
        SCOPED_TRACE(i);
        ShaderObjectGL shader;
        shader.compile(source(i, ""));
        EXPECT_EQ(gl.takeCalls()[0],
                  "glCreateShader(GL_" + std::string(stages[i]) + "_SHADER) -> " + std::to_string(i + 1));
    }
}

TEST_F(ShaderObjectGLTest, AStageOutsideTheTableIsReportedAndCreatesNothing)
{
    ShaderObjectGL shader;
    EXPECT_DEBUG_DEATH(
        {
            EXPECT_FALSE(shader.compile(source(6, "")));
            EXPECT_EQ(gl.takeCalls(), Texts{});
            EXPECT_EQ(log.take(),
                      Texts{"error: [RendererGL] The shader stage index 6 is outside its table of 6 entries."});
        },
        "index outside its table");
}

TEST_F(ShaderObjectGLTest, AFailedCompileKeepsTheNameAndGivesItsLogWithTheClosingZero)
{
    gl.fail("glCompileShader");
    gl.setInfoLog("0:1: bad");
    ShaderObjectGL shader;
    EXPECT_FALSE(shader.compile(source(2, "bad")));
    EXPECT_EQ(shader.getId(), 1u);
    gl.clear();
    std::string text = "before";
    shader.getInfoLog(text);
    EXPECT_EQ(text, std::string("0:1: bad\0", 9));
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glGetShaderiv(1, GL_INFO_LOG_LENGTH, <pointer>)", "glGetShaderInfoLog(1, 9, null, <pointer>)"}));
}

TEST_F(ShaderObjectGLTest, AnEmptyLogLeavesTheTextUntouched)
{
    ShaderObjectGL shader;
    shader.compile(source(2, ""));
    std::string text = "before";
    for (const int64_t length : {0, 1})
    {
        gl.answer(GL_INFO_LOG_LENGTH, length);
        shader.getInfoLog(text);
        EXPECT_EQ(text, "before");
    }
    EXPECT_EQ(gl.countOf("glGetShaderInfoLog"), 0u);
}

TEST_F(ShaderObjectGLTest, DestroyDeletesALiveNameOnly)
{
    ShaderObjectGL shader;
    shader.compile(source(0, ""));
    gl.clear();
    shader.destroy();
    shader.destroy();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsShader(1)", "glDeleteShader(1)", "glIsShader(0)"}));
}

class ShaderProgramGLTest : public GLRecordingTest
{
protected:
    void link(const ShaderReflection& reflection)
    {
        gl.setReflection(reflection);
        ASSERT_TRUE(program.link({}));
    }

    ShaderProgramGL program;
};

TEST_F(ShaderProgramGLTest, LinkAttachesLinksAndReflectsInOrder)
{
    const GLuint vertex = glCreateShader(GL_VERTEX_SHADER);
    const GLuint fragment = glCreateShader(GL_FRAGMENT_SHADER);
    ShaderReflection reflection;
    reflection.attributes = {{"position", GL_FLOAT_VEC3, 1, 2, 0}};
    reflection.uniforms = {{"a[0]", GL_FLOAT, 2, 4, 0}};
    reflection.uniformBlocks = {{"Camera", 0, 64, -1, 0}};
    reflection.shaderStorageBlocks = {{"Lights", 0, 64, -1, 0}};
    gl.setReflection(reflection);
    gl.clear();
    EXPECT_TRUE(program.link({vertex, fragment}));
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glCreateProgram() -> 3",
                     "glAttachShader(3, 1)",
                     "glAttachShader(3, 2)",
                     "glLinkProgram(3)",
                     "glGetProgramiv(3, GL_LINK_STATUS, <pointer>)",
                     "glGetProgramiv(3, GL_ACTIVE_ATTRIBUTE_MAX_LENGTH, <pointer>)",
                     "glGetProgramiv(3, GL_ACTIVE_ATTRIBUTES, <pointer>)",
                     "glGetActiveAttrib(3, 0, 9, <pointer>, <pointer>, <pointer>, <pointer>)",
                     "glGetAttribLocation(3, \"position\")",
                     "glGetProgramiv(3, GL_ACTIVE_UNIFORMS, <pointer>)",
                     "glGetProgramiv(3, GL_ACTIVE_UNIFORM_MAX_LENGTH, <pointer>)",
                     "glGetActiveUniform(3, 0, 5, <pointer>, <pointer>, <pointer>, <pointer>)",
                     "glGetUniformLocation(3, \"a[0]\")",
                     "glGetUniformLocation(3, \"a[1]\")",
                     "glGetUniformLocation(3, \"KvrUseMergedShaderBuffers\")",
                     "glGetProgramInterfaceiv(3, GL_SHADER_STORAGE_BLOCK, GL_ACTIVE_RESOURCES, <pointer>)",
                     "glGetProgramResourceiv(3, GL_SHADER_STORAGE_BLOCK, 0, 1, {GL_NAME_LENGTH}, 1, null, <pointer>)",
                     "glGetProgramResourceName(3, GL_SHADER_STORAGE_BLOCK, 0, 7, <pointer>, <pointer>)",
                     "glGetProgramInterfaceiv(3, GL_UNIFORM_BLOCK, GL_ACTIVE_RESOURCES, <pointer>)",
                     "glGetProgramResourceiv(3, GL_UNIFORM_BLOCK, 0, 1, {GL_NAME_LENGTH}, 1, null, <pointer>)",
                     "glGetProgramResourceName(3, GL_UNIFORM_BLOCK, 0, 7, <pointer>, <pointer>)"}));
    EXPECT_EQ(program.getAttribLocation("position"), 2);
    EXPECT_EQ(entriesOf(program.getUniforms()), (LocationMap{{"a[0]", 4}, {"a", 4}, {"a[1]", 5}}));
    EXPECT_EQ(entriesOf(program.getUniformBlocks()), (BlockMap{{"Camera", 0}}));
    EXPECT_EQ(entriesOf(program.getShaderStorageBlocks()), (BlockMap{{"Lights", 0}}));
}

TEST_F(ShaderProgramGLTest, AFailedLinkReflectsNothing)
{
    gl.fail("glLinkProgram");
    EXPECT_FALSE(program.link({}));
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glCreateProgram() -> 1", "glLinkProgram(1)", "glGetProgramiv(1, GL_LINK_STATUS, <pointer>)"}));
    EXPECT_EQ(program.getId(), 1u);
}

TEST_F(ShaderProgramGLTest, AFailedRelinkKeepsTheMaps)
{
    ShaderReflection reflection;
    reflection.attributes = {{"position", GL_FLOAT_VEC3, 1, 2, 0}};
    reflection.uniforms = {{"color", GL_FLOAT_VEC4, 1, 1, 0}, {"KvrUseMergedShaderBuffers", GL_INT, 1, 7, 0}};
    reflection.uniformBlocks = {{"Camera", 0, 64, -1, 0}};
    link(reflection);
    gl.fail("glLinkProgram");
    gl.setReflection({});
    EXPECT_FALSE(program.reflect());
    EXPECT_EQ(program.getAttribLocation("position"), 2);
    EXPECT_EQ(program.getUniformLocation("color"), 1);
    EXPECT_EQ(program.getUniformBlocks().size(), 1u);
    EXPECT_EQ(program.getUseMergedShaderBuffersLocation(), 7);
}

TEST_F(ShaderProgramGLTest, ARelinkRebuildsTheMapsAndKeepsTheName)
{
    ShaderReflection reflection;
    reflection.attributes = {{"position", GL_FLOAT_VEC3, 1, 2, 0}};
    reflection.uniforms = {{"color", GL_FLOAT_VEC4, 1, 1, 0}};
    reflection.shaderStorageBlocks = {{"Lights", 0, 64, -1, 0}};
    link(reflection);
    gl.setReflection({});
    EXPECT_TRUE(program.reflect());
    EXPECT_EQ(program.getId(), 1u);
    EXPECT_TRUE(program.getAttributes().empty());
    EXPECT_TRUE(program.getUniforms().empty());
    EXPECT_TRUE(program.getShaderStorageBlocks().empty());
}

TEST_F(ShaderProgramGLTest, AnArrayOfThreeResolvesByElementAndByPlainName)
{
    ShaderReflection reflection;
    reflection.uniforms = {{"a[0]", GL_FLOAT, 3, 10, 0}};
    link(reflection);
    EXPECT_EQ(entriesOf(program.getUniforms()), (LocationMap{{"a[0]", 10}, {"a", 10}, {"a[1]", 11}, {"a[2]", 12}}));
}

TEST_F(ShaderProgramGLTest, AScalarYieldsOnlyItsName)
{
    ShaderReflection reflection;
    reflection.uniforms = {{"b", GL_FLOAT, 1, 6, 0}};
    link(reflection);
    EXPECT_EQ(entriesOf(program.getUniforms()), (LocationMap{{"b", 6}}));
}

TEST_F(ShaderProgramGLTest, AnArrayInsideAStructIsCutAtItsLastBracket)
{
    ShaderReflection reflection;
    reflection.uniforms = {{"lights[1].values[0]", GL_FLOAT, 2, 3, 0}};
    link(reflection);
    EXPECT_EQ(entriesOf(program.getUniforms()),
              (LocationMap{{"lights[1].values[0]", 3}, {"lights[1].values", 3}, {"lights[1].values[1]", 4}}));
}

TEST_F(ShaderProgramGLTest, GapsInAnArrayAreReportedAndTheComputedLocationsStay)
{
    ShaderReflection reflection;
    reflection.uniforms = {{"a[0]", GL_FLOAT, 3, 10, 0}};
    gl.setReflection(reflection);
    // Every element but the first answers 20, the first the location of the array.
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.kvr_common__glewGetUniformLocation = [](GLuint, const GLchar* name) -> GLint
    {
        const std::string text = name;
        return text == "a[0]" ? 10 : text == "a[1]" ? 11 : 20;
    };
    const glbinding::ScopedTable scope(&table);
    EXPECT_TRUE(program.link({}));
    EXPECT_EQ(log.take(), Texts{"error: The uniform array does not have successive uniform locations (20 != 12)"});
    EXPECT_EQ(program.getUniformLocation("a[2]"), 12);
}

TEST_F(ShaderProgramGLTest, NamesWithoutALocationAreSkipped)
{
    ShaderReflection reflection;
    reflection.attributes = {{"gl_VertexID", GL_INT, 1, 0, 0}, {"normal", GL_FLOAT_VEC3, 1, 1, 0}};
    reflection.uniforms = {{"inBlock", GL_FLOAT, 1, 0, 0}, {"plain", GL_FLOAT, 1, 1, 0}};
    gl.setReflection(reflection);
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.kvr_common__glewGetAttribLocation = [](GLuint, const GLchar* name) -> GLint
    { return std::string(name) == "normal" ? 1 : -1; };
    table.kvr_common__glewGetUniformLocation = [](GLuint, const GLchar* name) -> GLint
    { return std::string(name) == "plain" ? 1 : -1; };
    const glbinding::ScopedTable scope(&table);
    EXPECT_TRUE(program.link({}));
    EXPECT_EQ(program.getAttributes().size(), 1u);
    EXPECT_EQ(program.getAttributes().find("normal")->type, GLenum{GL_FLOAT_VEC3});
    EXPECT_EQ(entriesOf(program.getUniforms()), (LocationMap{{"plain", 1}}));
    EXPECT_EQ(program.getUseMergedShaderBuffersLocation(), -1);
}

TEST_F(ShaderProgramGLTest, AProgramWithoutUniformsStillReadsTheMergeUniformAndTheBlocks)
{
    ShaderReflection reflection;
    reflection.uniformBlocks = {{"Camera", 0, 64, -1, 0}, {"Material", 0, 64, -1, 0}};
    link(reflection);
    EXPECT_EQ(gl.countOf("glGetActiveUniform("), 0u);
    EXPECT_EQ(gl.countOf("glGetProgramiv(1, GL_ACTIVE_UNIFORM_MAX_LENGTH"), 0u);
    EXPECT_EQ(gl.callsMatching("glGetUniformLocation"),
              Texts{"glGetUniformLocation(1, \"KvrUseMergedShaderBuffers\")"});
    EXPECT_EQ(entriesOf(program.getUniformBlocks()), (BlockMap{{"Camera", 0}, {"Material", 1}}));
}

TEST_F(ShaderProgramGLTest, LookUpsOfAbsentNamesGiveMinusOne)
{
    link({});
    EXPECT_EQ(program.getUniformLocation("absent"), -1);
    EXPECT_EQ(program.getAttribLocation("absent"), -1);
    gl.clear();
    program.getUniformLocation("absent");
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(ShaderProgramGLTest, WithoutInterfaceQueriesUniformBlocksAreReadByTheirOwnCalls)
{
    GLEWContextStruct table = *glbinding::RecordingGL::table();
    table.majorVersion = 4;
    table.minorVersion = 1;
    table.kvr_common__GLEW_ARB_program_interface_query = false;
    const glbinding::ScopedTable scope(&table);
    ShaderReflection reflection;
    reflection.uniformBlocks = {{"Camera", 0, 64, -1, 0}, {"Material", 0, 64, -1, 0}};
    link(reflection);
    EXPECT_EQ(gl.countOf("glGetProgramInterfaceiv"), 0u);
    EXPECT_EQ(gl.countOf("glGetActiveUniformBlockName"), 2u);
    EXPECT_EQ(entriesOf(program.getUniformBlocks()), (BlockMap{{"Camera", 0}, {"Material", 1}}));
    EXPECT_TRUE(program.getShaderStorageBlocks().empty());
}

TEST_F(ShaderProgramGLTest, VaryingsAreSentBeforeTheNextLink)
{
    link({});
    gl.clear();
    EXPECT_TRUE(program.setTransformFeedbackVaryings({"outPosition", "outNormal"}, 0));
    EXPECT_EQ(gl.takeCalls(), Texts{});
    program.reflect();
    const Texts interleaved = gl.takeCalls();
    EXPECT_EQ(interleaved[0],
              "glTransformFeedbackVaryings(1, 2, {\"outPosition\", \"outNormal\"}, GL_INTERLEAVED_ATTRIBS)");
    EXPECT_EQ(interleaved[1], "glLinkProgram(1)");
    EXPECT_TRUE(program.setTransformFeedbackVaryings({"outPosition"}, 2));
    program.reflect();
    EXPECT_EQ(gl.takeCalls()[0], "glTransformFeedbackVaryings(1, 1, {\"outPosition\"}, GL_SEPARATE_ATTRIBS)");
}

TEST_F(ShaderProgramGLTest, AnEmptyListOfVaryingsIsNotSent)
{
    link({});
    program.setTransformFeedbackVaryings({"outPosition"}, 0);
    program.setTransformFeedbackVaryings({}, 0);
    gl.clear();
    program.reflect();
    EXPECT_EQ(gl.takeCalls()[0], "glLinkProgram(1)");
}

TEST_F(ShaderProgramGLTest, UseSendsThePatchVerticesOnEveryCall)
{
    link({});
    gl.clear();
    program.use(3);
    program.use(3);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glPatchParameteri(GL_PATCH_VERTICES, 3)", "glUseProgram(1)",
                                     "glPatchParameteri(GL_PATCH_VERTICES, 3)", "glUseProgram(1)"}));
}

TEST_F(ShaderProgramGLTest, BlocksAreConnectedByNameAndTarget)
{
    ShaderReflection reflection;
    reflection.uniformBlocks = {{"Camera", 0, 64, -1, 0}, {"Both", 0, 64, -1, 0}};
    reflection.shaderStorageBlocks = {{"Both", 0, 64, -1, 0}};
    link(reflection);
    gl.clear();
    ShaderBufferGL buffer;
    program.bindBlock(named(buffer, 1, "Both"), 5);
    program.bindBlock(named(buffer, 0, "Both"), 6);
    program.bindBlock(named(buffer, 0, "Camera"), 7);
    program.bindBlock(named(buffer, 1, "absent"), 8);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glUniformBlockBinding(1, 1, 5)", "glShaderStorageBlockBinding(1, 0, 6)"}));
}

TEST_F(ShaderProgramGLTest, AFailedLinkGivesItsLogWithTheClosingZero)
{
    gl.fail("glLinkProgram");
    gl.setInfoLog("no main");
    program.link({});
    std::string text;
    program.getInfoLog(text);
    EXPECT_EQ(text, std::string("no main\0", 8));
    gl.setInfoLog("");
    program.getInfoLog(text);
    EXPECT_EQ(text, std::string("no main\0", 8));
}

TEST_F(ShaderProgramGLTest, DestroyDeletesALiveNameOnly)
{
    link({});
    gl.clear();
    program.destroy();
    program.destroy();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsProgram(1)", "glDeleteProgram(1)", "glIsProgram(0)"}));
}

} // namespace renderengine
