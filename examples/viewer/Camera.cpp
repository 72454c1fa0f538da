#include "Camera.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace viewer
{

namespace
{

constexpr float c_halfFieldOfView = 0.26f; // radians, vertical
constexpr float c_margin = 0.92f;          // the part of the picture that the model may fill

SbVec3f normalized(const SbVec3f& v)
{
    const float length = std::hypot(v[0], v[1], v[2]);
    return SbVec3f(v[0] / length, v[1] / length, v[2] / length);
}

SbVec3f crossed(const SbVec3f& a, const SbVec3f& b)
{
    return SbVec3f(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
}

float dotted(const SbVec3f& a, const SbVec3f& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// One axis of the picture: the bounds of all points in it, as lines through the camera with the slope of the frustum.
struct Extent
{
    float slope;
    float high = -1e30f;
    float low = -1e30f;

    // The point (offset, depth) lies inside the frustum of a camera at (position, cameraDepth) when
    // |offset - position| <= slope * (depth - cameraDepth).
    void extend(float offset, float depth)
    {
        high = std::max(high, offset - slope * depth);
        low = std::max(low, -offset - slope * depth);
    }
    float position() const { return 0.5f * (high - low); }
    float cameraDepth() const { return -(high + low) / (2.0f * slope); }
};

SbMatrix viewMatrix(const Camera& camera)
{
    const std::array<const SbVec3f*, 3> axes = {&camera.right, &camera.up, &camera.back};
    SbMatrix view;
    for (std::size_t column = 0; column < 3; ++column)
    {
        for (std::size_t row = 0; row < 3; ++row)
            view[row][column] = (*axes[column])[row];
        view[3][column] = -dotted(camera.eye, *axes[column]);
    }
    return view;
}

SbMatrix perspective(float slopeX, float slopeY, float nearPlane, float farPlane)
{
    SbMatrix projection;
    projection[0][0] = 1.0f / slopeX;
    projection[1][1] = 1.0f / slopeY;
    projection[2][2] = -(farPlane + nearPlane) / (farPlane - nearPlane);
    projection[2][3] = -1.0f;
    projection[3][2] = -2.0f * farPlane * nearPlane / (farPlane - nearPlane);
    projection[3][3] = 0.0f;
    return projection;
}

} // namespace

Camera fitCamera(const Model& model, float aspect)
{
    Camera camera;
    camera.back = normalized(SbVec3f(0.62f, 0.48f, 1.0f));
    camera.right = normalized(crossed(SbVec3f(0.0f, 1.0f, 0.0f), camera.back));
    camera.up = crossed(camera.back, camera.right);

    // A portrait picture is narrower than the field of view is high, so the narrower side gets the angle.
    const float slope = std::tan(c_halfFieldOfView);
    const float slopeX = aspect >= 1.0f ? slope * aspect : slope;
    const float slopeY = aspect >= 1.0f ? slope : slope / aspect;

    Extent horizontal{slopeX * c_margin};
    Extent vertical{slopeY * c_margin};
    float nearest = 1e30f;
    float farthest = -1e30f;
    // Fitting the points and not the corners of their box centres what is seen.
    for (const Instance& instance : model.instances)
    {
        const Mesh& mesh = model.meshes[instance.mesh];
        for (const uint32_t index : mesh.indices)
        {
            const SbVec3f point = instance.model.multVecMatrix(mesh.positions[index]);
            const float depth = -dotted(point, camera.back);
            horizontal.extend(dotted(point, camera.right), depth);
            vertical.extend(dotted(point, camera.up), depth);
            nearest = std::min(nearest, depth);
            farthest = std::max(farthest, depth);
        }
    }

    // A model without extent still gets a distance, so that the planes below stay apart.
    const float size = std::max(model.bounds.diagonal(), 1e-6f);
    const float depth = std::min({horizontal.cameraDepth(), vertical.cameraDepth(), nearest - 0.05f * size});
    for (std::size_t axis = 0; axis < 3; ++axis)
        camera.eye[axis] = camera.right[axis] * horizontal.position() + camera.up[axis] * vertical.position() -
                           camera.back[axis] * depth;

    const float nearPlane = std::max(nearest - depth - 0.02f * size, 0.01f * size);
    const float farPlane = farthest - depth + 0.02f * size;
    camera.viewProjection = viewMatrix(camera) * perspective(slopeX, slopeY, nearPlane, farPlane);
    return camera;
}

} // namespace viewer
