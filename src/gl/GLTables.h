#pragma once

#include <glbinding/gl.h>

#include <array>
#include <cstddef>
#include <cstdint>

// What the small indices of the records stand for in GL. The orders are the system's own: each row repeats its index
// and says in a word what it means.

namespace renderengine::gltables
{

/// One row: the index that stands in a record, its meaning, the GL enumerant.
struct GLTableRow
{
    uint32_t index;
    const char* meaning;
    GLenum value;
};

/// Reports an index that a table lacks: an assertion in debug builds, one error line in release builds.
void reportUnknownIndex(const char* what, uint32_t index, size_t size);

/// A constant table from index to enumerant.
template <size_t Size> class GLTable
{
public:
    constexpr GLTable(const char* subject, const std::array<GLTableRow, Size>& tableRows)
        : what(subject), rows(tableRows)
    {
    }

    /// The enumerant of the index, or null for an index that the table lacks, which is reported.
    const GLenum* find(uint32_t index) const
    {
        if (index < Size)
        {
            return &rows[index].value;
        }
        reportUnknownIndex(what, index, Size);
        return nullptr;
    }

    constexpr size_t size() const { return Size; }
    constexpr const std::array<GLTableRow, Size>& getRows() const { return rows; }

    /// True when each row stands at the place of its index.
    constexpr bool isInOrder() const
    {
        for (size_t i = 0; i < Size; ++i)
        {
            if (rows[i].index != i)
            {
                return false;
            }
        }
        return true;
    }

private:
    const char* what;
    std::array<GLTableRow, Size> rows;
};

/// `ColorTargetProperties::srcColor` and its neighbours.
inline constexpr GLTable blendFactors("blend factor",
                                      std::array<GLTableRow, 19>{
                                          {{0, "zero", GL_ZERO},
                                           {1, "one", GL_ONE},
                                           {2, "src color", GL_SRC_COLOR},
                                           {3, "one minus src color", GL_ONE_MINUS_SRC_COLOR},
                                           {4, "dst color", GL_DST_COLOR},
                                           {5, "one minus dst color", GL_ONE_MINUS_DST_COLOR},
                                           {6, "src alpha", GL_SRC_ALPHA},
                                           {7, "one minus src alpha", GL_ONE_MINUS_SRC_ALPHA},
                                           {8, "dst alpha", GL_DST_ALPHA},
                                           {9, "one minus dst alpha", GL_ONE_MINUS_DST_ALPHA},
                                           {10, "constant color", GL_CONSTANT_COLOR},
                                           {11, "one minus constant color", GL_ONE_MINUS_CONSTANT_COLOR},
                                           {12, "constant alpha", GL_CONSTANT_ALPHA},
                                           {13, "one minus constant alpha", GL_ONE_MINUS_CONSTANT_ALPHA},
                                           {14, "src alpha saturate", GL_SRC_ALPHA_SATURATE},
                                           {15, "src1 color", GL_SRC1_COLOR},
                                           {16, "one minus src1 color", GL_ONE_MINUS_SRC1_COLOR},
                                           {17, "src1 alpha", GL_SRC1_ALPHA},
                                           {18, "one minus src1 alpha", GL_ONE_MINUS_SRC1_ALPHA}}});

/// `ColorTargetProperties::colorOp`, `alphaOp`.
inline constexpr GLTable blendEquations("blend equation", std::array<GLTableRow, 5>{
                                                              {{0, "func add", GL_FUNC_ADD},
                                                               {1, "func subtract", GL_FUNC_SUBTRACT},
                                                               {2, "func reverse subtract", GL_FUNC_REVERSE_SUBTRACT},
                                                               {3, "min", GL_MIN},
                                                               {4, "max", GL_MAX}}});

/// `DepthStencilProperties::depthFunc`, `StencilProperties::func`. Not in the order of GL's numbers.
inline constexpr GLTable comparisons("comparison", std::array<GLTableRow, 8>{{{0, "never", GL_NEVER},
                                                                              {1, "less", GL_LESS},
                                                                              {2, "lequal", GL_LEQUAL},
                                                                              {3, "greater", GL_GREATER},
                                                                              {4, "gequal", GL_GEQUAL},
                                                                              {5, "equal", GL_EQUAL},
                                                                              {6, "notequal", GL_NOTEQUAL},
                                                                              {7, "always", GL_ALWAYS}}});

/// `StencilProperties::stencilFail`, `depthFail`, `depthPass`.
inline constexpr GLTable stencilOperations("stencil operation",
                                           std::array<GLTableRow, 8>{{{0, "keep", GL_KEEP},
                                                                      {1, "zero", GL_ZERO},
                                                                      {2, "replace", GL_REPLACE},
                                                                      {3, "incr", GL_INCR},
                                                                      {4, "incr wrap", GL_INCR_WRAP},
                                                                      {5, "decr", GL_DECR},
                                                                      {6, "decr wrap", GL_DECR_WRAP},
                                                                      {7, "invert", GL_INVERT}}});

/// `ColorOutputProperties::logicOp`. Not in the order of GL's numbers.
inline constexpr GLTable logicOperations("logic operation",
                                         std::array<GLTableRow, 16>{{{0, "noop", GL_NOOP},
                                                                     {1, "clear", GL_CLEAR},
                                                                     {2, "set", GL_SET},
                                                                     {3, "copy", GL_COPY},
                                                                     {4, "copy inverted", GL_COPY_INVERTED},
                                                                     {5, "invert", GL_INVERT},
                                                                     {6, "and", GL_AND},
                                                                     {7, "nand", GL_NAND},
                                                                     {8, "and reverse", GL_AND_REVERSE},
                                                                     {9, "and inverted", GL_AND_INVERTED},
                                                                     {10, "or", GL_OR},
                                                                     {11, "nor", GL_NOR},
                                                                     {12, "xor", GL_XOR},
                                                                     {13, "or reverse", GL_OR_REVERSE},
                                                                     {14, "or inverted", GL_OR_INVERTED},
                                                                     {15, "equiv", GL_EQUIV}}});

/// `TexGenProperties` mode of a unit.
inline constexpr GLTable textureGenerationModes("texture generation mode",
                                                std::array<GLTableRow, 5>{{{0, "object linear", GL_OBJECT_LINEAR},
                                                                           {1, "eye linear", GL_EYE_LINEAR},
                                                                           {2, "sphere map", GL_SPHERE_MAP},
                                                                           {3, "normal map", GL_NORMAL_MAP},
                                                                           {4, "reflection map", GL_REFLECTION_MAP}}});

/// `RasterizerProperties::fillMode`; 3 has no mapping.
inline constexpr GLTable fillModes("fill mode",
                                   std::array<GLTableRow, 3>{
                                       {{0, "point", GL_POINT}, {1, "line", GL_LINE}, {2, "fill", GL_FILL}}});

/// `TextureProperties::type`.
inline constexpr GLTable textureTargets("texture type",
                                        std::array<GLTableRow, 10>{
                                            {{0, "1d", GL_TEXTURE_1D},
                                             {1, "1d array", GL_TEXTURE_1D_ARRAY},
                                             {2, "2d", GL_TEXTURE_2D},
                                             {3, "2d multisample", GL_TEXTURE_2D_MULTISAMPLE},
                                             {4, "2d array", GL_TEXTURE_2D_ARRAY},
                                             {5, "2d multisample array", GL_TEXTURE_2D_MULTISAMPLE_ARRAY},
                                             {6, "3d", GL_TEXTURE_3D},
                                             {7, "cube map", GL_TEXTURE_CUBE_MAP},
                                             {8, "cube map array", GL_TEXTURE_CUBE_MAP_ARRAY},
                                             {9, "buffer", GL_TEXTURE_BUFFER}}});

/// Query of the binding of the texture target of the same index.
inline constexpr GLTable textureBindingQueries(
    "texture type", std::array<GLTableRow, 10>{{{0, "1d", GL_TEXTURE_BINDING_1D},
                                                {1, "1d array", GL_TEXTURE_BINDING_1D_ARRAY},
                                                {2, "2d", GL_TEXTURE_BINDING_2D},
                                                {3, "2d multisample", GL_TEXTURE_BINDING_2D_MULTISAMPLE},
                                                {4, "2d array", GL_TEXTURE_BINDING_2D_ARRAY},
                                                {5, "2d multisample array", GL_TEXTURE_BINDING_2D_MULTISAMPLE_ARRAY},
                                                {6, "3d", GL_TEXTURE_BINDING_3D},
                                                {7, "cube map", GL_TEXTURE_BINDING_CUBE_MAP},
                                                {8, "cube map array", GL_TEXTURE_BINDING_CUBE_MAP_ARRAY},
                                                {9, "buffer", GL_TEXTURE_BINDING_BUFFER}}});

/// `TextureProperties::swizzle`. Blue stands before green.
inline constexpr GLTable swizzles("swizzle", std::array<GLTableRow, 6>{{{0, "red", GL_RED},
                                                                        {1, "blue", GL_BLUE},
                                                                        {2, "green", GL_GREEN},
                                                                        {3, "alpha", GL_ALPHA},
                                                                        {4, "zero", GL_ZERO},
                                                                        {5, "one", GL_ONE}}});

/// `TextureProperties::format`, `TextureUpdateBatchData::format`.
inline constexpr GLTable pixelFormats("pixel format",
                                      std::array<GLTableRow, 19>{{{0, "depth component", GL_DEPTH_COMPONENT},
                                                                  {1, "stencil index", GL_STENCIL_INDEX},
                                                                  {2, "depth stencil", GL_DEPTH_STENCIL},
                                                                  {3, "red", GL_RED},
                                                                  {4, "green", GL_GREEN},
                                                                  {5, "blue", GL_BLUE},
                                                                  {6, "rg", GL_RG},
                                                                  {7, "rgb", GL_RGB},
                                                                  {8, "rgba", GL_RGBA},
                                                                  {9, "bgr", GL_BGR},
                                                                  {10, "bgra", GL_BGRA},
                                                                  {11, "red integer", GL_RED_INTEGER},
                                                                  {12, "green integer", GL_GREEN_INTEGER},
                                                                  {13, "blue integer", GL_BLUE_INTEGER},
                                                                  {14, "rg integer", GL_RG_INTEGER},
                                                                  {15, "rgb integer", GL_RGB_INTEGER},
                                                                  {16, "rgba integer", GL_RGBA_INTEGER},
                                                                  {17, "bgr integer", GL_BGR_INTEGER},
                                                                  {18, "bgra integer", GL_BGRA_INTEGER}}});

/// `TextureProperties::internalFormat`.
inline constexpr GLTable internalFormats(
    "internal format",
    std::array<GLTableRow, 87>{{{0, "R8", GL_R8},
                                {1, "R8_SNORM", GL_R8_SNORM},
                                {2, "R16", GL_R16},
                                {3, "R16_SNORM", GL_R16_SNORM},
                                {4, "RG8", GL_RG8},
                                {5, "RG8_SNORM", GL_RG8_SNORM},
                                {6, "RG16", GL_RG16},
                                {7, "RG16_SNORM", GL_RG16_SNORM},
                                {8, "R3_G3_B2", GL_R3_G3_B2},
                                {9, "RGB4", GL_RGB4},
                                {10, "RGB5", GL_RGB5},
                                {11, "RGB565", GL_RGB565},
                                {12, "RGB8", GL_RGB8},
                                {13, "RGB8_SNORM", GL_RGB8_SNORM},
                                {14, "RGB10", GL_RGB10},
                                {15, "RGB12", GL_RGB12},
                                {16, "RGB16", GL_RGB16},
                                {17, "RGB16_SNORM", GL_RGB16_SNORM},
                                {18, "RGBA2", GL_RGBA2},
                                {19, "RGBA4", GL_RGBA4},
                                {20, "RGB5_A1", GL_RGB5_A1},
                                {21, "RGBA8", GL_RGBA8},
                                {22, "RGBA8_SNORM", GL_RGBA8_SNORM},
                                {23, "RGB10_A2", GL_RGB10_A2},
                                {24, "RGB10_A2UI", GL_RGB10_A2UI},
                                {25, "RGBA12", GL_RGBA12},
                                {26, "RGBA16", GL_RGBA16},
                                {27, "RGBA16_SNORM", GL_RGBA16_SNORM},
                                {28, "SRGB8", GL_SRGB8},
                                {29, "SRGB8_ALPHA8", GL_SRGB8_ALPHA8},
                                {30, "R16F", GL_R16F},
                                {31, "RG16F", GL_RG16F},
                                {32, "RGB16F", GL_RGB16F},
                                {33, "RGBA16F", GL_RGBA16F},
                                {34, "R32F", GL_R32F},
                                {35, "RG32F", GL_RG32F},
                                {36, "RGB32F", GL_RGB32F},
                                {37, "RGBA32F", GL_RGBA32F},
                                {38, "R11F_G11F_B10F", GL_R11F_G11F_B10F},
                                {39, "RGB9_E5", GL_RGB9_E5},
                                {40, "R8I", GL_R8I},
                                {41, "R8UI", GL_R8UI},
                                {42, "R16I", GL_R16I},
                                {43, "R16UI", GL_R16UI},
                                {44, "R32I", GL_R32I},
                                {45, "R32UI", GL_R32UI},
                                {46, "RG8I", GL_RG8I},
                                {47, "RG8UI", GL_RG8UI},
                                {48, "RG16I", GL_RG16I},
                                {49, "RG16UI", GL_RG16UI},
                                {50, "RG32I", GL_RG32I},
                                {51, "RG32UI", GL_RG32UI},
                                {52, "RGB8I", GL_RGB8I},
                                {53, "RGB8UI", GL_RGB8UI},
                                {54, "RGB16I", GL_RGB16I},
                                {55, "RGB16UI", GL_RGB16UI},
                                {56, "RGB32I", GL_RGB32I},
                                {57, "RGB32UI", GL_RGB32UI},
                                {58, "RGBA8I", GL_RGBA8I},
                                {59, "RGBA8UI", GL_RGBA8UI},
                                {60, "RGBA16I", GL_RGBA16I},
                                {61, "RGBA16UI", GL_RGBA16UI},
                                {62, "RGBA32I", GL_RGBA32I},
                                {63, "RGBA32UI", GL_RGBA32UI},
                                {64, "COMPRESSED_RED_RGTC1", GL_COMPRESSED_RED_RGTC1},
                                {65, "COMPRESSED_SIGNED_RED_RGTC1", GL_COMPRESSED_SIGNED_RED_RGTC1},
                                {66, "COMPRESSED_RG_RGTC2", GL_COMPRESSED_RG_RGTC2},
                                {67, "COMPRESSED_SIGNED_RG_RGTC2", GL_COMPRESSED_SIGNED_RG_RGTC2},
                                {68, "COMPRESSED_RGBA_BPTC_UNORM", GL_COMPRESSED_RGBA_BPTC_UNORM},
                                {69, "COMPRESSED_SRGB_ALPHA_BPTC_UNORM", GL_COMPRESSED_SRGB_ALPHA_BPTC_UNORM},
                                {70, "COMPRESSED_RGB_BPTC_SIGNED_FLOAT", GL_COMPRESSED_RGB_BPTC_SIGNED_FLOAT},
                                {71, "COMPRESSED_RGB_BPTC_UNSIGNED_FLOAT", GL_COMPRESSED_RGB_BPTC_UNSIGNED_FLOAT},
                                {72, "COMPRESSED_RGB_S3TC_DXT1_EXT", GL_COMPRESSED_RGB_S3TC_DXT1_EXT},
                                {73, "COMPRESSED_SRGB_S3TC_DXT1_EXT", GL_COMPRESSED_SRGB_S3TC_DXT1_EXT},
                                {74, "COMPRESSED_RGBA_S3TC_DXT1_EXT", GL_COMPRESSED_RGBA_S3TC_DXT1_EXT},
                                {75, "COMPRESSED_SRGB_ALPHA_S3TC_DXT1_EXT", GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT1_EXT},
                                {76, "COMPRESSED_RGBA_S3TC_DXT3_EXT", GL_COMPRESSED_RGBA_S3TC_DXT3_EXT},
                                {77, "COMPRESSED_SRGB_ALPHA_S3TC_DXT3_EXT", GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT3_EXT},
                                {78, "COMPRESSED_RGBA_S3TC_DXT5_EXT", GL_COMPRESSED_RGBA_S3TC_DXT5_EXT},
                                {79, "COMPRESSED_SRGB_ALPHA_S3TC_DXT5_EXT", GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT5_EXT},
                                {80, "DEPTH_COMPONENT16", GL_DEPTH_COMPONENT16},
                                {81, "DEPTH_COMPONENT24", GL_DEPTH_COMPONENT24},
                                {82, "DEPTH_COMPONENT32", GL_DEPTH_COMPONENT32},
                                {83, "DEPTH_COMPONENT32F", GL_DEPTH_COMPONENT32F},
                                {84, "DEPTH24_STENCIL8", GL_DEPTH24_STENCIL8},
                                {85, "DEPTH32F_STENCIL8", GL_DEPTH32F_STENCIL8},
                                {86, "STENCIL_INDEX8", GL_STENCIL_INDEX8}}});

/// `SbDataType` of pixels, vertex attributes and indices. Reserved values are bytes.
inline constexpr GLTable dataTypes("data type", std::array<GLTableRow, 12>{{{0, "UNSIGNED_BYTE", GL_UNSIGNED_BYTE},
                                                                            {1, "UNSIGNED_SHORT", GL_UNSIGNED_SHORT},
                                                                            {2, "UNSIGNED_INT", GL_UNSIGNED_INT},
                                                                            {3, "RESERVED_3", GL_UNSIGNED_BYTE},
                                                                            {4, "BYTE", GL_BYTE},
                                                                            {5, "SHORT", GL_SHORT},
                                                                            {6, "INT", GL_INT},
                                                                            {7, "RESERVED_7", GL_UNSIGNED_BYTE},
                                                                            {8, "RESERVED_8", GL_UNSIGNED_BYTE},
                                                                            {9, "RESERVED_9", GL_UNSIGNED_BYTE},
                                                                            {10, "FLOAT", GL_FLOAT},
                                                                            {11, "DOUBLE", GL_DOUBLE}}});

/// `SamplerProperties::wrapS`, `wrapT`, `wrapR`.
inline constexpr GLTable wrapModes("wrap mode",
                                   std::array<GLTableRow, 6>{{{0, "mirror clamp to edge", GL_MIRROR_CLAMP_TO_EDGE},
                                                              {1, "clamp", GL_CLAMP},
                                                              {2, "repeat", GL_REPEAT},
                                                              {3, "clamp to border", GL_CLAMP_TO_BORDER},
                                                              {4, "clamp to edge", GL_CLAMP_TO_EDGE},
                                                              {5, "mirrored repeat", GL_MIRRORED_REPEAT}}});

/// `ShaderObjectProperties::stage`.
inline constexpr GLTable shaderStages("shader stage", std::array<GLTableRow, 6>{
                                                          {{0, "vertex shader", GL_VERTEX_SHADER},
                                                           {1, "geometry shader", GL_GEOMETRY_SHADER},
                                                           {2, "fragment shader", GL_FRAGMENT_SHADER},
                                                           {3, "tess control shader", GL_TESS_CONTROL_SHADER},
                                                           {4, "tess evaluation shader", GL_TESS_EVALUATION_SHADER},
                                                           {5, "compute shader", GL_COMPUTE_SHADER}}});

/// Two low bits of `BufferProperties::kind`: bit 0 dynamic, bit 1 copy.
inline constexpr GLTable bufferUsages("buffer usage",
                                      std::array<GLTableRow, 4>{{{0, "static draw", GL_STATIC_DRAW},
                                                                 {1, "dynamic draw", GL_DYNAMIC_DRAW},
                                                                 {2, "static copy", GL_STATIC_COPY},
                                                                 {3, "dynamic copy", GL_DYNAMIC_COPY}}});

/// `RenderTextureProperty::attachment`. 16 is no usable attachment.
inline constexpr GLTable attachmentPoints("attachment",
                                          std::array<GLTableRow, 20>{
                                              {{0, "color attachment0", GL_COLOR_ATTACHMENT0},
                                               {1, "color attachment1", GL_COLOR_ATTACHMENT1},
                                               {2, "color attachment2", GL_COLOR_ATTACHMENT2},
                                               {3, "color attachment3", GL_COLOR_ATTACHMENT3},
                                               {4, "color attachment4", GL_COLOR_ATTACHMENT4},
                                               {5, "color attachment5", GL_COLOR_ATTACHMENT5},
                                               {6, "color attachment6", GL_COLOR_ATTACHMENT6},
                                               {7, "color attachment7", GL_COLOR_ATTACHMENT7},
                                               {8, "color attachment8", GL_COLOR_ATTACHMENT8},
                                               {9, "color attachment9", GL_COLOR_ATTACHMENT9},
                                               {10, "color attachment10", GL_COLOR_ATTACHMENT10},
                                               {11, "color attachment11", GL_COLOR_ATTACHMENT11},
                                               {12, "color attachment12", GL_COLOR_ATTACHMENT12},
                                               {13, "color attachment13", GL_COLOR_ATTACHMENT13},
                                               {14, "color attachment14", GL_COLOR_ATTACHMENT14},
                                               {15, "color attachment15", GL_COLOR_ATTACHMENT15},
                                               {16, "max color attachments", GL_MAX_COLOR_ATTACHMENTS},
                                               {17, "depth attachment", GL_DEPTH_ATTACHMENT},
                                               {18, "stencil attachment", GL_STENCIL_ATTACHMENT},
                                               {19, "depth stencil attachment", GL_DEPTH_STENCIL_ATTACHMENT}}});

static_assert(blendFactors.isInOrder() && blendEquations.isInOrder() && comparisons.isInOrder() &&
                  stencilOperations.isInOrder() && logicOperations.isInOrder() && textureGenerationModes.isInOrder() &&
                  fillModes.isInOrder() && textureTargets.isInOrder() && textureBindingQueries.isInOrder() &&
                  swizzles.isInOrder() && pixelFormats.isInOrder() && internalFormats.isInOrder() &&
                  dataTypes.isInOrder() && wrapModes.isInOrder() && shaderStages.isInOrder() &&
                  bufferUsages.isInOrder() && attachmentPoints.isInOrder(),
              "a row does not stand at the place of its index");

} // namespace renderengine::gltables
