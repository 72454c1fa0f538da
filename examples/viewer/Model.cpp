#include "Model.h"

#include "Images.h"
#include "ModelTools.h"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

namespace viewer
{

namespace
{

namespace fs = std::filesystem;

// assimp multiplies columns and this project rows, so the matrix is handed over transposed.
SbMatrix toMatrix(const aiMatrix4x4& m)
{
    SbMatrix result;
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            result[row][column] = m[column][row];
    return result;
}

SbVec3f toVec3(const aiVector3D& v)
{
    return SbVec3f(v.x, v.y, v.z);
}

bool isFinite(const aiVector3D& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// Reads the textures that materials name, each file or embedded picture once.
class TextureReader
{
public:
    TextureReader(const aiScene& scene, const fs::path& folder, std::vector<Image>& images)
        : m_scene(scene), m_folder(folder), m_images(images)
    {
    }

    /// The index of the picture that the material's texture of one of the given kinds names, or -1.
    int read(const aiMaterial& material, std::initializer_list<aiTextureType> kinds)
    {
        for (const aiTextureType kind : kinds)
        {
            aiString name;
            if (material.GetTexture(kind, 0, &name) == aiReturn_SUCCESS && name.length > 0)
                return read(name.C_Str());
        }
        return -1;
    }

private:
    int read(const std::string& name)
    {
        const auto known = m_known.find(name);
        if (known != m_known.end())
            return known->second;

        int index = -1;
        try
        {
            m_images.push_back(decode(name));
            index = static_cast<int>(m_images.size()) - 1;
        }
        catch (const std::runtime_error& error)
        {
            std::cerr << "renderengine-view: texture '" << name << "' is left out: " << error.what() << ".\n";
        }
        m_known.emplace(name, index);
        return index;
    }

    Image decode(const std::string& name) const
    {
        if (const aiTexture* embedded = m_scene.GetEmbeddedTexture(name.c_str()))
            return decodeEmbedded(*embedded);

        // Files written on Windows name their textures with backslashes, or by a path of the writer's machine.
        std::string portable = name;
        std::replace(portable.begin(), portable.end(), '\\', '/');
        const fs::path file(portable);
        for (const fs::path& candidate : {file.is_absolute() ? file : m_folder / file, m_folder / file.filename()})
        {
            std::error_code ignored;
            if (fs::is_regular_file(candidate, ignored))
                return decodeImage(readFile(candidate.string()));
        }
        throw std::runtime_error("there is no such file");
    }

    static Image decodeEmbedded(const aiTexture& texture)
    {
        const auto* bytes = reinterpret_cast<const uint8_t*>(texture.pcData);
        if (texture.mHeight == 0)
            return decodeImage(std::vector<uint8_t>(bytes, bytes + texture.mWidth));

        Image image;
        image.width = texture.mWidth;
        image.height = texture.mHeight;
        image.pixels.reserve(std::size_t{4} * image.width * image.height);
        for (std::size_t i = 0; i < std::size_t{image.width} * image.height; ++i)
        {
            const aiTexel& texel = texture.pcData[i];
            image.pixels.insert(image.pixels.end(), {texel.r, texel.g, texel.b, texel.a});
        }
        return image;
    }

    const aiScene& m_scene;
    const fs::path m_folder;
    std::vector<Image>& m_images;
    std::map<std::string, int> m_known;
};

// Formats without a metallic-roughness model describe gloss by a Blinn-Phong exponent.
float roughnessFromShininess(float shininess)
{
    return std::clamp(std::pow(2.0f / (std::max(shininess, 0.0f) + 2.0f), 0.25f), 0.2f, 0.9f);
}

Material readMaterial(const aiMaterial& source, TextureReader& textures)
{
    Material material;
    aiColor4D color;
    if (source.Get(AI_MATKEY_BASE_COLOR, color) == aiReturn_SUCCESS ||
        source.Get(AI_MATKEY_COLOR_DIFFUSE, color) == aiReturn_SUCCESS)
        material.baseColor = SbVec4f(color.r, color.g, color.b, color.a);

    float opacity = 1.0f;
    if (source.Get(AI_MATKEY_OPACITY, opacity) == aiReturn_SUCCESS && opacity > 0.0f && opacity < material.baseColor[3])
        material.baseColor[3] = opacity;

    aiColor3D emissive;
    if (source.Get(AI_MATKEY_COLOR_EMISSIVE, emissive) == aiReturn_SUCCESS)
        material.emissive = SbVec3f(emissive.r, emissive.g, emissive.b);

    float shininess = 0.0f;
    const bool hasMetallic = source.Get(AI_MATKEY_METALLIC_FACTOR, material.metallic) == aiReturn_SUCCESS;
    if (source.Get(AI_MATKEY_ROUGHNESS_FACTOR, material.roughness) != aiReturn_SUCCESS && !hasMetallic &&
        source.Get(AI_MATKEY_SHININESS, shininess) == aiReturn_SUCCESS && shininess > 0.0f)
        material.roughness = roughnessFromShininess(shininess);

    aiString alphaMode;
    if (source.Get("$mat.gltf.alphaMode", 0, 0, alphaMode) == aiReturn_SUCCESS)
    {
        if (std::string(alphaMode.C_Str()) == "MASK")
        {
            material.alphaCutoff = 0.5f;
            source.Get("$mat.gltf.alphaCutoff", 0, 0, material.alphaCutoff);
        }
        else if (std::string(alphaMode.C_Str()) == "OPAQUE")
        {
            material.baseColor[3] = 1.0f;
        }
    }

    material.baseColorImage = textures.read(source, {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE});
    // Exporters leave the colour black when a texture gives it.
    if (material.baseColorImage >= 0 && material.baseColor[0] + material.baseColor[1] + material.baseColor[2] == 0.0f)
        material.baseColor = SbVec4f(1.0f, 1.0f, 1.0f, material.baseColor[3]);
    return material;
}

bool isDrawable(const aiMesh& source)
{
    return (source.mPrimitiveTypes & aiPrimitiveType_TRIANGLE) != 0 && source.mNumVertices > 0 && source.HasPositions();
}

Mesh readMesh(const aiMesh& source)
{
    Mesh mesh;
    mesh.name = source.mName.C_Str();
    mesh.material = source.mMaterialIndex;
    mesh.positions.reserve(source.mNumVertices);
    mesh.normals.reserve(source.mNumVertices);
    for (unsigned i = 0; i < source.mNumVertices; ++i)
    {
        mesh.positions.push_back(toVec3(source.mVertices[i]));
        const bool usable = source.HasNormals() && isFinite(source.mNormals[i]);
        mesh.normals.push_back(usable ? toVec3(source.mNormals[i]) : SbVec3f(0.0f, 0.0f, 1.0f));
        if (source.HasTextureCoords(0))
            mesh.texCoords.emplace_back(source.mTextureCoords[0][i].x, source.mTextureCoords[0][i].y);
        if (source.HasVertexColors(0))
        {
            const aiColor4D& c = source.mColors[0][i];
            mesh.colors.emplace_back(c.r, c.g, c.b, c.a);
        }
    }

    mesh.indices.reserve(std::size_t{3} * source.mNumFaces);
    for (unsigned i = 0; i < source.mNumFaces; ++i)
    {
        const aiFace& face = source.mFaces[i];
        if (face.mNumIndices != 3)
            continue;
        const bool inside = std::all_of(face.mIndices, face.mIndices + 3,
                                        [&](unsigned index)
                                        { return index < source.mNumVertices && isFinite(source.mVertices[index]); });
        if (inside)
            mesh.indices.insert(mesh.indices.end(), face.mIndices, face.mIndices + 3);
    }
    return mesh;
}

class InstanceCollector
{
public:
    InstanceCollector(Model& model, const std::vector<std::size_t>& meshIndex) : m_model(model), m_meshIndex(meshIndex)
    {
    }

    void collect(const aiNode& node, const SbMatrix& parent)
    {
        const SbMatrix world = toMatrix(node.mTransformation) * parent;
        for (unsigned i = 0; i < node.mNumMeshes; ++i)
            add(m_meshIndex[node.mMeshes[i]], world);
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            collect(*node.mChildren[i], world);
    }

private:
    void add(std::size_t meshIndex, const SbMatrix& world)
    {
        if (meshIndex == SIZE_MAX)
            return;
        addInstance(m_model, meshIndex, world);
    }

    Model& m_model;
    const std::vector<std::size_t>& m_meshIndex;
};

std::string asClause(std::string message)
{
    std::replace(message.begin(), message.end(), '\n', ' ');
    while (!message.empty() && (message.back() == '.' || message.back() == ' '))
        message.pop_back();
    return message;
}

Model readModel(const std::string& path, unsigned extraSteps)
{
    Assimp::Importer importer;
    // Edges sharper than this stay edges; machined parts are made of them.
    importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, 45.0f);
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS, aiComponent_NORMALS);
    const aiScene* scene = importer.ReadFile(
        path, aiProcess_Triangulate | aiProcess_SortByPType | aiProcess_GenSmoothNormals |
                  aiProcess_JoinIdenticalVertices | aiProcess_FlipUVs | aiProcess_ValidateDataStructure | extraSteps);
    if (scene == nullptr)
        throw ModelError("'" + path + "' cannot be read as a model: " + asClause(importer.GetErrorString()));

