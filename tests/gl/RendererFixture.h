#pragma once

#include "GLRecordingFixture.h"
#include "RendererDriver.h"

#include "gl/StateGL.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace renderengine
{

/// Joins lists of calls.
inline Texts join(std::initializer_list<Texts> lists)
{
    Texts joined;
    for (const Texts& list : lists)
    {
        joined.insert(joined.end(), list.begin(), list.end());
    }
    return joined;
}

/// A renderer on the recording table.
class RendererGLTest : public GLRecordingTest, protected RendererDriver
{
protected:
    void SetUp() override { start<RendererGL41>(); }

    /// The calls that the command makes.
    template <class Command, class... Arguments> Texts callsOf(Arguments&&... arguments)
    {
        gl.clear();
        run<Command>(std::forward<Arguments>(arguments)...);
        return gl.takeCalls();
    }

    /// How many of the calls contain the text.
    static size_t countOf(const Texts& calls, const std::string& text)
    {
        return static_cast<size_t>(std::count_if(calls.begin(), calls.end(),
                                                 [&text](const std::string& call)
                                                 { return call.find(text) != std::string::npos; }));
    }

    Texts drawCalls(const Scene& scene) { return callsOf<CommandRender>(scene.draw); }

    /// One triangle of three indices from a program that knows "position" at location 0, "normal" at 1 and the uniforms
    /// "KvrPointSize", "KvrUseMergedShaderBuffers" and "color" at 0, 1 and 2.
    Scene makeScene()
    {
        gl.setReflection({{{"position", GL_FLOAT_VEC3}, {"normal", GL_FLOAT_VEC3}, {"KvrAttribDrawIndex", GL_FLOAT}},
                          {{"KvrPointSize", GL_FLOAT}, {"KvrUseMergedShaderBuffers", GL_INT}, {"color", GL_FLOAT_VEC4}},
                          {{"Transform"}, {"Material"}, {"Scene"}},
                          {{"Lights"}}});
        Scene scene;
        scene.shaderState.program = makeProgram();
        scene.shaderState.renderTarget = makeRenderTarget();
        scene.shaderState.viewport = makeViewport();
        scene.vertexBuffer = makeVertexBuffer("position", 3);
        scene.indexBuffer = makeIndexBuffer(3);
        scene.properties.vertexBuffers = {scene.vertexBuffer};
        DrawRange range;
        range.indexBuffer = scene.indexBuffer;
        range.count = 3;
        scene.properties.ranges = {range};
        scene.member = makeMember(scene.properties);
        scene.draw = makeDraw(scene, {scene.member});
        return scene;
    }

    /// What applying a whole record sends.
    Texts stateCalls(const GfxStateProperties& properties)
    {
        gl.clear();
        StateGL(std::make_shared<const GfxStateProperties>(properties)).apply();
        return gl.takeCalls();
    }
};

} // namespace renderengine
