#include "RecordedDraws.h"

#include <glbinding/gl.h>

#include <cstring>
#include <sstream>
#include <utility>

namespace renderengine
{

namespace
{

constexpr uint32_t drawIndexLocation = 4;
constexpr uint64_t blockSize = 16;

const std::vector<std::string>& blockNames()
{
    static const std::vector<std::string> s_names = {"Transform", "TransformIndirectBuffer", "TransformMergedBuffer",
                                                     "Material",  "MaterialIndirectBuffer",  "MaterialMergedBuffer"};
    return s_names;
}

/// The arguments of a call, without the braces of arrays.
std::vector<std::string> splitArguments(const std::string& text)
{
    std::vector<std::string> arguments;
    std::string current;
    int depth = 0;
    for (const char character : text)
    {
        depth += character == '{' || character == '(' ? 1 : 0;
        depth -= character == '}' || character == ')' ? 1 : 0;
        if (character == ',' && depth == 0)
        {
            arguments.push_back(current);
            current.clear();
        }
        else if (character != ' ' && character != '{' && character != '}')
        {
            current += character;
        }
    }
    arguments.push_back(current);
    return arguments;
}

std::vector<std::string> splitArray(const std::string& text)
{
    std::vector<std::string> elements;
    std::istringstream stream(text);
    for (std::string element; std::getline(stream, element, ',');)
    {
        elements.push_back(element);
    }
    return elements;
}

uint64_t number(const std::string& text)
{
    return text == "null" ? 0 : std::stoull(text);
}

struct TypeInfo
{
    uint64_t size;
    double largest; ///< 0 for types that are not normalised
};

TypeInfo typeInfo(const std::string& type)
{
    static const std::map<std::string, TypeInfo> s_types = {
        {"GL_UNSIGNED_BYTE", {1, 255.0}},
        {"GL_UNSIGNED_SHORT", {2, 65535.0}},
        {"GL_UNSIGNED_INT", {4, 4294967295.0}},
        {"GL_BYTE", {1, 127.0}},
        {"GL_SHORT", {2, 32767.0}},
        {"GL_INT", {4, 2147483647.0}},
        {"GL_FLOAT", {4, 0.0}},
        {"GL_DOUBLE", {8, 0.0}},
    };
    return s_types.at(type);
}

template <class Value> Value valueAt(const std::byte* bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

double readNumber(const std::string& type, const std::byte* bytes)
{
    if (type == "GL_FLOAT")
    {
        return static_cast<double>(valueAt<float>(bytes));
    }
    if (type == "GL_DOUBLE")
    {
        return static_cast<double>(static_cast<float>(valueAt<double>(bytes)));
    }
    switch (typeInfo(type).size)
    {
    case 1:
        return type == "GL_BYTE" ? static_cast<double>(valueAt<int8_t>(bytes)) : valueAt<uint8_t>(bytes);
    case 2:
        return type == "GL_SHORT" ? static_cast<double>(valueAt<int16_t>(bytes)) : valueAt<uint16_t>(bytes);
    default:
        return type == "GL_INT" ? static_cast<double>(valueAt<int32_t>(bytes)) : valueAt<uint32_t>(bytes);
    }
}

} // namespace

RecordedDraws::RecordedDraws(glbinding::RecordingGL& gl) : m_gl(gl)
{
    glbinding::ShaderReflection reflection;
    for (const char* const name : {"position", "color", "tint", "shift", "KvrAttribDrawIndex"})
    {
        reflection.attributes.push_back({name, GL_FLOAT_VEC4});
    }
    reflection.uniforms = {{"KvrPointSize", GL_FLOAT}, {"KvrUseMergedShaderBuffers", GL_INT}};
    for (const std::string& name : blockNames())
    {
        reflection.uniformBlocks.push_back({name});
        reflection.shaderStorageBlocks.push_back({name});
    }
    m_gl.setReflection(reflection);
}

RecordedDraws::Runs RecordedDraws::take()
{
    m_runs.clear();
    m_contents.clear();
    m_multiDrawCount = 0;
    for (const std::string& call : m_gl.takeCalls())
    {
        const size_t open = call.find('(');
        const size_t close = call.rfind(')');
        follow(call.substr(0, open), splitArguments(call.substr(open + 1, close - open - 1)));
    }
    return std::move(m_runs);
}

void RecordedDraws::follow(const std::string& name, const Arguments& arguments)
{
    if (name == "glBindBuffer")
    {
        m_buffers[arguments[0]] = static_cast<uint32_t>(number(arguments[1]));
    }
    else if (name == "glBindBufferBase")
    {
        m_indexedBuffers[arguments[0] + arguments[1]] = static_cast<uint32_t>(number(arguments[2]));
    }
    else if (name == "glUniformBlockBinding")
    {
        m_blockBindings[blockNames()[number(arguments[1])]] = "GL_UNIFORM_BUFFER" + arguments[2];
    }
    else if (name == "glShaderStorageBlockBinding")
    {
        m_blockBindings[blockNames()[number(arguments[1])]] = "GL_SHADER_STORAGE_BUFFER" + arguments[2];
    }
    else if (name == "glUniform1i" && arguments[0] == "1")
    {
        m_mergedBlocks = arguments[1] == "1";
    }
    else if ((name == "glEnable" || name == "glDisable") && arguments[0] == "GL_PRIMITIVE_RESTART")
    {
        m_restart = name == "glEnable";
    }
    else if (name == "glPrimitiveRestartIndex")
    {
        m_restartIndex = number(arguments[0]);
    }
    else if (name == "glDrawElementsInstancedBaseInstance")
    {
        draw({arguments[0], number(arguments[1]), arguments[2], number(arguments[3]), 0,
              static_cast<uint32_t>(number(arguments[4])), static_cast<uint32_t>(number(arguments[5]))});
    }
    else if (name == "glMultiDrawElementsBaseVertex")
    {
        ++m_multiDrawCount;
        const Arguments counts = splitArray(arguments[1]);
        const Arguments offsets = splitArray(arguments[3]);
        const Arguments baseVertices = splitArray(arguments[5]);
        for (size_t i = 0; i < number(arguments[4]); ++i)
        {
            draw({arguments[0], number(counts[i]), arguments[2], number(offsets[i]), std::stoll(baseVertices[i])});
        }
    }
    else
    {
        followAttribute(name, arguments);
    }
}

void RecordedDraws::followAttribute(const std::string& name, const Arguments& arguments)
{
    if (name == "glEnableVertexAttribArray" || name == "glDisableVertexAttribArray")
    {
        m_attributes[static_cast<uint32_t>(number(arguments[0]))].enabled = name == "glEnableVertexAttribArray";
    }
    else if (name == "glVertexAttribDivisor")
    {
        m_attributes[static_cast<uint32_t>(number(arguments[0]))].divisor = static_cast<uint32_t>(number(arguments[1]));
    }
    else if (name == "glVertexAttribPointer")
    {
        Attribute& attribute = m_attributes[static_cast<uint32_t>(number(arguments[0]))];
        attribute.buffer = m_buffers["GL_ARRAY_BUFFER"];
        attribute.componentCount = static_cast<uint32_t>(number(arguments[1]));
        attribute.type = arguments[2];
        attribute.normalized = arguments[3] == "GL_TRUE";
        attribute.stride = number(arguments[4]);
        attribute.offset = number(arguments[5]);
        if (attribute.stride == 0)
        {
            attribute.stride = attribute.componentCount * typeInfo(attribute.type).size;
        }
    }
    else if (name.rfind("glVertexAttrib", 0) == 0)
    {
        setConstant(name.substr(std::strlen("glVertexAttrib")), arguments);
    }
}

/// The name is what follows the common part: "4Nubv".
void RecordedDraws::setConstant(const std::string& name, const Arguments& arguments)
{
    static const std::map<std::string, const char*> s_types = {
        {"ubv", "GL_UNSIGNED_BYTE"}, {"usv", "GL_UNSIGNED_SHORT"}, {"uiv", "GL_UNSIGNED_INT"},
        {"bv", "GL_BYTE"},           {"sv", "GL_SHORT"},           {"iv", "GL_INT"},
        {"fv", "GL_FLOAT"},          {"dv", "GL_DOUBLE"}};
    const bool normalized = name[1] == 'N';
    const double largest = normalized ? typeInfo(s_types.at(name.substr(2))).largest : 1.0;
    Attribute& attribute = m_attributes[static_cast<uint32_t>(number(arguments[0]))];
    attribute.constant = {{0, 0, 0, 1}};
    const Arguments values = splitArray(arguments[1]);
    for (size_t i = 0; i < values.size() && i < 4; ++i)
    {
        attribute.constant[i] = static_cast<double>(static_cast<float>(std::stod(values[i]) / largest));
    }
}

void RecordedDraws::draw(const DrawCall& call)
{
    std::vector<Run>& runs = m_runs[call.mode];
    const std::vector<std::byte>& indices = contentOf(m_buffers["GL_ELEMENT_ARRAY_BUFFER"]);
    const uint64_t indexSize = typeInfo(call.indexType).size;
    for (uint32_t instance = 0; instance < call.instanceCount; ++instance)
    {
        runs.emplace_back();
        for (uint64_t i = 0; i < call.count; ++i)
        {
            const uint64_t offset = call.offset + i * indexSize;
            if (offset + indexSize > indices.size())
            {
                m_readOutside = true;
                return;
            }
            const auto index = static_cast<uint64_t>(readNumber(call.indexType, &indices[offset]));
            if (m_restart && index == m_restartIndex)
            {
                runs.emplace_back();
            }
            else
            {
                runs.back().push_back(
                    vertexText(index + static_cast<uint64_t>(call.baseVertex), instance, call.baseInstance));
            }
        }
    }
}

std::string RecordedDraws::vertexText(uint64_t index, uint32_t instance, uint32_t baseInstance)
{
    std::ostringstream text;
    for (uint32_t location = 0; location < drawIndexLocation; ++location)
    {
        const Attribute& attribute = m_attributes[location];
        const uint64_t element = attribute.divisor != 0 ? baseInstance + instance / attribute.divisor : index;
        for (uint32_t place = 0; place < 4; ++place)
        {
            text << (attribute.enabled ? component(attribute, element, place) : attribute.constant[place]) << ' ';
        }
    }
    uint32_t member = 0;
    if (m_mergedBlocks)
    {
        // The bits of an integer, which a float of that kind would lose.
        const Attribute& attribute = m_attributes[drawIndexLocation];
        const std::vector<std::byte>& content = contentOf(attribute.buffer);
        member = (index + 1) * 4 <= content.size() ? valueAt<uint32_t>(&content[index * 4]) : 0;
    }
    text << blockText("Transform", member) << blockText("Material", member);
    return text.str();
}

std::string RecordedDraws::blockText(const std::string& name, uint32_t member)
{
    std::vector<std::byte> block;
    uint64_t offset = 0;
    if (m_mergedBlocks)
    {
        const uint64_t entrySize =
            m_blockBindings[name + "IndirectBuffer"].rfind("GL_UNIFORM", 0) == 0 ? blockSize : sizeof(int32_t);
        const std::vector<std::byte> entries = boundBlock(name + "IndirectBuffer");
        block = boundBlock(name + "MergedBuffer");
        if ((member + 1) * entrySize > entries.size())
        {
            m_readOutside = true;
            return {};
        }
        offset = static_cast<uint64_t>(valueAt<int32_t>(&entries[member * entrySize])) * blockSize;
    }
    else
    {
        block = boundBlock(name);
    }
    std::ostringstream text;
    for (uint64_t place = 0; place < blockSize; place += sizeof(float))
    {
        if (offset + place + sizeof(float) > block.size())
        {
            m_readOutside = true;
            return {};
        }
        text << valueAt<float>(&block[offset + place]) << ' ';
    }
    return text.str();
}

std::vector<std::byte> RecordedDraws::boundBlock(const std::string& name)
{
    return contentOf(m_indexedBuffers[m_blockBindings[name]]);
}

double RecordedDraws::component(const Attribute& attribute, uint64_t element, uint32_t place)
{
    if (place >= attribute.componentCount)
    {
        return place == 3 ? 1.0 : 0.0;
    }
    const TypeInfo type = typeInfo(attribute.type);
    const std::vector<std::byte>& content = contentOf(attribute.buffer);
    const uint64_t offset = attribute.offset + element * attribute.stride + place * type.size;
    if (offset + type.size > content.size())
    {
        m_readOutside = true;
        return 0.0;
    }
    const double value = readNumber(attribute.type, &content[offset]);
    return attribute.normalized && type.largest > 0 ? static_cast<double>(static_cast<float>(value / type.largest))
                                                    : value;
}

const std::vector<std::byte>& RecordedDraws::contentOf(uint32_t buffer)
{
    const auto found = m_contents.find(buffer);
    return found != m_contents.end() ? found->second
                                     : m_contents.emplace(buffer, m_gl.bufferContent(buffer)).first->second;
}

} // namespace renderengine
