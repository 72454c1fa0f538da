#pragma once

#include "support/GLDeviceFixture.h"
#include "support/LogLines.h"

#include <glbinding/gl.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace renderengine
{

using Texts = std::vector<std::string>;
using GLProfile = ::renderengine::testing::GLProfile;
using GLVersion = ::renderengine::testing::GLVersion;

/// A case on a real context that fails also for log lines that it has not taken.
class ResourceDeviceTest : public ::renderengine::testing::GLDeviceTest
{
protected:
    using GLDeviceTest::GLDeviceTest;

    void TearDown() override
    {
        EXPECT_EQ(log.take(), Texts{}) << "unexpected log lines";
        GLDeviceTest::TearDown();
    }

    /// The bytes that GL keeps for a buffer.
    static std::vector<uint8_t> bufferBytes(GLuint name)
    {
        glBindBuffer(GL_COPY_READ_BUFFER, name);
        GLint64 size = 0;
        glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, &size);
        std::vector<uint8_t> bytes(static_cast<size_t>(size));
        glGetBufferSubData(GL_COPY_READ_BUFFER, 0, static_cast<GLsizeiptr>(size), bytes.data());
        glBindBuffer(GL_COPY_READ_BUFFER, 0);
        return bytes;
    }

    static GLint integer(GLenum name)
    {
        GLint value = 0;
        glGetIntegerv(name, &value);
        return value;
    }

    /// Bytes that differ from their neighbours.
    static std::vector<uint8_t> pattern(size_t size, unsigned seed = 1)
    {
        std::vector<uint8_t> bytes(size);
        for (size_t i = 0; i < size; ++i)
        {
            bytes[i] = static_cast<uint8_t>(i * 7 + seed * 31);
        }
        return bytes;
    }

    ::renderengine::testing::LogLines log;
};

/// The same in a core profile.
class ResourceCoreDeviceTest : public ResourceDeviceTest
{
protected:
    ResourceCoreDeviceTest() : ResourceDeviceTest(GLProfile::Core) {}
};

/// The same on a driver that stops at 4.1.
class Resource41DeviceTest : public ResourceDeviceTest
{
protected:
    Resource41DeviceTest() : ResourceDeviceTest(GLProfile::Compatibility, GLVersion::Limited41) {}
};

} // namespace renderengine
