#include "Shaders.h"

namespace viewer
{

namespace
{

// What follows the version and the definitions. With ATTRIBUTES each geometry brings its transform and its material as
// attributes. Without, they stand in blocks: those of its own when it is drawn alone, and else the engine's merged
// ones, through an indirection at the number of the geometry within its draw.
const char* const c_vertexBody = R"(
layout(location = 0) in vec3 position;
in vec3 normal;
in vec2 texCoord;
in vec4 color;

layout(std140) uniform CameraBlock
{
    mat4 viewProjection;
    vec4 eye;
    vec4 right;
    vec4 up;
    vec4 back;
};

struct Material
{
    vec4 baseColor;
    vec4 emissive;
    vec4 surface;
};

#if defined(ATTRIBUTES)

in vec3 modelX;
in vec3 modelY;
in vec3 modelZ;
in vec3 modelOrigin;
in vec4 materialColor;
in vec3 materialEmission;
in vec4 materialSurface;

mat4x3 findModel()
{
    return mat4x3(modelX, modelY, modelZ, modelOrigin);
}

Material findMaterial()
{
    return Material(materialColor, vec4(materialEmission, 0.0), materialSurface);
}

#else

layout(std140) uniform TransformBlock
{
    mat4 ownModel;
};
layout(std140) uniform MaterialBlock
{
    Material ownMaterial;
};
#if defined(STORAGE)
layout(std430) readonly buffer TransformBlockIndirectBuffer
{
    int transformIndices[];
};
layout(std430) readonly buffer TransformBlockMergedBuffer
{
    mat4 models[];
};
layout(std430) readonly buffer MaterialBlockIndirectBuffer
{
    int materialIndices[];
};
layout(std430) readonly buffer MaterialBlockMergedBuffer
{
    Material materials[];
};
#define INDEX(indices, i) indices[i]
#else
layout(std140) uniform TransformBlockIndirectBuffer
{
    ivec4 transformIndices[DRAW_COUNT];
};
layout(std140) uniform TransformBlockMergedBuffer
{
    mat4 models[TRANSFORM_COUNT];
};
layout(std140) uniform MaterialBlockIndirectBuffer
{
    ivec4 materialIndices[DRAW_COUNT];
};
layout(std140) uniform MaterialBlockMergedBuffer
{
    Material materials[MATERIAL_COUNT];
};
#define INDEX(indices, i) indices[i].x
#endif

uniform int KvrUseMergedShaderBuffers;
in float KvrAttribDrawIndex; // the bits of an unsigned integer

mat4x3 findModel()
{
    if (KvrUseMergedShaderBuffers != 0)
        return mat4x3(models[INDEX(transformIndices, floatBitsToUint(KvrAttribDrawIndex))]);
    return mat4x3(ownModel);
}

Material findMaterial()
{
    if (KvrUseMergedShaderBuffers != 0)
        return materials[INDEX(materialIndices, floatBitsToUint(KvrAttribDrawIndex))];
    return ownMaterial;
}

#endif

centroid out vec3 worldPosition;
centroid out vec3 worldNormal;
centroid out vec2 surfaceTexCoord;
centroid out vec4 surfaceColor;
flat out vec4 baseColor;
flat out vec4 emissive;
flat out vec4 surface;

void main()
{
    mat4x3 model = findModel();
    Material material = findMaterial();
    worldPosition = model * vec4(position, 1.0);
    // The cofactors keep normals perpendicular to their surface, also when the model is scaled unevenly; a mirroring
    // model turns them about.
    vec3 cross12 = cross(model[1], model[2]);
    vec3 turned = normal.x * cross12 + normal.y * cross(model[2], model[0]) + normal.z * cross(model[0], model[1]);
    worldNormal = normalize(dot(model[0], cross12) < 0.0 ? -turned : turned);
    surfaceTexCoord = texCoord;
    surfaceColor = color;
    baseColor = material.baseColor;
    emissive = material.emissive;
    surface = material.surface;
    gl_Position = viewProjection * vec4(worldPosition, 1.0);
}
)";

} // namespace

std::string vertexShader(MemberData data, const MergedCounts& counts)
{
    if (data == MemberData::Attributes)
        return std::string("#version 410\n#define ATTRIBUTES\n") + c_vertexBody;
    if (data == MemberData::StorageBlocks)
        return std::string("#version 430\n#define STORAGE\n") + c_vertexBody;
    return "#version 410\n#define DRAW_COUNT " + std::to_string(counts.draws) + "\n#define TRANSFORM_COUNT " +
           std::to_string(counts.transforms) + "\n#define MATERIAL_COUNT " + std::to_string(counts.materials) + "\n" +
           c_vertexBody;
}

