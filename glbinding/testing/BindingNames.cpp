#include "BindingNames.h"

#include <glbinding/GLEnums.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace renderengine::glbinding
{
namespace
{
using Pair = std::pair<GLenum, GLenum>;

constexpr Pair textureTargets[] = {
    {GL_TEXTURE_1D, GL_TEXTURE_BINDING_1D},
    {GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D},
    {GL_TEXTURE_3D, GL_TEXTURE_BINDING_3D},
    {GL_TEXTURE_1D_ARRAY, GL_TEXTURE_BINDING_1D_ARRAY},
    {GL_TEXTURE_2D_ARRAY, GL_TEXTURE_BINDING_2D_ARRAY},
    {GL_TEXTURE_RECTANGLE, GL_TEXTURE_BINDING_RECTANGLE},
    {GL_TEXTURE_BUFFER, GL_TEXTURE_BINDING_BUFFER},
    {GL_TEXTURE_CUBE_MAP, GL_TEXTURE_BINDING_CUBE_MAP},
    {GL_TEXTURE_CUBE_MAP_ARRAY, GL_TEXTURE_BINDING_CUBE_MAP_ARRAY},
    {GL_TEXTURE_2D_MULTISAMPLE, GL_TEXTURE_BINDING_2D_MULTISAMPLE},
    {GL_TEXTURE_2D_MULTISAMPLE_ARRAY, GL_TEXTURE_BINDING_2D_MULTISAMPLE_ARRAY},
};

constexpr Pair bufferTargets[] = {
    {GL_ARRAY_BUFFER, GL_ARRAY_BUFFER_BINDING},
    {GL_ATOMIC_COUNTER_BUFFER, GL_ATOMIC_COUNTER_BUFFER_BINDING},
    {GL_COPY_READ_BUFFER, GL_COPY_READ_BUFFER_BINDING},
    {GL_COPY_WRITE_BUFFER, GL_COPY_WRITE_BUFFER_BINDING},
    {GL_DISPATCH_INDIRECT_BUFFER, GL_DISPATCH_INDIRECT_BUFFER_BINDING},
    {GL_DRAW_INDIRECT_BUFFER, GL_DRAW_INDIRECT_BUFFER_BINDING},
    {GL_ELEMENT_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER_BINDING},
    {GL_PARAMETER_BUFFER, GL_PARAMETER_BUFFER_BINDING},
    {GL_PIXEL_PACK_BUFFER, GL_PIXEL_PACK_BUFFER_BINDING},
    {GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_UNPACK_BUFFER_BINDING},
    {GL_QUERY_BUFFER, GL_QUERY_BUFFER_BINDING},
    {GL_SHADER_STORAGE_BUFFER, GL_SHADER_STORAGE_BUFFER_BINDING},
    {GL_TRANSFORM_FEEDBACK_BUFFER, GL_TRANSFORM_FEEDBACK_BUFFER_BINDING},
    {GL_UNIFORM_BUFFER, GL_UNIFORM_BUFFER_BINDING},
};

constexpr ValueOfCall valuesOfCalls[] = {
    {FunctionIndex::BlendColor, GL_BLEND_COLOR, 4, true},
    {FunctionIndex::ClampColor, GL_CLAMP_READ_COLOR, 1, false},
    {FunctionIndex::ClearColor, GL_COLOR_CLEAR_VALUE, 4, true},
    {FunctionIndex::ClearDepth, GL_DEPTH_CLEAR_VALUE, 1, true},
    {FunctionIndex::ClearStencil, GL_STENCIL_CLEAR_VALUE, 1, false},
    {FunctionIndex::CullFace, GL_CULL_FACE_MODE, 1, false},
    {FunctionIndex::DepthFunc, GL_DEPTH_FUNC, 1, false},
    {FunctionIndex::DepthMask, GL_DEPTH_WRITEMASK, 1, false},
    {FunctionIndex::DepthRange, GL_DEPTH_RANGE, 2, true},
    {FunctionIndex::FrontFace, GL_FRONT_FACE, 1, false},
    {FunctionIndex::LineWidth, GL_LINE_WIDTH, 1, true},
    {FunctionIndex::LogicOp, GL_LOGIC_OP_MODE, 1, false},
    {FunctionIndex::MatrixMode, GL_MATRIX_MODE, 1, false},
    {FunctionIndex::PointSize, GL_POINT_SIZE, 1, true},
    {FunctionIndex::PrimitiveRestartIndex, GL_PRIMITIVE_RESTART_INDEX, 1, false},
    {FunctionIndex::ReadBuffer, GL_READ_BUFFER, 1, false},
    {FunctionIndex::Scissor, GL_SCISSOR_BOX, 4, false},
    {FunctionIndex::ShadeModel, GL_SHADE_MODEL, 1, false},
    {FunctionIndex::UseProgram, GL_CURRENT_PROGRAM, 1, false},
    {FunctionIndex::Viewport, GL_VIEWPORT, 4, false},
};

template <std::size_t Count> GLenum find(const Pair (&pairs)[Count], GLenum target)
{
    const auto* found =
        std::find_if(std::begin(pairs), std::end(pairs), [target](const Pair& pair) { return pair.first == target; });
    return found != std::end(pairs) ? found->second : 0;
}

std::map<GLenum, Numbers> contextLimits()
{
    return {
        {GL_MAX_3D_TEXTURE_SIZE, {2048}},
        {GL_MAX_ARRAY_TEXTURE_LAYERS, {2048}},
        {GL_MAX_COLOR_ATTACHMENTS, {drawBufferCount}},
        {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, {192}},
        {GL_MAX_COMPUTE_WORK_GROUP_COUNT, {65535, 65535, 65535}},
        {GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS, {1024}},
        {GL_MAX_COMPUTE_WORK_GROUP_SIZE, {1024, 1024, 64}},
        {GL_MAX_CUBE_MAP_TEXTURE_SIZE, {16384}},
        {GL_MAX_DRAW_BUFFERS, {drawBufferCount}},
        {GL_MAX_ELEMENTS_INDICES, {1048576}},
        {GL_MAX_ELEMENTS_VERTICES, {1048576}},
        {GL_MAX_IMAGE_UNITS, {8}},
        {GL_MAX_LIGHTS, {8}},
        {GL_MAX_PATCH_VERTICES, {32}},
        {GL_MAX_RENDERBUFFER_SIZE, {16384}},
        {GL_MAX_SAMPLES, {8}},
        {GL_MAX_SERVER_WAIT_TIMEOUT, {1000000000}},
        {GL_MAX_SHADER_STORAGE_BLOCK_SIZE, {134217728}},
        {GL_MAX_SHADER_STORAGE_BUFFER_BINDINGS, {16}},
        {GL_MAX_TEXTURE_BUFFER_SIZE, {134217728}},
        {GL_MAX_TEXTURE_COORDS, {8}},
        {GL_MAX_TEXTURE_IMAGE_UNITS, {32}},
        {GL_MAX_TEXTURE_MAX_ANISOTROPY, {16}},
        {GL_MAX_TEXTURE_SIZE, {16384}},
        {GL_MAX_TEXTURE_UNITS, {8}},
        {GL_MAX_UNIFORM_BLOCK_SIZE, {65536}},
        {GL_MAX_UNIFORM_BUFFER_BINDINGS, {72}},
        {GL_MAX_VERTEX_ATTRIBS, {16}},
        {GL_MAX_VIEWPORTS, {16}},
        {GL_MAX_VIEWPORT_DIMS, {16384, 16384}},
        {GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT, {16}},
        {GL_SUBPIXEL_BITS, {8}},
        {GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT, {256}},
    };
}
} // namespace

GLenum textureBindingOf(GLenum target)
{
    return find(textureTargets, target);
}

GLenum bufferBindingOf(GLenum target)
{
    return find(bufferTargets, target);
}

const std::vector<GLenum>& bufferBindings()
{
    static const std::vector<GLenum> s_bindings = []
    {
        std::vector<GLenum> bindings;
        for (const Pair& pair : bufferTargets)
        {
            bindings.push_back(pair.second);
        }
        return bindings;
    }();
    return s_bindings;
}

const ValueOfCall* valueOfCall(FunctionIndex function)
{
    const auto* found = std::find_if(std::begin(valuesOfCalls), std::end(valuesOfCalls),
                                     [function](const ValueOfCall& row) { return row.function == function; });
    return found != std::end(valuesOfCalls) ? found : nullptr;
}

std::map<GLenum, Numbers> initialContextValues()
{
    std::map<GLenum, Numbers> values = {
        {GL_ACTIVE_TEXTURE, {GL_TEXTURE0}},
        {GL_COLOR_CLEAR_VALUE, {0, 0, 0, 0}},
        {GL_COLOR_WRITEMASK, {1, 1, 1, 1}},
        {GL_CONTEXT_PROFILE_MASK, {GL_CONTEXT_COMPATIBILITY_PROFILE_BIT}},
        {GL_CULL_FACE_MODE, {GL_BACK}},
        {GL_DEPTH_CLEAR_VALUE, {1}},
        {GL_DEPTH_FUNC, {GL_LESS}},
        {GL_DEPTH_RANGE, {0, 1}},
        {GL_DEPTH_WRITEMASK, {1}},
        {GL_DRAW_BUFFER, {GL_BACK}},
        {GL_DRAW_BUFFER0, {GL_BACK}},
        {GL_FRONT_FACE, {GL_CCW}},
        {GL_LINE_WIDTH, {1}},
        {GL_MATRIX_MODE, {GL_MODELVIEW}},
        {GL_PACK_ALIGNMENT, {4}},
        {GL_PATCH_VERTICES, {3}},
        {GL_POINT_SIZE, {1}},
        {GL_POLYGON_MODE, {GL_FILL, GL_FILL}},
        {GL_READ_BUFFER, {GL_BACK}},
        {GL_SCISSOR_BOX, {0, 0, 640, 480}},
        {GL_SHADE_MODEL, {GL_SMOOTH}},
        {GL_STENCIL_BACK_VALUE_MASK, {0xFF}},
        {GL_STENCIL_BACK_WRITEMASK, {0xFF}},
        {GL_STENCIL_VALUE_MASK, {0xFF}},
        {GL_STENCIL_WRITEMASK, {0xFF}},
        {GL_UNPACK_ALIGNMENT, {4}},
        {GL_VIEWPORT, {0, 0, 640, 480}},
    };
    const std::map<GLenum, Numbers> limits = contextLimits();
    values.insert(limits.begin(), limits.end());
    return values;
}
} // namespace renderengine::glbinding
