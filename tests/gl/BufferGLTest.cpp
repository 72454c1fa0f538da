#include "gl/BufferGL.h"

#include "GLRecordingFixture.h"

#include "gl/IndexBufferGL.h"
#include "gl/ShaderBufferGL.h"
#include "gl/ShaderProgramGL.h"
#include "gl/VertexBufferGL.h"

#include <renderengine/BufferProperties.h>

#include <array>
#include <cstring>
#include <memory>

namespace renderengine
{

namespace
{

BufferProperties bufferOf(uint64_t size, const void* data = nullptr, uint8_t kind = 0)
{
    BufferProperties properties;
    properties.size = size;
    properties.data = data;
    properties.kind = kind;
    return properties;
}

VertexBufferProperties attribute(const std::string& name)
{
    VertexBufferProperties properties;
    properties.name = name;
    properties.componentCount = 3;
    properties.normalized = 1;
    properties.stride = 24;
    properties.offset = 12;
    properties.divisor = 2;
    properties.dataType = SbDataType::SHORT;
    return properties;
}

} // namespace

class BufferGLTest : public GLRecordingTest
{
protected:
    void SetUp() override
    {
        buffer.create(bufferOf(16));
        vertices.create(attribute("position"), &buffer);
        indices.create(IndexBufferProperties{}, &buffer);
        block16.create(ShaderBufferProperties{}, &buffer);
        clean();
    }

    void clean()
    {
        for (BufferContainerGL* view : views())
        {
            view->setDirty(false);
        }
        gl.clear();
    }

    std::array<BufferContainerGL*, 3> views() { return {&vertices, &indices, &block16}; }

    void expectViews(bool dirty)
    {
        for (const BufferContainerGL* view : views())
        {
            EXPECT_EQ(view->isDirty(), dirty);
        }
    }

    BufferGL buffer;
    VertexBufferGL vertices;
    IndexBufferGL indices;
    ShaderBufferGL block16;
};

TEST_F(BufferGLTest, CreateGeneratesANameAndStoresTheData)
{
    const std::array<float, 4> data{1, 2, 3, 4};
    BufferGL created;
    created.create(bufferOf(16, data.data()));
    EXPECT_EQ(gl.takeCalls(), (Texts{"glGenBuffers(1, -> 2)", "glBindBuffer(GL_ARRAY_BUFFER, 2)",
                                     "glBufferData(GL_ARRAY_BUFFER, 16, <pointer>, GL_STATIC_DRAW)",
                                     "glBindBuffer(GL_ARRAY_BUFFER, 0)"}));
    EXPECT_EQ(created.getName(), 2u);
    EXPECT_EQ(created.getSize(), 16u);
    EXPECT_EQ(std::memcmp(gl.bufferContent(2).data(), data.data(), 16), 0);
}

TEST_F(BufferGLTest, CreateWithNullDataAllocatesTheStore)
{
    BufferGL created;
    created.create(bufferOf(64));
    EXPECT_EQ(gl.callsMatching("glBufferData"), Texts{"glBufferData(GL_ARRAY_BUFFER, 64, null, GL_STATIC_DRAW)"});
    EXPECT_EQ(gl.bufferContent(2).size(), 64u);
}

TEST_F(BufferGLTest, UsageComesFromTheTwoLowBitsOfTheKind)
{
    const std::array<const char*, 4> usages{"GL_STATIC_DRAW", "GL_DYNAMIC_DRAW", "GL_STATIC_COPY", "GL_DYNAMIC_COPY"};
    for (unsigned kind = 0; kind < 8; ++kind)
    {
        SCOPED_TRACE(kind);
        buffer.update(bufferOf(4, nullptr, static_cast<uint8_t>(kind)));
        EXPECT_EQ(gl.callsMatching("glBufferData"),
                  Texts{"glBufferData(GL_ARRAY_BUFFER, 4, null, " + std::string(usages[kind & 3u]) + ")"});
        gl.clear();
    }
}

TEST_F(BufferGLTest, UpdateReallocatesAndSetsTheViewsDirty)
{
    buffer.update(bufferOf(32, nullptr, 1));
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)", "glBufferData(GL_ARRAY_BUFFER, 32, null, GL_DYNAMIC_DRAW)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 0)"}));
    EXPECT_EQ(buffer.getSize(), 32u);
    expectViews(true);
}

