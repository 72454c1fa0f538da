#pragma once

#include "commands/BufferCommands.h"
#include "commands/BufferViewCommands.h"
#include "commands/CommandBase.h"
#include "commands/ComputeCommands.h"
#include "commands/DebugMarkerCommands.h"
#include "commands/DrawCommands.h"
#include "commands/QueryCommands.h"
#include "commands/RenderTargetCommands.h"
#include "commands/SamplerCommands.h"
#include "commands/ShaderCommands.h"
#include "commands/TaskCommands.h"
#include "commands/TextureCommands.h"

// The lists from which the overloads of a renderer and the dispatch of the commands are made. A list calls the macro X
// with each of its entries; entries hold no comma, so X takes one argument. Their order is the order of the renderer's
// virtual operations.

/// The records of the shader parameters.
#define RENDERENGINE_SHADER_PARAMETERS(X)        \
    X(ShaderParameterArrayProperties<SbMatrix>)  \
    X(ShaderParameterArrayProperties<SbVec4i32>) \
    X(ShaderParameterArrayProperties<SbVec3i32>) \
    X(ShaderParameterArrayProperties<SbVec2i32>) \
    X(ShaderParameterArrayProperties<int>)       \
    X(ShaderParameterArrayProperties<SbVec4f>)   \
    X(ShaderParameterArrayProperties<SbVec3f>)   \
    X(ShaderParameterArrayProperties<SbVec2f>)   \
    X(ShaderParameterArrayProperties<float>)     \
    X(ShaderParameterProperties<SbMatrix3>)      \
    X(ShaderParameterProperties<SbMatrix>)       \
    X(ShaderParameterProperties<SbVec4i32>)      \
    X(ShaderParameterProperties<SbVec3i32>)      \
    X(ShaderParameterProperties<SbVec2i32>)      \
    X(ShaderParameterProperties<int>)            \
    X(ShaderParameterProperties<SbVec4f>)        \
    X(ShaderParameterProperties<SbVec3f>)        \
    X(ShaderParameterProperties<SbVec2f>)        \
    X(ShaderParameterProperties<float>)

/// The commands up to CommandTask, which stands apart since it is the one that a renderer need not handle itself.
#define RENDERENGINE_COMMANDS_BEFORE_TASK(X) \
    X(CommandBlit)                           \
    X(CommandPopDebugMarker)                 \
    X(CommandPushDebugMarker)                \
    X(CommandDestroyQuery)                   \
    X(CommandGetQueryResult)                 \
    X(CommandEndQuery)                       \
    X(CommandBeginQuery)                     \
    X(CommandCreateQuery)                    \
    X(CommandEndTransformFeedback)           \
    X(CommandBeginTransformFeedback)

/// The commands between CommandTask and those of the shader parameters.
#define RENDERENGINE_COMMANDS_BEFORE_PARAMETERS(X) \
    X(CommandRenderTask)                           \
    X(CommandCompute)                              \
    X(CommandRender)                               \
    X(CommandDestroyShaderParameter)

/// The commands of the shader parameters.
#define RENDERENGINE_PARAMETER_COMMANDS(X)                                     \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbMatrix>>)  \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbVec4i32>>) \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbVec3i32>>) \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbVec2i32>>) \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<int>>)       \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbVec4f>>)   \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbVec3f>>)   \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbVec2f>>)   \
    X(CommandUpdateShaderParameter<ShaderParameterArrayProperties<float>>)     \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbMatrix3>>)      \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbMatrix>>)       \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbVec4i32>>)      \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbVec3i32>>)      \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbVec2i32>>)      \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<int>>)            \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbVec4f>>)        \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbVec3f>>)        \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<SbVec2f>>)        \
    X(CommandUpdateShaderParameter<ShaderParameterProperties<float>>)          \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbMatrix>>)  \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbVec4i32>>) \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbVec3i32>>) \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbVec2i32>>) \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<int>>)       \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbVec4f>>)   \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbVec3f>>)   \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<SbVec2f>>)   \
    X(CommandCreateShaderParameter<ShaderParameterArrayProperties<float>>)     \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbMatrix3>>)      \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbMatrix>>)       \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbVec4i32>>)      \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbVec3i32>>)      \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbVec2i32>>)      \
    X(CommandCreateShaderParameter<ShaderParameterProperties<int>>)            \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbVec4f>>)        \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbVec3f>>)        \
    X(CommandCreateShaderParameter<ShaderParameterProperties<SbVec2f>>)        \
    X(CommandCreateShaderParameter<ShaderParameterProperties<float>>)

