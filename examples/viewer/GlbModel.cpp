#include "GlbModel.h"

#include "Images.h"
#include "ModelTools.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

using Json = nlohmann::json;
using Bytes = std::vector<uint8_t>;

/// Thrown for what is malformed; loadGlb() adds the file's name.
class FormatError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

uint32_t readWord(const Bytes& bytes, std::size_t offset)
{
    if (offset + 4 > bytes.size())
        throw FormatError("it ends too early");
    return static_cast<uint32_t>(bytes[offset]) | static_cast<uint32_t>(bytes[offset + 1]) << 8 |
           static_cast<uint32_t>(bytes[offset + 2]) << 16 | static_cast<uint32_t>(bytes[offset + 3]) << 24;
}

/// The two chunks of a file.
struct Chunks
{
    Json description;
    Bytes data;
};

Chunks readChunks(const Bytes& file)
{
    constexpr uint32_t magic = 0x46546C67;
    constexpr uint32_t descriptionChunk = 0x4E4F534A;
    constexpr uint32_t dataChunk = 0x004E4942;
    if (file.size() < 12 || readWord(file, 0) != magic || readWord(file, 4) != 2)
        throw FormatError("it is no binary glTF 2.0 file");
    Chunks chunks;
    for (std::size_t offset = 12; offset < file.size();)
    {
        const std::size_t length = readWord(file, offset);
        const uint32_t kind = readWord(file, offset + 4);
        offset += 8;
        if (length > file.size() - offset)
            throw FormatError("it ends too early");
        const uint8_t* begin = file.data() + offset;
        if (kind == descriptionChunk)
            chunks.description = Json::parse(begin, begin + length);
        else if (kind == dataChunk)
            chunks.data.assign(begin, begin + length);
        offset += length;
    }
    return chunks;
}

/// A part of the file's buffer.
struct Span
{
    const uint8_t* data = nullptr;
    std::size_t size = 0;
    std::size_t stride = 0;
};

/// Numbers of an accessor, `components` a row.
struct Rows
{
    std::size_t count = 0;
    std::size_t components = 0;
    std::vector<double> values;

    float at(std::size_t row, std::size_t component) const
    {
        return static_cast<float>(values[row * components + component]);
    }
    SbVec3f vec3(std::size_t row) const { return SbVec3f(at(row, 0), at(row, 1), at(row, 2)); }
};

std::size_t componentCount(const std::string& type)
{
    static const std::map<std::string, std::size_t> counts = {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4}};
    const auto found = counts.find(type);
    if (found == counts.end())
        throw FormatError("an attribute is of the type '" + type + "'");
    return found->second;
}

template <typename T> double readNumber(const uint8_t* bytes, bool isNormalized)
{
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    if constexpr (std::numeric_limits<T>::is_integer)
    {
        if (isNormalized)
            return std::max(-1.0, static_cast<double>(value) / static_cast<double>(std::numeric_limits<T>::max()));
    }
    return static_cast<double>(value);
}

struct ComponentType
{
    std::size_t size;
    double (*read)(const uint8_t*, bool);
};

ComponentType componentType(int type)
{
    switch (type)
    {
    case 5120:
        return {1, &readNumber<int8_t>};
    case 5121:
        return {1, &readNumber<uint8_t>};
    case 5122:
        return {2, &readNumber<int16_t>};
    case 5123:
        return {2, &readNumber<uint16_t>};
    case 5125:
        return {4, &readNumber<uint32_t>};
    case 5126:
        return {4, &readNumber<float>};
    default:
        throw FormatError("there is no component type " + std::to_string(type));
    }
}

SbVec4f readColor(const Json& values, float alpha)
{
    return SbVec4f(values.at(0).get<float>(), values.at(1).get<float>(), values.at(2).get<float>(),
                   values.size() > 3 ? values.at(3).get<float>() : alpha);
}

