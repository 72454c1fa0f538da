#include "Camera.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace
{

using viewer::Camera;
using viewer::Model;

/// A model of the given points, one instance moved by 5 along x.
Model modelOf(const std::vector<SbVec3f>& points)
{
    Model model;
    model.meshes.resize(1);
    model.meshes[0].positions = points;
    for (uint32_t i = 0; i < points.size(); ++i)
    {
        model.meshes[0].indices.push_back(i);
        model.bounds.extend(SbVec3f(points[i][0] + 5.0f, points[i][1], points[i][2]));
    }
    model.instances.push_back({0, SbMatrix::translation(SbVec3f(5.0f, 0.0f, 0.0f))});
    return model;
}

Model box(float x, float y, float z)
{
    std::vector<SbVec3f> corners;
    for (unsigned i = 0; i < 8; ++i)
        corners.emplace_back((i & 1u) ? x : -x, (i & 2u) ? y : -y, (i & 4u) ? z : -z);
    return modelOf(corners);
}

/// The largest distance of a corner from the centre of the picture, in each direction, and its range of depths.
struct Fit
{
    float x = 0.0f;
    float y = 0.0f;
    float nearest = 1e30f;
    float farthest = -1e30f;
};

Fit fitOf(const Model& model, float aspect)
{
    const Camera camera = viewer::fitCamera(model, aspect);
    Fit fit;
    for (const SbVec3f& position : model.meshes[0].positions)
    {
        const SbVec3f point = model.instances[0].model.multVecMatrix(position);
        const float p[4] = {point[0], point[1], point[2], 1.0f};
        float clip[4] = {};
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t row = 0; row < 4; ++row)
                clip[column] += p[row] * camera.viewProjection[row][column];
        fit.x = std::max(fit.x, std::abs(clip[0] / clip[3]));
        fit.y = std::max(fit.y, std::abs(clip[1] / clip[3]));
        fit.nearest = std::min(fit.nearest, clip[2] / clip[3]);
        fit.farthest = std::max(fit.farthest, clip[2] / clip[3]);
    }
    return fit;
}

} // namespace

TEST(ViewerCamera, SeesTheWholeBoxAndFillsThePicture)
{
    for (const Model& model : {box(1, 1, 1), box(10, 1, 1), box(1, 10, 1), box(1, 1, 10), box(1e-3f, 1e-3f, 2e-3f)})
        for (const float aspect : {1.6f, 1.0f, 0.5f})
        {
            const Fit fit = fitOf(model, aspect);
            EXPECT_LE(fit.x, 0.921f);
            EXPECT_LE(fit.y, 0.921f);
            EXPECT_GE(std::max(fit.x, fit.y), 0.85f);
            EXPECT_GT(fit.nearest, -1.0f);
            EXPECT_LT(fit.farthest, 1.0f);
        }
}

TEST(ViewerCamera, LooksAtAPointFromSomeDistance)
{
    const Camera camera = viewer::fitCamera(modelOf({SbVec3f(-3.0f, 3.0f, 4.0f)}), 1.5f);
    EXPECT_TRUE(std::isfinite(camera.eye[0]) && std::isfinite(camera.eye[1]) && std::isfinite(camera.eye[2]));
    EXPECT_NE(camera.eye, SbVec3f(2.0f, 3.0f, 4.0f));
}

TEST(ViewerModel, CountsTrianglesOfAllInstances)
{
    viewer::Model model;
    model.meshes.resize(1);
    model.meshes[0].indices = {0, 1, 2, 2, 1, 3};
    model.instances.resize(3);
    EXPECT_EQ(model.triangleCount(), 6u);
}