    Model model;
    TextureReader textures(*scene, fs::path(path).parent_path(), model.images);
    for (unsigned i = 0; i < scene->mNumMaterials; ++i)
        model.materials.push_back(readMaterial(*scene->mMaterials[i], textures));
    if (model.materials.empty())
        model.materials.emplace_back();

    std::vector<std::size_t> meshIndex(scene->mNumMeshes, SIZE_MAX);
    for (unsigned i = 0; i < scene->mNumMeshes; ++i)
    {
        if (!isDrawable(*scene->mMeshes[i]))
            continue;
        Mesh mesh = readMesh(*scene->mMeshes[i]);
        mesh.material = std::min(mesh.material, model.materials.size() - 1);
        if (mesh.indices.empty())
            continue;
        meshIndex[i] = model.meshes.size();
        model.meshes.push_back(std::move(mesh));
    }
    if (scene->mRootNode != nullptr)
        InstanceCollector(model, meshIndex).collect(*scene->mRootNode, SbMatrix());
    return model;
}

} // namespace

Model loadModel(const std::string& path)
{
    checkFile(path);

    Model model = readModel(path, 0);
    if (!std::all_of(model.meshes.begin(), model.meshes.end(), hasUsableNormals))
        model = readModel(path, aiProcess_RemoveComponent); // makes normals anew
    if (model.triangleCount() == 0)
        throw ModelError("'" + path + "' holds no triangle to draw");
    return model;
}

} // namespace viewer