SbMatrix localMatrix(const Json& node)
{
    SbMatrix matrix;
    if (node.contains("matrix"))
    {
        // Columns one after the other there, which are the rows here.
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                matrix[row][column] = node["matrix"].at(4 * row + column).get<float>();
        return matrix;
    }
    const auto s = node.value("scale", std::array<float, 3>{1.0f, 1.0f, 1.0f});
    const auto q = node.value("rotation", std::array<float, 4>{0.0f, 0.0f, 0.0f, 1.0f});
    const auto t = node.value("translation", std::array<float, 3>{0.0f, 0.0f, 0.0f});
    const float x = q[0];
    const float y = q[1];
    const float z = q[2];
    const float w = q[3];
    const float rotation[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                                  {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                                  {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}};
    for (std::size_t row = 0; row < 3; ++row)
    {
        for (std::size_t column = 0; column < 3; ++column)
            matrix[row][column] = s[row] * rotation[row][column];
        matrix[3][row] = t[row];
    }
    return matrix;
}

/// Normals from the triangles: smooth across edges that are less sharp than the angle, since machined parts have edges.
void makeNormals(Mesh& mesh)
{
    constexpr float limit = 0.70710678f; // the cosine of 45 degrees
    std::vector<SbVec3f> flat(mesh.positions.size(), SbVec3f(0.0f, 0.0f, 0.0f));
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3)
        for (std::size_t corner = 0; corner < 3; ++corner)
            flat[mesh.indices[i + corner]] = faceNormal(mesh, i);

    // Vertices of one place belong together, whatever else they hold.
    std::map<std::array<float, 3>, std::vector<std::size_t>> places;
    for (std::size_t i = 0; i < mesh.positions.size(); ++i)
        places[{mesh.positions[i][0], mesh.positions[i][1], mesh.positions[i][2]}].push_back(i);
    mesh.normals = flat;
    for (const auto& place : places)
    {
        for (const std::size_t vertex : place.second)
        {
            SbVec3f sum(0.0f, 0.0f, 0.0f);
            for (const std::size_t other : place.second)
                if (other == vertex || flat[other].dot(flat[vertex]) >= limit)
                    sum = sum + flat[other];
            sum.normalize();
            mesh.normals[vertex] = sum;
        }
    }
}

class GlbReader
{
public:
    explicit GlbReader(const Bytes& file) : m_chunks(readChunks(file)), m_json(m_chunks.description) {}

    Model read();

private:
    const Json& element(const char* list, std::size_t index) const { return m_json.at(list).at(index); }
    Span readView(std::size_t index) const;
    Rows readAccessor(std::size_t index) const;
    int readImage(const Json& texture);
    Material readMaterial(const Json& source);
    Mesh readMesh(const Json& primitive) const;
    std::optional<Rows> readAttribute(const Json& primitive, const char* name, std::size_t components,
                                      std::size_t count) const;
    void addNode(std::size_t index, const SbMatrix& parent, std::size_t depth);

    Chunks m_chunks;
    const Json& m_json;
    Model m_model;
    std::map<std::size_t, int> m_imageOfSource;
    std::vector<std::vector<std::size_t>> m_meshesOf;
};

Span GlbReader::readView(std::size_t index) const
{
    const Json& view = element("bufferViews", index);
    const auto offset = view.value("byteOffset", std::size_t{0});
    const auto length = view.at("byteLength").get<std::size_t>();
    if (view.at("buffer").get<std::size_t>() != 0 || offset > m_chunks.data.size() ||
        length > m_chunks.data.size() - offset)
        throw FormatError("a part of its buffer is not in the file");
    return {m_chunks.data.data() + offset, length, view.value("byteStride", std::size_t{0})};
}

