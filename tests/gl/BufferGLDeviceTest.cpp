#include "GLDeviceTestSupport.h"

#include "gl/BufferGL.h"

#include <renderengine/BufferProperties.h>

#include <algorithm>
#include <cstring>

namespace renderengine
{

namespace
{

class BufferGLDeviceTest : public ResourceDeviceTest
{
protected:
    void TearDown() override
    {
        buffer.destroy();
        ResourceDeviceTest::TearDown();
    }

    static BufferProperties bytesOf(const std::vector<uint8_t>& data, uint8_t kind = 0)
    {
        BufferProperties properties;
        properties.size = data.size();
        properties.data = data.data();
        properties.kind = kind;
        return properties;
    }

    BufferGL buffer;
};

} // namespace

TEST_F(BufferGLDeviceTest, CreateAndUpdateStoreTheBytes)
{
    const auto first = pattern(64);
    buffer.create(bytesOf(first));
    EXPECT_EQ(bufferBytes(buffer.getName()), first);
    const auto second = pattern(100, 2);
    for (uint8_t kind = 0; kind < 4; ++kind)
    {
        buffer.update(bytesOf(second, kind));
        EXPECT_EQ(bufferBytes(buffer.getName()), second);
    }
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
}

TEST_F(BufferGLDeviceTest, ResizeChangesTheSize)
{
    buffer.create(bytesOf(pattern(64)));
    buffer.resize(256);
    EXPECT_EQ(bufferBytes(buffer.getName()).size(), 256u);
}

TEST_F(BufferGLDeviceTest, AReadMappingShowsTheBytesFromItsOffset)
{
    const auto data = pattern(64);
    buffer.create(bytesOf(data));
    buffer.map(16, 32, 0);
    ASSERT_NE(buffer.getMappedPointer(), nullptr);
    EXPECT_EQ(std::memcmp(buffer.getMappedPointer(), data.data() + 16, 32), 0);
    buffer.unmap();
}

TEST_F(BufferGLDeviceTest, AWriteMappingChangesTheBytes)
{
    auto data = pattern(64);
    buffer.create(bytesOf(data));
    for (uint32_t access = 1; access < 3; ++access)
    {
        buffer.map(8, 16, access);
        ASSERT_NE(buffer.getMappedPointer(), nullptr);
        std::memset(buffer.getMappedPointer(), static_cast<int>(access), 16);
        buffer.unmap();
        std::fill_n(data.begin() + 8, 16, static_cast<uint8_t>(access));
        EXPECT_EQ(bufferBytes(buffer.getName()), data);
    }
}

TEST_F(BufferGLDeviceTest, AMappingOutsideTheBufferGivesNullAndAnError)
{
    buffer.create(bytesOf(pattern(64)));
    buffer.map(32, 64, 0);
    EXPECT_EQ(buffer.getMappedPointer(), nullptr);
    EXPECT_EQ(device.takeErrors().size(), 1u);
}

TEST_F(BufferGLDeviceTest, EachUsageAndAccessReachesTheDriver)
{
    const auto parameter = [this](GLenum name)
    {
        GLint value = 0;
        glBindBuffer(GL_ARRAY_BUFFER, buffer.getName());
        glGetBufferParameteriv(GL_ARRAY_BUFFER, name, &value);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        return value;
    };
    const GLint usages[] = {GL_STATIC_DRAW, GL_DYNAMIC_DRAW, GL_STATIC_COPY, GL_DYNAMIC_COPY};
    const GLint accesses[] = {GL_MAP_READ_BIT, GL_MAP_WRITE_BIT, GL_MAP_READ_BIT | GL_MAP_WRITE_BIT};
    const auto data = pattern(16);
    buffer.create(bytesOf(data));
    for (uint8_t kind = 0; kind < 4; ++kind)
    {
        buffer.update(bytesOf(data, kind));
        EXPECT_EQ(parameter(GL_BUFFER_USAGE), usages[kind]);
        for (uint32_t access = 0; access < 3; ++access)
        {
            buffer.map(4, 8, access);
            EXPECT_EQ(parameter(GL_BUFFER_ACCESS_FLAGS), accesses[access]);
            buffer.unmap();
        }
    }
}

TEST_F(BufferGLDeviceTest, ASecondMapKeepsTheFirst)
{
    const auto data = pattern(64);
    buffer.create(bytesOf(data));
    buffer.map(8, 16, 0);
    const void* first = buffer.getMappedPointer();
    buffer.map(0, 64, 2);
    EXPECT_EQ(buffer.getMappedPointer(), first);
    EXPECT_EQ(std::memcmp(first, data.data() + 8, 16), 0);
    buffer.unmap();
    buffer.unmap();
    // Only the second unmapping has nothing to unmap.
    EXPECT_EQ(device.takeErrors().size(), 1u);
}

TEST_F(BufferGLDeviceTest, CopiesOfOddSizesMoveTheirBytesOnly)
{
    const auto data = pattern(257);
    buffer.create(bytesOf(data));
    BufferGL destination;
    for (const uint64_t size : {1u, 3u, 7u, 33u, 255u})
    {
        SCOPED_TRACE(size);
        destination.create(bytesOf(std::vector<uint8_t>(259, 0)));
        buffer.copy(destination, 1, 3, size);
        std::vector<uint8_t> expected(259, 0);
        std::copy_n(data.begin() + 1, size, expected.begin() + 3);
        EXPECT_EQ(bufferBytes(destination.getName()), expected);
        destination.destroy();
    }
}

TEST_F(BufferGLDeviceTest, ACopyThatDoesNotFitIsRefusedAndChangesNothing)
{
    buffer.create(bytesOf(pattern(64)));
    BufferGL destination;
    const std::vector<uint8_t> zeros(32, 0);
    destination.create(bytesOf(zeros));
    // The whole source, which is more than the destination holds, and a part behind its end.
    buffer.copy(destination, 0, 0, 0);
    buffer.copy(destination, 0, 0xFFFFFFFF, 8);
    buffer.copy(destination, 60, 0, 8);
    EXPECT_EQ(device.takeErrors().size(), 3u);
    EXPECT_EQ(bufferBytes(destination.getName()), zeros);
    destination.destroy();
}

TEST_F(BufferGLDeviceTest, CopyMovesPartOrWhole)
{
    const auto data = pattern(32);
    buffer.create(bytesOf(data));
    BufferGL destination;
    destination.create(bytesOf(std::vector<uint8_t>(64, 0)));
    buffer.copy(destination, 4, 40, 8);
    std::vector<uint8_t> expected(64, 0);
    std::copy_n(data.begin() + 4, 8, expected.begin() + 40);
    EXPECT_EQ(bufferBytes(destination.getName()), expected);
    buffer.copy(destination, 0, 0, 0);
    std::copy(data.begin(), data.end(), expected.begin());
    EXPECT_EQ(bufferBytes(destination.getName()), expected);
    buffer.copy(destination, 0, 32, 1000);
    std::copy(data.begin(), data.end(), expected.begin() + 32);
    EXPECT_EQ(bufferBytes(destination.getName()), expected);
    destination.destroy();
}

TEST_F(BufferGLDeviceTest, DestroyDeletesTheName)
{
    buffer.create(bytesOf(pattern(8)));
    const GLuint name = buffer.getName();
    EXPECT_TRUE(glIsBuffer(name));
    buffer.destroy();
    EXPECT_FALSE(glIsBuffer(name));
}

} // namespace renderengine
