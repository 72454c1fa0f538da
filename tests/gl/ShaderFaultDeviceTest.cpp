#include "RendererDeviceFixture.h"

namespace renderengine
{
namespace
{

constexpr uint32_t s_stageCount = 6;
constexpr uint32_t s_vertexStage = 0;
constexpr uint32_t s_fragmentStage = 2;

/// Texts that are no shader of any stage.
std::vector<std::string> malformedTexts()
{
    std::vector<std::string> texts{"",
                                   "\n",
                                   "void",
                                   "#version",
                                   "#version 9999\nvoid main() {}\n",
                                   "#version 330\n",
                                   "#version 330\nvoid main() {",
                                   "#version 330\nvoid main() { undeclared = 1; }\n",
                                   "#version 330\n/* a comment without an end",
                                   "#version 330\n#define A A A\n#if A\nvoid main() {}\n",
                                   "#version 330\n#include <stdio.h>\nvoid main() {}\n",
                                   "#version 330\nvoid main() { main(); float x = \"text\"; }\n",
                                   "\xEF\xBB\xBF#version 330\nvoid main() {\xFF\xFE}\n"};
    texts.push_back("#version 330\nvoid main() { float x = " + std::string(500, '(') + "1.0" + "; }\n");
    texts.emplace_back(64 * 1024, 'x');
    std::string zeros("#version 330\nvoid\0main() { }\n", 30);
    texts.push_back(zeros);
    return texts;
}

template <class Renderer> class ShaderFaultDeviceTest : public BothRenderersDevice<Renderer>
{
protected:
    ShaderObjectHandle compile(uint32_t stage, const std::string& text)
    {
        ShaderObjectProperties properties;
        properties.stage = stage;
        properties.source = text;
        const ShaderObjectHandle handle = this->renderer->generateShaderObjectHandle();
        this->template run<CommandCreateShaderObject>(handle, properties);
        return handle;
    }

    ShaderProgramHandle linkOf(const std::vector<ShaderObjectHandle>& shaders)
    {
        ShaderProgramProperties properties;
        properties.shaderObjects = shaders;
        const ShaderProgramHandle handle = this->renderer->generateShaderProgramHandle();
        this->template run<CommandCreateShaderProgram>(handle, properties);
        return handle;
    }

    /// The program draws nothing, and one that links draws afterwards.
    void expectDrawsNothing(const ShaderProgramHandle& program)
    {
        this->clear();
        const DrawProperties strip = this->makeStrip(rectangle(-1, 1));
        this->drawColored(this->makeDeviceScene(program), green, strip);
        // GL refuses to use the program and to draw.
        EXPECT_FALSE(this->device.takeErrors().empty());
        EXPECT_EQ(this->count(this->read(), black), allPixels);
        const ShaderProgramHandle whole = this->link({{0, plainVertexText}, {2, colorFragmentText}});
        this->drawColored(this->makeDeviceScene(whole), red, strip);
        EXPECT_EQ(this->count(this->read(), red), allPixels);
        EXPECT_EQ(this->device.takeErrors(), Texts{});
    }
};

TYPED_TEST_SUITE(ShaderFaultDeviceTest, Renderers, RendererNames);

TYPED_TEST(ShaderFaultDeviceTest, AMalformedShaderOfEachStageLeavesALog)
{
    const std::vector<std::string> texts = malformedTexts();
    for (size_t i = 0; i < texts.size(); ++i)
    {
        for (uint32_t stage = 0; stage < s_stageCount; ++stage)
        {
            SCOPED_TRACE("text " + std::to_string(i) + ", stage " + std::to_string(stage));
            const ShaderObjectHandle shader = this->compile(stage, texts[i]);
            const ShaderProgramHandle program = this->linkOf({shader});
            // What a driver takes as an empty shader of a stage fails at the link.
            EXPECT_NE(this->renderer->getShaderObjectLog(shader) + this->renderer->getShaderProgramLog(program), "");
            this->template run<CommandDestroyShaderProgram>(program);
            this->template run<CommandDestroyShaderObject>(shader);
        }
    }
    this->device.takeErrors();
    this->log.take();
}

TYPED_TEST(ShaderFaultDeviceTest, AProgramOfAMalformedShaderDrawsNothing)
{
    const ShaderObjectHandle vertex = this->compile(s_vertexStage, plainVertexText);
    const ShaderObjectHandle fragment = this->compile(s_fragmentStage, "#version 330\nvoid main() { color = }\n");
    EXPECT_NE(this->renderer->getShaderObjectLog(fragment), "");
    const ShaderProgramHandle program = this->linkOf({vertex, fragment});
    EXPECT_NE(this->renderer->getShaderProgramLog(program), "");
    this->device.takeErrors();
    this->log.take();
    this->expectDrawsNothing(program);
}

TYPED_TEST(ShaderFaultDeviceTest, AProgramWhoseStagesDoNotMeetDrawsNothing)
{
    // Each compiles; they do not agree on what goes from one to the other.
    const ShaderObjectHandle vertex =
        this->compile(s_vertexStage, "#version 330\nin vec3 position;\nout vec2 passed;\n"
                                     "void main() { passed = position.xy; gl_Position = vec4(position, 1); }\n");
    const ShaderObjectHandle fragment =
        this->compile(s_fragmentStage, "#version 330\nin vec4 passed;\nout vec4 result;\n"
                                       "void main() { result = passed; }\n");
    EXPECT_EQ(this->renderer->getShaderObjectLog(fragment), "");
    const ShaderProgramHandle program = this->linkOf({vertex, fragment});
    EXPECT_NE(this->renderer->getShaderProgramLog(program), "");
    this->device.takeErrors();
    this->log.take();
    this->expectDrawsNothing(program);
}

} // namespace
} // namespace renderengine