/// The commands behind those of the shader parameters.
#define RENDERENGINE_COMMANDS_AFTER_PARAMETERS(X) \
    X(CommandDestroyShaderProgram)                \
    X(CommandCreateShaderProgram)                 \
    X(CommandDestroyShaderObject)                 \
    X(CommandCreateShaderObject)                  \
    X(CommandMemoryBarrier)                       \
    X(CommandDestroyViewport)                     \
    X(CommandUpdateViewport)                      \
    X(CommandCreateViewport)                      \
    X(CommandDestroyRenderTarget)                 \
    X(CommandUpdateRenderTarget)                  \
    X(CommandCreateRenderTarget)                  \
    X(CommandGenerateMipmap)                      \
    X(CommandDestroyTexture)                      \
    X(CommandUpdateTextureBatchData)              \
    X(CommandReadbackTexture)                     \
    X(CommandUpdateTexture)                       \
    X(CommandResizeTexture)                       \
    X(CommandCreateTexture)                       \
    X(CommandDestroySampler)                      \
    X(CommandUpdateSampler)                       \
    X(CommandCreateSampler)                       \
    X(CommandDestroyTextureImage)                 \
    X(CommandUpdateTextureImage)                  \
    X(CommandCreateTextureImage)                  \
    X(CommandDestroyShaderBuffer)                 \
    X(CommandUpdateShaderBuffer)                  \
    X(CommandCreateShaderBuffer)                  \
    X(CommandDestroyIndexBuffer)                  \
    X(CommandUpdateIndexBuffer)                   \
    X(CommandCreateIndexBuffer)                   \
    X(CommandDestroyVertexBuffer)                 \
    X(CommandUpdateVertexBuffer)                  \
    X(CommandCreateVertexBuffer)                  \
    X(CommandDestroyBuffer)                       \
    X(CommandCopyBuffer)                          \
    X(CommandUnmapBuffer)                         \
    X(CommandMapBuffer)                           \
    X(CommandUpdateBuffer)                        \
    X(CommandResizeBuffer)                        \
    X(CommandCreateBuffer)                        \
    X(CommandDestroyDraw)                         \
    X(CommandUpdateDraw)                          \
    X(CommandRemoveAllDrawProperties)             \
    X(CommandRemoveDrawProperties)                \
    X(CommandAddDrawProperties)                   \
    X(CommandDestroyDrawProperties)               \
    X(CommandUpdateDrawProperties)                \
    X(CommandCreateDrawProperties)                \
    X(CommandCreateDraw)                          \
    X(CommandClearRT)

/// The commands behind CommandTask.
#define RENDERENGINE_COMMANDS_AFTER_TASK(X)    \
    RENDERENGINE_COMMANDS_BEFORE_PARAMETERS(X) \
    RENDERENGINE_PARAMETER_COMMANDS(X)         \
    RENDERENGINE_COMMANDS_AFTER_PARAMETERS(X)

/// All commands.
#define RENDERENGINE_COMMANDS(X)         \
    RENDERENGINE_COMMANDS_BEFORE_TASK(X) \
    X(CommandTask)                       \
    RENDERENGINE_COMMANDS_AFTER_TASK(X)

namespace renderengine
{

#define RENDERENGINE_COUNT(ENTRY) +1
static_assert(0 RENDERENGINE_COMMANDS(RENDERENGINE_COUNT) == 103, "a renderer handles 103 commands");
static_assert(0 RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_COUNT) == 19, "there are 19 shader parameter records");
#undef RENDERENGINE_COUNT

} // namespace renderengine
