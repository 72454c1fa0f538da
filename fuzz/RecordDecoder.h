#pragma once

#include "ByteReader.h"

#include <renderengine/BlitProperties.h>
#include <renderengine/BufferProperties.h>
#include <renderengine/ClearTargetProperties.h>
#include <renderengine/ComputeProperties.h>
#include <renderengine/DrawProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/Handle.h>
#include <renderengine/IndexBufferProperties.h>
#include <renderengine/RenderTargetProperties.h>
#include <renderengine/SamplerProperties.h>
#include <renderengine/ShaderBufferProperties.h>
#include <renderengine/ShaderObjectProperties.h>
#include <renderengine/ShaderParameterArrayProperties.h>
#include <renderengine/ShaderParameterProperties.h>
#include <renderengine/ShaderProgramProperties.h>
#include <renderengine/ShaderStateProperties.h>
#include <renderengine/TextureImageProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>
#include <renderengine/TransformFeedbackProperties.h>
#include <renderengine/VertexBufferProperties.h>
#include <renderengine/ViewportProperties.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

namespace renderengine::fuzz
{

/// What an input may ask of memory, which depends on the renderer under test.
struct Limits
{
    /// Bytes of a buffer without data of its own. Sizes that no heap can give are asked for all the same.
    uint64_t bufferSize = 65536;
    /// Vertices, instances and the like of a draw range.
    uint32_t drawCount = 0xFFFFFFFF;
    /// Width, height and depth of a texture without pixels.
    uint32_t textureSize = 0xFFFFFFFF;
    /// Sizes from here on are given as they are, since the device refuses them.
    uint64_t refusedTextureSize = 0x100000000;
    /// Groups of a compute in each direction; from refusedGroupCount on as they are.
    uint32_t groupCount = 0xFFFFFFFF;
    uint64_t refusedGroupCount = 0x100000000;
    /// Shaders that compile, most of the time, instead of text.
    bool validShaders = false;
};

/// Makes records with values of all kinds from the bytes of an input. Handles are live, stale, invalid or never given
/// out; pointers are null or lead to enough memory, since nothing can check that.
class RecordDecoder
{
public:
    RecordDecoder(ByteReader& reader, const Limits& limits) : m_reader(reader), m_limits(limits) {}

    /// Remembers a handle for pick(), also after its destruction.
    template <class HandleType> void remember(const HandleType& handle)
    {
        auto& handles = std::get<std::vector<HandleType>>(m_handles);
        if (handles.size() < 256)
        {
            handles.push_back(handle);
        }
    }

    template <class HandleType> HandleType pick()
    {
        const auto& handles = std::get<std::vector<HandleType>>(m_handles);
        const uint8_t choice = m_reader.byte();
        if (choice >= 0xF0)
        {
            return HandleType();
        }
        if (choice >= 0xE0)
        {
            // Never given out. Tables grow up to it, so there is a limit.
            return HandleType(m_reader.number() % 70000);
        }
        return handles.empty() ? HandleType(choice % 4) : handles[choice % handles.size()];
    }

    template <class HandleType> std::vector<HandleType> pickSome()
    {
        std::vector<HandleType> handles(m_reader.below(5));
        for (HandleType& handle : handles)
        {
            handle = pick<HandleType>();
        }
        return handles;
    }

    uint64_t bufferSize();
    BufferProperties buffer();
    DrawProperties drawProperties();
    VertexBufferProperties vertexBuffer();
    IndexBufferProperties indexBuffer();
    ShaderBufferProperties shaderBuffer();
    TextureImageProperties textureImage();
    SamplerProperties sampler();
    TextureProperties texture();
    TextureUpdateBatchDataProperties textureBatch();
    RenderTargetProperties renderTarget();
    ViewportProperties viewport();
    ShaderObjectProperties shaderObject();
    ShaderProgramProperties shaderProgram();
    ClearTargetProperties clearTarget();
    BlitProperties blit();
    ComputeProperties compute();
    TransformFeedbackProperties transformFeedback();
    /// Null at times.
    std::shared_ptr<const GfxStateProperties> gfxState();
    /// Null at times.
    std::shared_ptr<const ShaderStateCoreProperties> shaderStateCore();
    ShaderStateProperties shaderState();

    template <class T> void fill(ShaderParameterProperties<T>& properties)
    {
        properties.name = m_reader.text();
        fillValue(properties.value);
    }

    template <class T> void fill(ShaderParameterArrayProperties<T>& properties)
    {
        properties.name = m_reader.text();
        properties.value.resize(m_reader.below(9));
        for (T& value : properties.value)
        {
            fillValue(value);
        }
    }

    uint32_t textureSize() { return limited(m_reader.number(), m_limits.textureSize, m_limits.refusedTextureSize); }

private:
    static uint32_t limited(uint32_t value, uint32_t limit, uint64_t refused = 0x100000000)
    {
        return value <= limit || value >= refused ? value : value % (limit + 1);
    }

    void fillValue(float& value) { value = m_reader.real(); }
    void fillValue(int& value) { value = m_reader.integer(); }
    void fillValue(SbVec2f& value) { fillArray(value, 2); }
    void fillValue(SbVec3f& value) { fillArray(value, 3); }
    void fillValue(SbVec4f& value) { fillArray(value, 4); }
    void fillValue(SbVec2i32& value) { fillArray(value, 2); }
    void fillValue(SbVec3i32& value) { fillArray(value, 3); }
    void fillValue(SbVec4i32& value) { fillArray(value, 4); }
    void fillValue(SbMatrix& value) { fillArray(value, 4, 4); }
    void fillValue(SbMatrix3& value) { fillArray(value, 3, 3); }

    template <class T> void fillArray(T& value, size_t count)
    {
        for (size_t i = 0; i < count; ++i)
        {
            fillValue(value[i]);
        }
    }
    template <class T> void fillArray(T& value, size_t rows, size_t columns)
    {
        // Sixteen edges a matrix would use an input up, so all elements come from two.
        const float even = m_reader.real();
        const float odd = m_reader.real();
        for (size_t row = 0; row < rows; ++row)
        {
            for (size_t column = 0; column < columns; ++column)
            {
                value[row][column] = (row + column) % 2 == 0 ? even : odd;
            }
        }
    }

    SbDataType dataType();
    DrawRange drawRange();
    OverallAttribute overallAttribute();
    StencilProperties stencil();
    void fillRasterizer(RasterizerProperties& properties);
    void fillColorOutput(ColorOutputProperties& properties);
    void fillShaderStateCore(ShaderStateCoreProperties& properties);
    void fillPixels(TextureProperties& properties);

    ByteReader& m_reader;
    Limits m_limits;
    std::tuple<std::vector<DrawHandle>, std::vector<DrawPropertiesHandle>, std::vector<BufferHandle>,
               std::vector<VertexBufferHandle>, std::vector<IndexBufferHandle>, std::vector<ShaderBufferHandle>,
               std::vector<TextureImageHandle>, std::vector<SamplerHandle>, std::vector<TextureHandle>,
               std::vector<RenderTargetHandle>, std::vector<ViewportHandle>, std::vector<ShaderObjectHandle>,
               std::vector<ShaderProgramHandle>, std::vector<ShaderParameterHandle>, std::vector<QueryHandle>>
        m_handles;
};

} // namespace renderengine::fuzz