TEST_F(BufferGLTest, ResizeToThePresentSizeDiscardsTheContentsAndSetsTheViewsDirty)
{
    buffer.resize(16);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)", "glBufferData(GL_ARRAY_BUFFER, 16, null, GL_STATIC_DRAW)",
                     "glBindBuffer(GL_ARRAY_BUFFER, 0)"}));
    expectViews(true);
}

TEST_F(BufferGLTest, ResizeKeepsTheUsageAndStoresTheSize)
{
    buffer.update(bufferOf(8, nullptr, 3));
    gl.clear();
    buffer.resize(128);
    EXPECT_EQ(gl.callsMatching("glBufferData"), Texts{"glBufferData(GL_ARRAY_BUFFER, 128, null, GL_DYNAMIC_COPY)"});
    EXPECT_EQ(buffer.getSize(), 128u);
}

TEST_F(BufferGLTest, MapsTheRangeForEachAccess)
{
    const std::array<const char*, 3> bits{"GL_MAP_READ_BIT", "GL_MAP_WRITE_BIT", "GL_MAP_READ_BIT | GL_MAP_WRITE_BIT"};
    for (uint32_t access = 0; access < 3; ++access)
    {
        SCOPED_TRACE(access);
        buffer.map(4, 8, access);
        EXPECT_EQ(gl.takeCalls(), (Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)",
                                         "glMapBufferRange(GL_ARRAY_BUFFER, 4, 8, " + std::string(bits[access]) + ")",
                                         "glBindBuffer(GL_ARRAY_BUFFER, 0)"}));
        EXPECT_NE(buffer.getMappedPointer(), nullptr);
        expectViews(access != 0);
        buffer.unmap();
        clean();
    }
}

TEST_F(BufferGLTest, AnAccessOutsideTheTableMapsNothing)
{
    buffer.map(0, 16, 3);
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
    expectViews(false);
}

TEST_F(BufferGLTest, ASecondMapKeepsTheFirstPointer)
{
    buffer.map(4, 8, 0);
    const void* first = buffer.getMappedPointer();
    gl.clear();
    buffer.map(0, 16, 1);
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_EQ(buffer.getMappedPointer(), first);
    expectViews(false);
}

TEST_F(BufferGLTest, AFailedMapGivesNullAndCanBeTriedAgain)
{
    gl.fail("glMapBufferRange");
    buffer.map(0, 16, 1);
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
    gl.succeed("glMapBufferRange");
    buffer.map(0, 16, 1);
    EXPECT_NE(buffer.getMappedPointer(), nullptr);
}

TEST_F(BufferGLTest, UnmapForgetsThePointer)
{
    buffer.map(0, 16, 0);
    gl.clear();
    buffer.unmap();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)", "glUnmapBuffer(GL_ARRAY_BUFFER)",
                                     "glBindBuffer(GL_ARRAY_BUFFER, 0)"}));
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
}

TEST_F(BufferGLTest, UpdateResizeAndDestroyEndAMapping)
{
    buffer.map(0, 16, 0);
    buffer.update(bufferOf(16));
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
    buffer.map(0, 16, 0);
    buffer.resize(16);
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
    buffer.map(0, 16, 0);
    buffer.destroy();
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
}

TEST_F(BufferGLTest, CopyRunsThroughTheTwoCopyTargets)
{
    BufferGL destination;
    destination.create(bufferOf(64));
    gl.clear();
    buffer.copy(destination, 4, 8, 12);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glBindBuffer(GL_COPY_WRITE_BUFFER, 2)", "glBindBuffer(GL_COPY_READ_BUFFER, 1)",
                                     "glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, <pointer>)",
                                     "glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 4, 8, 12)",
                                     "glBindBuffer(GL_COPY_WRITE_BUFFER, 0)", "glBindBuffer(GL_COPY_READ_BUFFER, 0)"}));
}

TEST_F(BufferGLTest, CopyOfSizeZeroOrAboveTheSourceTakesTheWholeSource)
{
    BufferGL destination;
    destination.create(bufferOf(64));
    for (const uint64_t size : {uint64_t{0}, uint64_t{16}, uint64_t{17}, ~uint64_t{0}})
    {
        SCOPED_TRACE(size);
        gl.clear();
        buffer.copy(destination, 4, 8, size);
        EXPECT_EQ(gl.callsMatching("glCopyBufferSubData"),
                  Texts{"glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 4, 8, 16)"});
    }
}

