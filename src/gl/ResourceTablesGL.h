#pragma once

#include "commands/ResourceTable.h"
#include "gl/BufferGL.h"
#include "gl/DrawGL.h"
#include "gl/DrawPropertiesGL.h"
#include "gl/IndexBufferGL.h"
#include "gl/QueryGL.h"
#include "gl/RenderTargetGL.h"
#include "gl/SamplerGL.h"
#include "gl/ShaderBufferGL.h"
#include "gl/ShaderObjectGL.h"
#include "gl/ShaderParameterGL.h"
#include "gl/ShaderProgramGL.h"
#include "gl/TextureGL.h"
#include "gl/TextureImageGL.h"
#include "gl/VertexBufferGL.h"
#include "gl/ViewportGL.h"

#include <renderengine/Handle.h>

#include <cstdint>

namespace renderengine
{

/// The fifteen resource tables of the OpenGL renderers. Numbers come from any thread; slots belong to the thread that
/// has the context current. The capacity is what is reserved, not a limit.
struct ResourceTablesGL
{
    static constexpr uint32_t capacity = 65536;

    ResourceTable<DrawHandle, DrawGL> draws{capacity};
    ResourceTable<DrawPropertiesHandle, DrawPropertiesGL> drawProperties{capacity};
    ResourceTable<BufferHandle, BufferGL> buffers{capacity};
    ResourceTable<VertexBufferHandle, VertexBufferGL> vertexBuffers{capacity};
    ResourceTable<IndexBufferHandle, IndexBufferGL> indexBuffers{capacity};
    ResourceTable<ShaderBufferHandle, ShaderBufferGL> shaderBuffers{capacity};
    ResourceTable<TextureImageHandle, TextureImageGL> textureImages{capacity};
    ResourceTable<SamplerHandle, SamplerGL> samplers{capacity};
    ResourceTable<TextureHandle, TextureGL> textures{capacity};
    ResourceTable<RenderTargetHandle, RenderTargetGL> renderTargets{capacity};
    ResourceTable<ViewportHandle, ViewportGL> viewports{capacity};
    ResourceTable<ShaderObjectHandle, ShaderObjectGL> shaderObjects{capacity};
    ResourceTable<ShaderProgramHandle, ShaderProgramGL> shaderPrograms{capacity};
    ResourceTable<ShaderParameterHandle, ShaderParameterGL> shaderParameters{capacity};
    ResourceTable<QueryHandle, QueryGL> queries{capacity};
};

} // namespace renderengine