const char* const c_fragmentShader = R"(#version 410
// At the centre of what is covered: along silhouettes a value outside the triangle would bend the shading.
centroid in vec3 worldPosition;
centroid in vec3 worldNormal;
centroid in vec2 surfaceTexCoord;
centroid in vec4 surfaceColor;

layout(std140) uniform CameraBlock
{
    mat4 viewProjection;
    vec4 eye;
    vec4 right;
    vec4 up;
    vec4 back;
};
flat in vec4 baseColor;
flat in vec4 emissive;
flat in vec4 surface; // metallic, roughness, alpha cutoff, 1 when there is a texture
uniform sampler2D baseColorTexture;

layout(location = 0) out vec4 fragment;

const float PI = 3.14159265;

// A studio: bright above, darker below, a broad lamp overhead. Rough surfaces see it blurred.
vec3 studio(vec3 direction, float roughness)
{
    float height = direction.y;
    float blur = mix(0.12, 0.9, roughness);
    vec3 ground = vec3(0.20, 0.19, 0.18);
    vec3 horizon = vec3(0.62, 0.64, 0.67);
    vec3 zenith = vec3(0.98, 1.0, 1.03);
    vec3 sky = mix(horizon, zenith, smoothstep(0.0, 1.0, height));
    vec3 light = mix(ground, sky, smoothstep(-blur, blur, height));
    float lamp = smoothstep(0.80 - 0.5 * blur, 0.90 + 0.1 * blur, dot(direction, normalize(up.xyz + 0.6 * back.xyz)));
    return light + lamp * mix(1.4, 0.25, roughness);
}

// Trowbridge-Reitz microfacets with Smith visibility and Schlick's Fresnel term.
vec3 reflected(vec3 toLight, vec3 toEye, vec3 n, vec3 diffuse, vec3 specular, float roughness)
{
    vec3 h = normalize(toLight + toEye);
    float nl = max(dot(n, toLight), 0.0);
    float nv = max(dot(n, toEye), 1e-3);
    float nh = max(dot(n, h), 0.0);
    float a2 = pow(max(roughness, 0.05), 4.0);
    float spread = nh * nh * (a2 - 1.0) + 1.0;
    float facets = a2 / (PI * spread * spread);
    float visible = 0.5 / (nl * sqrt(nv * nv * (1.0 - a2) + a2) + nv * sqrt(nl * nl * (1.0 - a2) + a2));
    vec3 fresnel = specular + (1.0 - specular) * pow(1.0 - clamp(dot(h, toEye), 0.0, 1.0), 5.0);
    return (diffuse / PI + fresnel * facets * visible) * nl;
}

vec3 fromCamera(vec3 v)
{
    return normalize(v.x * right.xyz + v.y * up.xyz + v.z * back.xyz);
}

void main()
{
    vec4 albedo = baseColor * surfaceColor;
    if (surface.w > 0.5)
        albedo *= texture(baseColorTexture, surfaceTexCoord);
    if (albedo.a < surface.z)
        discard;

    vec3 toEye = normalize(eye.xyz - worldPosition);
    vec3 n = normalize(worldNormal);

    // Models of mixed winding are seen from both sides. Along a silhouette the far side of a solid can win the depth
    // test; its normal is only just turned away, and turned about it would leave dark specks there.
    float facing = dot(n, toEye);
    if (facing < -0.2)
        n = -n;
    else if (facing < 0.0)
        n -= 2.0 * facing * toEye;

    float metallic = surface.x;
    float roughness = surface.y;
    vec3 diffuse = albedo.rgb * (1.0 - metallic);
    vec3 specular = mix(vec3(0.04), albedo.rgb, metallic);

    vec3 color = emissive.rgb;
    color += reflected(fromCamera(vec3(-0.45, 0.75, 0.55)), toEye, n, diffuse, specular, roughness) * vec3(3.4, 3.3, 3.15);
    color += reflected(fromCamera(vec3(0.85, 0.15, 0.50)), toEye, n, diffuse, specular, roughness) * vec3(0.75, 0.80, 0.90);
    color += reflected(fromCamera(vec3(0.30, 0.50, -0.90)), toEye, n, diffuse, specular, roughness) * vec3(0.90);

    float grazing = pow(1.0 - clamp(dot(n, toEye), 0.0, 1.0), 5.0);
    vec3 mirror = specular + (max(vec3(1.0 - roughness), specular) - specular) * grazing;
    color += diffuse * studio(n, 1.0) * 0.42;
    color += mirror * studio(reflect(-toEye, n), roughness) * 0.85;

    color = color * (1.0 + color / 9.0) / (1.0 + color); // keeps highlights below white
    fragment = vec4(pow(color * 1.25, vec3(1.0 / 2.2)), albedo.a);
}
)";

} // namespace viewer
