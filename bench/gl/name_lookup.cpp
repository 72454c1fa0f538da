// What it costs to find the location of a uniform and of an attribute by name, as a draw does for each of its
// parameters and vertex buffers, beside one look-up in a map of the standard library that holds the same names.

#include "gl/ShaderProgramGL.h"

#include <benchmark/benchmark.h>
#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace
{

using namespace renderengine;

/// Names of a usual program: short ones, that a string keeps in itself, and long ones.
const std::vector<std::string>& names()
{
    static const std::vector<std::string> s_names{"position",
                                                  "normal",
                                                  "texCoord0",
                                                  "color",
                                                  "modelMatrix",
                                                  "viewMatrix",
                                                  "projectionMatrix",
                                                  "lightPosition",
                                                  "lightDiffuseColor",
                                                  "materialShininess",
                                                  "baseColorTexture",
                                                  "normalMapTexture",
                                                  "KvrPointSize",
                                                  "opacity",
                                                  "environmentMapIntensity",
                                                  "clipDistance"};
    return s_names;
}

/// A linked program that exposes every name both as a uniform and as an attribute.
void linkProgram(ShaderProgramGL& program)
{
    // Needed for the link only: the maps are filled then, and the look-ups make no GL call.
    glbinding::RecordingGL gl;
    glbinding::ShaderReflection reflection;
    for (const std::string& name : names())
    {
        glbinding::ShaderVariable variable;
        variable.name = name;
        variable.type = GL_FLOAT_VEC4;
        reflection.uniforms.push_back(variable);
        reflection.attributes.push_back(variable);
    }
    gl.setReflection(reflection);
    program.link({});
}

template <class LookUp> void lookUpAll(benchmark::State& state, const LookUp& lookUp)
{
    for (auto _ : state)
    {
        int sum = 0;
        for (const std::string& name : names())
        {
            sum += lookUp(name);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(names().size()));
}

void lookUpUniforms(benchmark::State& state)
{
    ShaderProgramGL program;
    linkProgram(program);
    if (program.getUniformLocation(names().back()) != static_cast<GLint>(names().size()) - 1)
    {
        state.SkipWithError("the program does not expose its names");
        return;
    }
    lookUpAll(state, [&program](const std::string& name) { return program.getUniformLocation(name); });
}

void lookUpAttributes(benchmark::State& state)
{
    ShaderProgramGL program;
    linkProgram(program);
    if (program.getAttribLocation(names().back()) != static_cast<GLint>(names().size()) - 1)
    {
        state.SkipWithError("the program does not expose its names");
        return;
    }
    lookUpAll(state, [&program](const std::string& name) { return program.getAttribLocation(name); });
}

void lookUpInMap(benchmark::State& state)
{
    std::unordered_map<std::string, int> map;
    for (const std::string& name : names())
    {
        map.emplace(name, static_cast<int>(map.size()));
    }
    lookUpAll(state, [&map](const std::string& name) { return map.find(name)->second; });
}

} // namespace

BENCHMARK(lookUpUniforms)->Name("BM_NameLookup/engine");
BENCHMARK(lookUpInMap)->Name("BM_NameLookup/floor");
BENCHMARK(lookUpAttributes)->Name("BM_AttributeLookup/engine");
BENCHMARK(lookUpInMap)->Name("BM_AttributeLookup/floor");

BENCHMARK_MAIN();