TEST_F(BufferGLTest, CopyLeavesTheViewsOfBothBuffersClean)
{
    BufferGL source;
    source.create(bufferOf(16));
    source.copy(buffer, 0, 0, 0);
    expectViews(false);
    buffer.copy(source, 0, 0, 0);
    expectViews(false);
}

TEST_F(BufferGLTest, DestroyLeavesTheViewsWithoutABuffer)
{
    buffer.destroy();
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsBuffer(1)", "glDeleteBuffers(1, {1})"}));
    for (const BufferContainerGL* view : views())
    {
        EXPECT_EQ(view->getBuffer(), nullptr);
    }
    EXPECT_TRUE(buffer.getContainers().empty());
    EXPECT_EQ(buffer.getName(), 0u);
}

TEST_F(BufferGLTest, DestroyOfAnUnknownNameDeletesNothing)
{
    BufferGL empty;
    empty.destroy();
    EXPECT_EQ(gl.countOf("glDeleteBuffers"), 0u);
}

TEST_F(BufferGLTest, ABufferThatGoesWithoutDestroyLeavesTheViewsWithoutABuffer)
{
    {
        BufferGL other;
        other.create(bufferOf(4));
        vertices.setBuffer(&other);
        gl.clear();
    }
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_EQ(vertices.getBuffer(), nullptr);
}

class BufferContainerGLTest : public BufferGLTest
{
};

TEST_F(BufferContainerGLTest, MovesItsRegistrationToAnotherBuffer)
{
    BufferGL other;
    vertices.setBuffer(&other);
    EXPECT_EQ(buffer.getContainers(), (std::vector<BufferContainerGL*>{&indices, &block16}));
    EXPECT_EQ(other.getContainers(), std::vector<BufferContainerGL*>{&vertices});
    vertices.setBuffer(nullptr);
    EXPECT_TRUE(other.getContainers().empty());
}

TEST_F(BufferContainerGLTest, SettingTheSameBufferRegistersOnce)
{
    vertices.setBuffer(&buffer);
    EXPECT_EQ(buffer.getContainers().size(), 3u);
}

TEST_F(BufferContainerGLTest, UnregistersWhenDestroyedOrDropped)
{
    indices.destroy();
    EXPECT_EQ(buffer.getContainers(), (std::vector<BufferContainerGL*>{&vertices, &block16}));
    {
        VertexBufferGL passing;
        passing.create(attribute("normal"), &buffer);
        EXPECT_EQ(buffer.getContainers().size(), 3u);
    }
    EXPECT_EQ(buffer.getContainers().size(), 2u);
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

class VertexBufferGLTest : public BufferGLTest
{
protected:
    void SetUp() override
    {
        BufferGLTest::SetUp();
        glbinding::ShaderReflection reflection;
        reflection.attributes = {{"normal", GL_FLOAT_VEC3, 1, 0, 0}, {"position", GL_FLOAT_VEC3, 1, 5, 0}};
        gl.setReflection(reflection);
        program.link({});
        gl.clear();
    }

    ShaderProgramGL program;
};

TEST_F(VertexBufferGLTest, CreateTakesTheRecordAndSetsTheViewDirty)
{
    VertexBufferGL view;
    view.create(attribute("position"), &buffer);
    EXPECT_EQ(view.getComponentCount(), 3);
    EXPECT_EQ(view.getType(), GLenum{GL_SHORT});
    EXPECT_EQ(view.getNormalized(), GL_TRUE);
    EXPECT_EQ(view.getStride(), 24);
    EXPECT_EQ(view.getOffset(), 12u);
    EXPECT_EQ(view.getDivisor(), 2u);
    EXPECT_EQ(view.getName(), "position");
    EXPECT_EQ(view.getProperties(), attribute("position"));
    EXPECT_EQ(view.getBuffer(), &buffer);
    EXPECT_TRUE(view.isDirty());
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(VertexBufferGLTest, UpdateMovesToAnotherBufferAndReachesDependents)
{
    BaseResourceGL merged;
    merged.addDependency(vertices);
    BufferGL other;
    vertices.update(attribute("normal"), &other);
    EXPECT_EQ(vertices.getBuffer(), &other);
    EXPECT_EQ(vertices.getName(), "normal");
    EXPECT_TRUE(vertices.isDirty());
    EXPECT_TRUE(merged.isDirty());
}

TEST_F(VertexBufferGLTest, EachDataTypeHasItsGLType)
{
    const std::array<GLenum, 12> types{GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT, GL_UNSIGNED_INT, GL_UNSIGNED_BYTE,
                                       GL_BYTE,          GL_SHORT,          GL_INT,          GL_UNSIGNED_BYTE,
                                       GL_UNSIGNED_BYTE, GL_UNSIGNED_BYTE,  GL_FLOAT,        GL_DOUBLE};
    for (uint32_t i = 0; i < types.size(); ++i)
    {
        SCOPED_TRACE(i);
        VertexBufferProperties properties = attribute("position");
        properties.dataType = static_cast<SbDataType::Type>(i);
        vertices.update(properties, &buffer);
        EXPECT_EQ(vertices.getType(), types[i]);
        IndexBufferProperties index;
        index.dataType = properties.dataType;
        indices.update(index, &buffer);
        EXPECT_EQ(indices.getType(), types[i]);
    }
}

TEST_F(VertexBufferGLTest, BindPointsTheAttributeAtTheBuffer)
{
    EXPECT_EQ(vertices.bind(&program), 5);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)", "glEnableVertexAttribArray(5)",
                     "glVertexAttribPointer(5, 3, GL_SHORT, GL_TRUE, 24, 12)", "glVertexAttribDivisor(5, 2)"}));
}

