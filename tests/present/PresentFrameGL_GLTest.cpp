#include <renderengine/PresentFrameGL_GL.h>

#include "gl/RendererFixture.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{
namespace
{

/// Colour is texture 1, depth is texture 2; the host's state is what a recording starts with.
class PresentFrameGL_GLTest : public RendererGLTest
{
protected:
    void SetUp() override
    {
        RendererGLTest::SetUp();
        renderer->setPresentColorTexture(makeTexture());
        renderer->setPresentDepthTexture(makeTexture(2, 0, 80));
        renderer->setSize(640, 480);
        gl.clear();
    }

    Texts present()
    {
        step.presentFrame(renderer->updatePresentEventArg());
        return gl.takeCalls();
    }

    PresentFrameGL_GL step;
};

const Texts saveState = {"glGetIntegerv(GL_VERTEX_ARRAY_BINDING, <pointer>)",
                         "glGetIntegerv(GL_CURRENT_PROGRAM, <pointer>)", "glGetIntegerv(GL_ACTIVE_TEXTURE, <pointer>)",
                         "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)", "glViewport(0, 0, 640, 480)"};

const Texts drawTriangle = {"glUseProgram(1)",
                            "glActiveTexture(GL_TEXTURE1)",
                            "glBindTexture(GL_TEXTURE_2D, 2)",
                            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)",
                            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)",
                            "glActiveTexture(GL_TEXTURE0)",
                            "glBindTexture(GL_TEXTURE_2D, 1)",
                            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)",
                            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)",
                            "glDrawArrays(GL_TRIANGLES, 0, 3)"};

TEST_F(PresentFrameGL_GLTest, FirstFrameBuildsTheProgramAndTheNextDoesNot)
{
    gl.setReflection({{}, {{"tex0", GL_SAMPLER_2D}, {"depthTex", GL_SAMPLER_2D}}, {}, {}});
    Texts calls = present();
    const auto start = calls.begin() + static_cast<std::ptrdiff_t>(saveState.size());
    EXPECT_EQ(Texts(calls.begin(), start), saveState);
    for (std::string& call : calls)
    {
        if (call.rfind("glShaderSource(", 0) == 0)
        {
            call = call.substr(0, call.find(',')) + ")";
        }
    }
    const Texts build(start, start + 19);
    EXPECT_EQ(build,
              (Texts{"glCreateProgram() -> 1", "glCreateShader(GL_VERTEX_SHADER) -> 2", "glShaderSource(2)",
                     "glCompileShader(2)", "glAttachShader(1, 2)", "glDeleteShader(2)",
                     "glCreateShader(GL_FRAGMENT_SHADER) -> 3", "glShaderSource(3)", "glCompileShader(3)",
                     "glAttachShader(1, 3)", "glDeleteShader(3)", "glBindAttribLocation(1, 0, \"vertex\")",
                     "glLinkProgram(1)", "glUseProgram(1)", "glGetUniformLocation(1, \"tex0\")", "glUniform1i(0, 0)",
                     "glGetUniformLocation(1, \"depthTex\")", "glUniform1i(1, 1)", "glBindVertexArray(0)"}));
    EXPECT_EQ(present(), join({saveState,
                               {"glBindVertexArray(0)"},
                               drawTriangle,
                               {"glBindVertexArray(0)", "glUseProgram(0)", "glBindTexture(GL_TEXTURE_2D, 0)",
                                "glActiveTexture(GL_TEXTURE0)"}}));
    EXPECT_EQ(gl.made("VertexArray"), 0u);
}

TEST_F(PresentFrameGL_GLTest, HostsBindingsArePutBackAndItsTextureLandsOnUnitZero)
{
    present();
    gl.answer(GL_VERTEX_ARRAY_BINDING, int64_t{5});
    gl.answer(GL_CURRENT_PROGRAM, int64_t{6});
    gl.answer(GL_ACTIVE_TEXTURE, int64_t{GL_TEXTURE3});
    gl.answer(GL_TEXTURE_BINDING_2D, int64_t{7});
    const Texts calls = present();
    EXPECT_EQ(Texts(calls.end() - 4, calls.end()),
              (Texts{"glBindVertexArray(5)", "glUseProgram(6)", "glBindTexture(GL_TEXTURE_2D, 7)",
                     "glActiveTexture(GL_TEXTURE3)"}));
}

TEST_F(PresentFrameGL_GLTest, CoreContextGetsATemporaryVertexArray)
{
    SoPreferences::setBool("KVR_RENDERENGINE_USE_GLCORE", true);
    present();
    EXPECT_EQ(present(), join({saveState,
                               {"glGenVertexArrays(1, -> 2)", "glBindVertexArray(2)"},
                               drawTriangle,
                               {"glBindVertexArray(0)", "glUseProgram(0)", "glBindTexture(GL_TEXTURE_2D, 0)",
                                "glActiveTexture(GL_TEXTURE0)", "glDeleteVertexArrays(1, {2})"}}));
    EXPECT_EQ(gl.live("VertexArray"), 0u);
}

TEST_F(PresentFrameGL_GLTest, ProgramIsLeftBehindWithoutACurrentContext)
{
    {
        PresentFrameGL_GL other;
        other.presentFrame(renderer->updatePresentEventArg());
        gl.clear();
    }
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(PresentFrameGL_GLTest, ShadersCoverTheFramebufferAndWriteDepth)
{
    present();
    EXPECT_EQ(gl.shaderSource(2),
              "#version 330\nin vec2 vertex;\nout vec2 tcoord;\nvoid main() {\n  float x = -1.0 + "
              "float((gl_VertexID & 1) << 2);\n  float y = -1.0 + float((gl_VertexID & 2) << 1);\n  tcoord.x = (x + "
              "1.0)*0.5;\n  tcoord.y = (y + 1.0)*0.5;\n  gl_Position = vec4(x, y, 0, 1);\n}");
    EXPECT_EQ(gl.shaderSource(3),
              "#version 330\nin vec2 tcoord;\nuniform sampler2D tex0;\nuniform sampler2D depthTex;\nout vec4 "
              "color;\nvoid main() {\n  color = texture(tex0, tcoord);\n  gl_FragDepth = texture(depthTex, "
              "tcoord).x;\n}");
}

} // namespace
} // namespace renderengine
