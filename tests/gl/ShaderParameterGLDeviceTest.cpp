#include "GLDeviceTestSupport.h"

#include "gl/BufferGL.h"
#include "gl/ShaderObjectGL.h"
#include "gl/ShaderParameterGL.h"
#include "gl/ShaderProgramGL.h"

#include <renderengine/BufferProperties.h>

#include <cstring>

namespace renderengine
{

namespace
{

// Writes every component of every uniform, in the order of the list below, columns of matrices one after the other.
const char* const s_compute = R"(#version 430
layout(local_size_x = 1) in;
layout(std430, binding = 0) buffer Results { float values[]; };
uniform float f1;
uniform int i1;
uniform vec2 f2;
uniform ivec2 i2;
uniform vec3 f3;
uniform ivec3 i3;
uniform vec4 f4;
uniform ivec4 i4;
uniform mat3 m3;
uniform mat4 m4;
uniform float af1[2];
uniform int ai1[2];
uniform vec2 af2[2];
uniform ivec2 ai2[2];
uniform vec3 af3[2];
uniform ivec3 ai3[2];
uniform vec4 af4[2];
uniform ivec4 ai4[2];
uniform mat4 am4[2];
int next = 0;
void put(float v) { values[next++] = v; }
void put(vec2 v) { put(v.x); put(v.y); }
void put(vec3 v) { put(v.xy); put(v.z); }
void put(vec4 v) { put(v.xyz); put(v.w); }
void put(mat4 v) { put(v[0]); put(v[1]); put(v[2]); put(v[3]); }
void main()
{
    put(f1); put(float(i1)); put(f2); put(vec2(i2)); put(f3); put(vec3(i3)); put(f4); put(vec4(i4));
    put(m3[0]); put(m3[1]); put(m3[2]); put(m4);
    for (int i = 0; i < 2; ++i)
    {
        put(af1[i]); put(float(ai1[i])); put(af2[i]); put(vec2(ai2[i])); put(af3[i]); put(vec3(ai3[i]));
        put(af4[i]); put(vec4(ai4[i])); put(am4[i]);
    }
}
)";

// Counts 1, 2, 3 and so on through the components, so that each has a value of its own.
class Counter
{
public:
    template <typename T> T number() { return static_cast<T>(++m_last); }

    template <typename Vector, typename T = typename Vector::ValueType> Vector vector()
    {
        Vector result;
        for (size_t i = 0; i < Vector::Size; ++i)
        {
            result[i] = number<T>();
        }
        return result;
    }

    template <typename Matrix, size_t Size> Matrix matrix()
    {
        Matrix result;
        for (size_t i = 0; i < Size * Size; ++i)
        {
            result[i / Size][i % Size] = number<float>();
        }
        return result;
    }

private:
    int m_last = 0;
};

class ShaderParameterGLDeviceTest : public ResourceDeviceTest
{
protected:
    template <typename T> void add(const char* name, const T& value)
    {
        parameters.push_back(makeShaderParameterGL(ShaderParameterProperties<T>{name, value}));
    }

    template <typename T> void addArray(const char* name, const std::vector<T>& values)
    {
        parameters.push_back(makeShaderParameterGL(ShaderParameterArrayProperties<T>{name, values}));
    }

    void addSingles(Counter& counter)
    {
        add("f1", counter.number<float>());
        add("i1", counter.number<int>());
        add("f2", counter.vector<SbVec2f>());
        add("i2", counter.vector<SbVec2i32>());
        add("f3", counter.vector<SbVec3f>());
        add("i3", counter.vector<SbVec3i32>());
        add("f4", counter.vector<SbVec4f>());
        add("i4", counter.vector<SbVec4i32>());
        add("m3", counter.matrix<SbMatrix3, 3>());
        add("m4", counter.matrix<SbMatrix, 4>());
    }

    void addArrays(Counter& counter)
    {
        std::vector<float> f1;
        std::vector<int> i1;
        std::vector<SbVec2f> f2;
        std::vector<SbVec2i32> i2;
        std::vector<SbVec3f> f3;
        std::vector<SbVec3i32> i3;
        std::vector<SbVec4f> f4;
        std::vector<SbVec4i32> i4;
        std::vector<SbMatrix> m4;
        for (int i = 0; i < 2; ++i)
        {
            f1.push_back(counter.number<float>());
            i1.push_back(counter.number<int>());
            f2.push_back(counter.vector<SbVec2f>());
            i2.push_back(counter.vector<SbVec2i32>());
            f3.push_back(counter.vector<SbVec3f>());
            i3.push_back(counter.vector<SbVec3i32>());
            f4.push_back(counter.vector<SbVec4f>());
            i4.push_back(counter.vector<SbVec4i32>());
            m4.push_back(counter.matrix<SbMatrix, 4>());
        }
        addArray("af1", f1);
        addArray("ai1", i1);
        addArray("af2", f2);
        addArray("ai2", i2);
        addArray("af3", f3);
        addArray("ai3", i3);
        addArray("af4", f4);
        addArray("ai4", i4);
        addArray("am4", m4);
    }

    std::vector<std::shared_ptr<ShaderParameterGL>> parameters;
};

} // namespace

TEST_F(ShaderParameterGLDeviceTest, AllNineteenReachTheShader)
{
    ShaderObjectProperties source;
    source.stage = 5;
    source.source = s_compute;
    ShaderObjectGL shader;
    ASSERT_TRUE(shader.compile(source));
    ShaderProgramGL program;
    ASSERT_TRUE(program.link({shader.getId()}));
    Counter counter;
    addSingles(counter);
    addArrays(counter);
    ASSERT_EQ(parameters.size(), 19u);
    program.use(1);
    for (const auto& parameter : parameters)
    {
        const GLint location = program.getUniformLocation(parameter->getName());
        EXPECT_GE(location, 0) << parameter->getName();
        parameter->apply(location);
    }
    const size_t count = 20 + 9 + 16 + 2 * (20 + 16);
    BufferGL results;
    BufferProperties properties;
    properties.size = count * sizeof(float);
    results.create(properties);
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, results.getName());
    glDispatchCompute(1, 1, 1);
    glMemoryBarrier(GL_BUFFER_UPDATE_BARRIER_BIT);
    const auto bytes = bufferBytes(results.getName());
    ASSERT_EQ(bytes.size(), count * sizeof(float));
    std::vector<float> values(count);
    std::memcpy(values.data(), bytes.data(), bytes.size());
    std::vector<float> expected;
    for (size_t i = 1; i <= count; ++i)
    {
        expected.push_back(static_cast<float>(i));
    }
    EXPECT_EQ(values, expected);
    glUseProgram(0);
    results.destroy();
    program.destroy();
    shader.destroy();
}

} // namespace renderengine