TEST_F(VertexBufferGLTest, AnAttributeThatTheProgramLacksGivesMinusOne)
{
    vertices.update(attribute("absent"), &buffer);
    EXPECT_EQ(vertices.bind(&program), -1);
    EXPECT_EQ(gl.takeCalls(), Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)"});
}

TEST_F(VertexBufferGLTest, BindWithoutAProgramBindsTheBufferOnly)
{
    EXPECT_EQ(vertices.bind(nullptr), -1);
    EXPECT_EQ(gl.takeCalls(), Texts{"glBindBuffer(GL_ARRAY_BUFFER, 1)"});
}

TEST_F(VertexBufferGLTest, BindWithoutABufferSkipsTheAttribute)
{
    buffer.destroy();
    gl.clear();
    EXPECT_EQ(vertices.bind(&program), -1);
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(VertexBufferGLTest, UnbindDisablesTheAttribute)
{
    vertices.unbind(&program, 3);
    EXPECT_EQ(gl.takeCalls(), Texts{"glDisableVertexAttribArray(3)"});
}

TEST_F(VertexBufferGLTest, UnbindLooksANegativeLocationUp)
{
    vertices.unbind(&program, -1);
    EXPECT_EQ(gl.takeCalls(), Texts{"glDisableVertexAttribArray(5)"});
    vertices.update(attribute("absent"), &buffer);
    vertices.unbind(&program, -1);
    vertices.unbind(nullptr, 5);
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

class IndexBufferGLTest : public BufferGLTest
{
};

TEST_F(IndexBufferGLTest, TakesTypeAndSizeAndGetsDirty)
{
    IndexBufferProperties properties;
    properties.dataType = SbDataType::UNSIGNED_SHORT;
    indices.update(properties, nullptr);
    EXPECT_EQ(indices.getType(), GLenum{GL_UNSIGNED_SHORT});
    EXPECT_EQ(indices.getIndexSize(), 2u);
    EXPECT_EQ(indices.getBuffer(), nullptr);
    EXPECT_TRUE(indices.isDirty());
}

class ShaderBufferGLTest : public BufferGLTest
{
};

TEST_F(ShaderBufferGLTest, KindZeroIsAStorageBlockAndAnyOtherAUniformBlock)
{
    ShaderBufferProperties properties;
    properties.name = "Transforms";
    for (const uint32_t kind : {0u, 1u, 2u})
    {
        properties.kind = kind;
        block16.setDirty(false);
        block16.update(properties, &buffer);
        EXPECT_EQ(block16.getTarget(), kind == 0 ? GLenum{GL_SHADER_STORAGE_BUFFER} : GLenum{GL_UNIFORM_BUFFER});
        EXPECT_EQ(block16.getName(), "Transforms");
        EXPECT_TRUE(block16.isDirty());
    }
}

TEST_F(ShaderBufferGLTest, BindsItsBufferOrZero)
{
    block16.bind(3);
    block16.setBuffer(nullptr);
    block16.bind(4);
    EXPECT_EQ(gl.takeCalls(),
              (Texts{"glBindBufferBase(GL_UNIFORM_BUFFER, 3, 1)", "glBindBufferBase(GL_UNIFORM_BUFFER, 4, 0)"}));
}

} // namespace renderengine
