#include <cstring>
#include <limits>

#include <gtest/gtest.h>
#include <kavelor/SbVec.h>

namespace
{

static_assert(SbVec3f(1.f, 2.f, 3.f)[2] == 3.f, "usable in constant expressions");
static_assert(SbVec2i32(3, 4).dot(SbVec2i32(2, 1)) == 10);

TEST(SbVecTest, IsZeroByDefault)
{
    EXPECT_EQ(SbVec4f(), SbVec4f(0.f, 0.f, 0.f, 0.f));
    EXPECT_EQ(SbVec4ub(), SbVec4ub(0, 0, 0, 0));
}

TEST(SbVecTest, StoresComponentsOneAfterTheOther)
{
    const SbVec3i32 vectors[2] = {{1, -2, 3}, {4, 5, -6}};
    const std::int32_t expected[6] = {1, -2, 3, 4, 5, -6};
    EXPECT_EQ(std::memcmp(vectors, expected, sizeof(expected)), 0);
    EXPECT_EQ(vectors[1].getValue()[2], -6);
}

TEST(SbVecTest, CopiesFromAnArray)
{
    const float values[4] = {0.5f, 1.5f, 2.5f, 3.5f};
    EXPECT_EQ(SbVec4f(values), SbVec4f(0.5f, 1.5f, 2.5f, 3.5f));
}

TEST(SbVecTest, DiffersWhenOneComponentDiffers)
{
    const SbVec4us a(1, 2, 3, 4);
    for (std::size_t i = 0; i < SbVec4us::Size; ++i)
    {
        SbVec4us b = a;
        b[i] = 9;
        EXPECT_NE(a, b) << "component " << i;
    }
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(SbVec2f(nan, 0.f) == SbVec2f(nan, 0.f));
}

TEST(SbVecTest, ComputesComponentByComponent)
{
    const SbVec3f a(1.f, 2.f, 3.f);
    const SbVec3f b(4.f, -5.f, 6.f);
    EXPECT_EQ(a + b, SbVec3f(5.f, -3.f, 9.f));
    EXPECT_EQ(a - b, SbVec3f(-3.f, 7.f, -3.f));
    EXPECT_EQ(a * 2.f, SbVec3f(2.f, 4.f, 6.f));
    EXPECT_EQ(2.f * a, SbVec3f(2.f, 4.f, 6.f));
    EXPECT_EQ(b / 2.f, SbVec3f(2.f, -2.5f, 3.f));
    EXPECT_EQ(-a, SbVec3f(-1.f, -2.f, -3.f));
    EXPECT_EQ(a.dot(b), 12.f);
}

TEST(SbVecTest, CrossProductIsRightHanded)
{
    EXPECT_EQ(SbVec3f(1.f, 0.f, 0.f).cross(SbVec3f(0.f, 1.f, 0.f)), SbVec3f(0.f, 0.f, 1.f));
    EXPECT_EQ(SbVec3f(1.f, 2.f, 3.f).cross(SbVec3f(4.f, 5.f, 6.f)), SbVec3f(-3.f, 6.f, -3.f));
}

TEST(SbVecTest, NormalizeReturnsTheFormerLength)
{
    SbVec3f v(2.f, 3.f, 6.f);
    EXPECT_FLOAT_EQ(v.normalize(), 7.f);
    EXPECT_FLOAT_EQ(v.length(), 1.f);
}

TEST(SbVecTest, NormalizeLeavesTheNullVectorAlone)
{
    SbVec2f v;
    EXPECT_EQ(v.normalize(), 0.f);
    EXPECT_EQ(v, SbVec2f());
}

TEST(SbVecTest, ConvertsBetweenComponentTypes)
{
    EXPECT_EQ(SbVec2i32(SbVec2f(1.9f, -1.9f)), SbVec2i32(1, -1));
    EXPECT_EQ(SbVec4f(SbVec4ub(0, 1, 128, 255)), SbVec4f(0.f, 1.f, 128.f, 255.f));
}

TEST(SbVecTest, SetValueReplacesAllComponents)
{
    SbVec4i32 v(1, 2, 3, 4);
    v.setValue(5, 6, 7, 8);
    EXPECT_EQ(v, SbVec4i32(5, 6, 7, 8));
}

} // namespace