Rows GlbReader::readAccessor(std::size_t index) const
{
    const Json& accessor = element("accessors", index);
    if (accessor.contains("sparse") || !accessor.contains("bufferView"))
        throw FormatError("it has sparse attributes");
    const Span view = readView(accessor["bufferView"].get<std::size_t>());
    const ComponentType type = componentType(accessor.at("componentType").get<int>());
    const bool isNormalized = accessor.value("normalized", false);
    const auto offset = accessor.value("byteOffset", std::size_t{0});
    Rows rows;
    rows.count = accessor.at("count").get<std::size_t>();
    rows.components = componentCount(accessor.at("type").get<std::string>());
    const std::size_t rowSize = rows.components * type.size;
    const std::size_t stride = view.stride != 0 ? view.stride : rowSize;
    if (rows.count == 0 || offset > view.size || rowSize > view.size - offset ||
        (rows.count - 1) > (view.size - offset - rowSize) / stride)
        throw FormatError("an attribute reaches beyond its buffer");
    rows.values.reserve(rows.count * rows.components);
    for (std::size_t row = 0; row < rows.count; ++row)
        for (std::size_t component = 0; component < rows.components; ++component)
            rows.values.push_back(type.read(view.data + offset + row * stride + component * type.size, isNormalized));
    return rows;
}

int GlbReader::readImage(const Json& texture)
{
    const auto source = element("textures", texture.at("index").get<std::size_t>()).at("source").get<std::size_t>();
    const auto known = m_imageOfSource.find(source);
    if (known != m_imageOfSource.end())
        return known->second;
    int index = -1;
    try
    {
        const Span view = readView(element("images", source).at("bufferView").get<std::size_t>());
        m_model.images.push_back(decodeImage(Bytes(view.data, view.data + view.size)));
        index = static_cast<int>(m_model.images.size()) - 1;
    }
    catch (const Json::exception&)
    {
        std::cerr << "renderengine-view: texture " << source << " is left out: it is not in the file.\n";
    }
    catch (const std::runtime_error& error)
    {
        std::cerr << "renderengine-view: texture " << source << " is left out: " << error.what() << ".\n";
    }
    m_imageOfSource[source] = index;
    return index;
}

Material GlbReader::readMaterial(const Json& source)
{
    const Json surface = source.value("pbrMetallicRoughness", Json::object());
    Material material;
    material.baseColor = SbVec4f(1.0f, 1.0f, 1.0f, 1.0f);
    if (surface.contains("baseColorFactor"))
        material.baseColor = readColor(surface["baseColorFactor"], 1.0f);
    material.metallic = surface.value("metallicFactor", 1.0f);
    material.roughness = surface.value("roughnessFactor", 1.0f);
    if (source.contains("emissiveFactor"))
    {
        const SbVec4f color = readColor(source["emissiveFactor"], 0.0f);
        material.emissive = SbVec3f(color[0], color[1], color[2]);
    }
    const auto alphaMode = source.value("alphaMode", std::string("OPAQUE"));
    if (alphaMode == "MASK")
        material.alphaCutoff = source.value("alphaCutoff", 0.5f);
    else if (alphaMode == "OPAQUE")
        material.baseColor[3] = 1.0f;
    if (surface.contains("baseColorTexture"))
        material.baseColorImage = readImage(surface["baseColorTexture"]);
    return material;
}

std::optional<Rows> GlbReader::readAttribute(const Json& primitive, const char* name, std::size_t components,
                                             std::size_t count) const
{
    const Json& attributes = primitive.at("attributes");
    if (!attributes.contains(name))
        return std::nullopt;
    Rows rows = readAccessor(attributes[name].get<std::size_t>());
    if (rows.components < components || (count != 0 && rows.count != count))
        throw FormatError(std::string("the attribute ") + name + " does not fit");
    return rows;
}

