#pragma once

#include "support/LogLines.h"

#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace renderengine
{

using Texts = std::vector<std::string>;

/// A case without a device: calls are recorded, log lines are kept and must have been asked for.
class GLRecordingTest : public ::testing::Test
{
protected:
    void TearDown() override { EXPECT_EQ(log.take(), Texts{}) << "unexpected log lines"; }

    /// An address that the recording prints as its number. Nothing may read through it.
    static const void* block(uintptr_t number) { return reinterpret_cast<const void*>(number); }

    glbinding::RecordingGL gl;
    ::renderengine::testing::LogLines log;
};

} // namespace renderengine
