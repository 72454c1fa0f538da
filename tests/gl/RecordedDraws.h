#pragma once

#include <glbinding/RecordingGL.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace renderengine
{

/// Pulls vertices from recorded calls as GL would: follows bindings, attribute pointers, constant attributes, primitive
/// restart and uniform blocks, and tells for each draw call which values its vertices have. Two ways to draw the same
/// geometry give the same vertices, whatever buffers they come from.
///
/// Knows programs with the reflection that it sets.
class RecordedDraws
{
public:
    /// The vertices between two restarts, each as the text of all that the shader reads for it.
    using Run = std::vector<std::string>;
    /// By primitive type ("GL_TRIANGLES"), in the order in which they were drawn.
    using Runs = std::map<std::string, std::vector<Run>>;

    /// Gives all programs of the recording the attributes "position", "color", "tint", "shift" and
    /// "KvrAttribDrawIndex", and the blocks "Transform" and "Material" with their indirect and merged forms.
    explicit RecordedDraws(glbinding::RecordingGL& gl);

    /// Follows the calls of the recording so far, forgets them there, and returns what they drew. Buffers must still
    /// have the content that they were drawn with.
    Runs take();

    /// Calls with several draws, in the last take().
    size_t getMultiDrawCount() const { return m_multiDrawCount; }
    /// True once a vertex was asked for that its buffer does not have.
    bool hasReadOutside() const { return m_readOutside; }

private:
    using Arguments = std::vector<std::string>;

    struct Attribute
    {
        bool enabled = false;
        uint32_t buffer = 0;
        uint32_t componentCount = 4;
        std::string type;
        bool normalized = false;
        uint64_t stride = 0;
        uint64_t offset = 0;
        uint32_t divisor = 0;
        std::array<double, 4> constant{{0, 0, 0, 1}};
    };

    struct DrawCall
    {
        std::string mode;
        uint64_t count = 0;
        std::string indexType;
        uint64_t offset = 0;
        int64_t baseVertex = 0;
        uint32_t instanceCount = 1;
        uint32_t baseInstance = 0;
    };

    void follow(const std::string& name, const Arguments& arguments);
    void followAttribute(const std::string& name, const Arguments& arguments);
    void setConstant(const std::string& name, const Arguments& arguments);
    void draw(const DrawCall& call);
    std::string vertexText(uint64_t index, uint32_t instance, uint32_t baseInstance);
    std::string blockText(const std::string& name, uint32_t member);
    std::vector<std::byte> boundBlock(const std::string& name);
    double component(const Attribute& attribute, uint64_t element, uint32_t place);
    const std::vector<std::byte>& contentOf(uint32_t buffer);

    glbinding::RecordingGL& m_gl;
    std::map<uint32_t, Attribute> m_attributes;
    std::map<std::string, uint32_t> m_buffers;             ///< by target
    std::map<std::string, uint32_t> m_indexedBuffers;      ///< by target and binding point
    std::map<std::string, std::string> m_blockBindings;    ///< by name: target and binding point
    std::map<uint32_t, std::vector<std::byte>> m_contents; ///< of buffers that the calls drew from
    bool m_restart = false;
    uint64_t m_restartIndex = 0;
    bool m_mergedBlocks = false;
    bool m_readOutside = false;
    size_t m_multiDrawCount = 0;
    Runs m_runs;
};

} // namespace renderengine