Mesh GlbReader::readMesh(const Json& primitive) const
{
    Mesh mesh;
    const std::optional<Rows> positions = readAttribute(primitive, "POSITION", 3, 0);
    constexpr int triangles = 4;
    if (!positions || primitive.value("mode", triangles) != triangles)
        return mesh;
    const std::size_t count = positions->count;
    for (std::size_t i = 0; i < count; ++i)
        mesh.positions.push_back(positions->vec3(i));
    if (const auto normals = readAttribute(primitive, "NORMAL", 3, count))
        for (std::size_t i = 0; i < count; ++i)
            mesh.normals.push_back(normals->vec3(i));
    if (const auto texCoords = readAttribute(primitive, "TEXCOORD_0", 2, count))
        for (std::size_t i = 0; i < count; ++i)
            mesh.texCoords.emplace_back(texCoords->at(i, 0), texCoords->at(i, 1));
    if (const auto colors = readAttribute(primitive, "COLOR_0", 3, count))
        for (std::size_t i = 0; i < count; ++i)
            mesh.colors.emplace_back(colors->at(i, 0), colors->at(i, 1), colors->at(i, 2),
                                     colors->components > 3 ? colors->at(i, 3) : 1.0f);

    std::vector<double> indices;
    if (primitive.contains("indices"))
        indices = readAccessor(primitive["indices"].get<std::size_t>()).values;
    else
        for (std::size_t i = 0; i < count; ++i)
            indices.push_back(static_cast<double>(i));
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        const auto isUsable = [&](double index)
        {
            if (index < 0.0 || index >= static_cast<double>(count))
                return false;
            const SbVec3f& p = mesh.positions[static_cast<std::size_t>(index)];
            return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
        };
        if (isUsable(indices[i]) && isUsable(indices[i + 1]) && isUsable(indices[i + 2]))
            for (std::size_t corner = 0; corner < 3; ++corner)
                mesh.indices.push_back(static_cast<uint32_t>(indices[i + corner]));
    }
    // The material that stands for none comes after those of the file.
    mesh.material = std::min(primitive.value("material", m_model.materials.size() - 1), m_model.materials.size() - 1);
    return mesh;
}

void GlbReader::addNode(std::size_t index, const SbMatrix& parent, std::size_t depth)
{
    const Json& node = element("nodes", index);
    if (depth > m_json["nodes"].size())
        throw FormatError("a node is among its own children");
    const SbMatrix world = localMatrix(node) * parent;
    if (node.contains("mesh"))
    {
        const auto source = node["mesh"].get<std::size_t>();
        if (source >= m_meshesOf.size())
            throw FormatError("a node names a mesh that is not there");
        for (const std::size_t mesh : m_meshesOf[source])
            addInstance(m_model, mesh, world);
    }
    for (const Json& child : node.value("children", Json::array()))
        addNode(child.get<std::size_t>(), world, depth + 1);
}

Model GlbReader::read()
{
    for (const Json& material : m_json.value("materials", Json::array()))
        m_model.materials.push_back(readMaterial(material));
    m_model.materials.emplace_back();
    for (const Json& source : m_json.value("meshes", Json::array()))
    {
        m_meshesOf.emplace_back();
        for (const Json& primitive : source.at("primitives"))
        {
            Mesh mesh = readMesh(primitive);
            mesh.name = source.value("name", std::string());
            if (mesh.indices.empty())
                continue;
            m_meshesOf.back().push_back(m_model.meshes.size());
            m_model.meshes.push_back(std::move(mesh));
        }
    }
    for (Mesh& mesh : m_model.meshes)
        if (mesh.normals.empty())
            makeNormals(mesh);
    if (!std::all_of(m_model.meshes.begin(), m_model.meshes.end(), hasUsableNormals))
        for (Mesh& mesh : m_model.meshes)
            makeNormals(mesh);
    const Json& scene = element("scenes", m_json.value("scene", std::size_t{0}));
    for (const Json& node : scene.value("nodes", Json::array()))
        addNode(node.get<std::size_t>(), SbMatrix(), 0);
    return std::move(m_model);
}

} // namespace

Model loadGlb(const std::string& path)
{
    checkFile(path);
    Model model;
    try
    {
        model = GlbReader(readFile(path)).read();
    }
    catch (const FormatError& error)
    {
        throw ModelError("'" + path + "' cannot be read as a model: " + error.what());
    }
    catch (const Json::exception&)
    {
        throw ModelError("'" + path + "' cannot be read as a model: its description is malformed");
    }
    if (model.triangleCount() == 0)
        throw ModelError("'" + path + "' holds no triangle to draw");
    return model;
}

} // namespace viewer
