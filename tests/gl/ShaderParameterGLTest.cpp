#include "gl/ShaderParameterGL.h"

#include "GLRecordingFixture.h"

#include <type_traits>

namespace renderengine
{

namespace
{

class ShaderParameterGLTest : public GLRecordingTest
{
protected:
    template <typename T> Texts applied(const T& value)
    {
        ShaderParameterProperties<T> properties;
        properties.name = "parameter";
        properties.value = value;
        return appliedRecord(properties);
    }

    template <typename T> Texts appliedArray(const std::vector<T>& values)
    {
        ShaderParameterArrayProperties<T> properties;
        properties.name = "parameter";
        properties.value = values;
        return appliedRecord(properties);
    }

    template <typename Properties> Texts appliedRecord(const Properties& properties)
    {
        const std::shared_ptr<ShaderParameterGL> parameter = makeShaderParameterGL(properties);
        EXPECT_EQ(parameter->getName(), "parameter");
        EXPECT_EQ(gl.takeCalls(), Texts{});
        parameter->apply(3);
        return gl.takeCalls();
    }
};

template <typename Parameter> constexpr bool derivesDirectly = std::is_base_of_v<ShaderParameterGL, Parameter>;

} // namespace

TEST_F(ShaderParameterGLTest, Scalars)
{
    EXPECT_EQ(applied(1.5f), Texts{"glUniform1f(3, 1.5)"});
    EXPECT_EQ(applied(-7), Texts{"glUniform1i(3, -7)"});
}

TEST_F(ShaderParameterGLTest, Vectors)
{
    EXPECT_EQ(applied(SbVec2f(1, 2)), Texts{"glUniform2fv(3, 1, {1, 2})"});
    EXPECT_EQ(applied(SbVec2i32(1, -2)), Texts{"glUniform2iv(3, 1, {1, -2})"});
    EXPECT_EQ(applied(SbVec3f(1, 2, 3)), Texts{"glUniform3fv(3, 1, {1, 2, 3})"});
    EXPECT_EQ(applied(SbVec3i32(1, 2, -3)), Texts{"glUniform3iv(3, 1, {1, 2, -3})"});
    EXPECT_EQ(applied(SbVec4f(1, 2, 3, 4)), Texts{"glUniform4fv(3, 1, {1, 2, 3, 4})"});
    EXPECT_EQ(applied(SbVec4i32(1, 2, 3, -4)), Texts{"glUniform4iv(3, 1, {1, 2, 3, -4})"});
}

TEST_F(ShaderParameterGLTest, MatricesAreNotTransposed)
{
    EXPECT_EQ(applied(SbMatrix3(1, 2, 3, 4, 5, 6, 7, 8, 9)),
              Texts{"glUniformMatrix3fv(3, 1, GL_FALSE, {1, 2, 3, 4, 5, 6, 7, 8, 9})"});
    EXPECT_EQ(applied(SbMatrix::translation(SbVec3f(5, 6, 7))),
              Texts{"glUniformMatrix4fv(3, 1, GL_FALSE, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1})"});
}

TEST_F(ShaderParameterGLTest, ArraysAreSentInOneCall)
{
    EXPECT_EQ(appliedArray<float>({1, 2, 3}), Texts{"glUniform1fv(3, 3, {1, 2, 3})"});
    EXPECT_EQ(appliedArray<int>({1, -2}), Texts{"glUniform1iv(3, 2, {1, -2})"});
    EXPECT_EQ(appliedArray<SbVec2f>({{1, 2}, {3, 4}}), Texts{"glUniform2fv(3, 2, {1, 2, 3, 4})"});
    EXPECT_EQ(appliedArray<SbVec2i32>({{1, 2}, {3, 4}}), Texts{"glUniform2iv(3, 2, {1, 2, 3, 4})"});
    EXPECT_EQ(appliedArray<SbVec3f>({{1, 2, 3}, {4, 5, 6}}), Texts{"glUniform3fv(3, 2, {1, 2, 3, 4, 5, 6})"});
    EXPECT_EQ(appliedArray<SbVec3i32>({{1, 2, 3}, {4, 5, 6}}), Texts{"glUniform3iv(3, 2, {1, 2, 3, 4, 5, 6})"});
    EXPECT_EQ(appliedArray<SbVec4f>({{1, 2, 3, 4}, {5, 6, 7, 8}}),
              Texts{"glUniform4fv(3, 2, {1, 2, 3, 4, 5, 6, 7, 8})"});
    EXPECT_EQ(appliedArray<SbVec4i32>({{1, 2, 3, 4}, {5, 6, 7, 8}}),
              Texts{"glUniform4iv(3, 2, {1, 2, 3, 4, 5, 6, 7, 8})"});
    EXPECT_EQ(appliedArray<SbMatrix>({SbMatrix(), SbMatrix::scaling(SbVec3f(2, 3, 4))}),
              Texts{"glUniformMatrix4fv(3, 2, GL_FALSE, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 2, 0, 0, 0, "
                    "0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1})"});
}

TEST_F(ShaderParameterGLTest, AnEmptyArraySendsNoValues)
{
    EXPECT_EQ(appliedArray<float>({}), Texts{"glUniform1fv(3, 0, null)"});
}

TEST_F(ShaderParameterGLTest, UpdateReplacesNameAndValue)
{
    ShaderParameterGL1f parameter({"first", 1});
    parameter.update({"second", 2});
    EXPECT_EQ(parameter.getName(), "second");
    parameter.apply(0);
    ShaderParameterArrayGL1i array({"first", {1}});
    array.update({"second", {2, 3}});
    EXPECT_EQ(array.getName(), "second");
    array.apply(1);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glUniform1f(0, 2)", "glUniform1iv(1, 2, {2, 3})"}));
}

TEST_F(ShaderParameterGLTest, TheNineteenClassesShareOneBase)
{
    EXPECT_TRUE((derivesDirectly<ShaderParameterGL1f> && derivesDirectly<ShaderParameterGL1i> &&
                 derivesDirectly<ShaderParameterGL2f> && derivesDirectly<ShaderParameterGL2i> &&
                 derivesDirectly<ShaderParameterGL3f> && derivesDirectly<ShaderParameterGL3i> &&
                 derivesDirectly<ShaderParameterGL4f> && derivesDirectly<ShaderParameterGL4i> &&
                 derivesDirectly<ShaderParameterGLMatrix3> && derivesDirectly<ShaderParameterGLMatrix>));
    EXPECT_TRUE((derivesDirectly<ShaderParameterArrayGL1f> && derivesDirectly<ShaderParameterArrayGL1i> &&
                 derivesDirectly<ShaderParameterArrayGL2f> && derivesDirectly<ShaderParameterArrayGL2i> &&
                 derivesDirectly<ShaderParameterArrayGL3f> && derivesDirectly<ShaderParameterArrayGL3i> &&
                 derivesDirectly<ShaderParameterArrayGL4f> && derivesDirectly<ShaderParameterArrayGL4i> &&
                 derivesDirectly<ShaderParameterArrayGLMatrix>));
}

} // namespace renderengine
