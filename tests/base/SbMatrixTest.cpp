#include <cmath>

#include <gtest/gtest.h>
#include <kavelor/SbMatrix.h>

namespace
{

static_assert(SbMatrix::translation(SbVec3f(1.f, 2.f, 3.f))[3][1] == 2.f, "usable in constant expressions");
static_assert(SbMatrix().inverse() == SbMatrix());

void expectNear(const SbMatrix& actual, const SbMatrix& expected, float tolerance)
{
    for (std::size_t i = 0; i < 16; ++i)
    {
        EXPECT_NEAR(actual.getValue()[i], expected.getValue()[i], tolerance) << "element " << i;
    }
}

void expectNear(const SbVec3f& actual, const SbVec3f& expected)
{
    for (std::size_t i = 0; i < 3; ++i)
    {
        EXPECT_NEAR(actual[i], expected[i], 1e-5f) << "component " << i;
    }
}

SbMatrix countedMatrix()
{
    return SbMatrix(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}

const float HalfPi = std::acos(0.f);

TEST(SbMatrixTest, IsTheIdentityByDefault)
{
    EXPECT_EQ(SbMatrix(), SbMatrix(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    EXPECT_EQ(SbMatrix3(), SbMatrix3(1, 0, 0, 0, 1, 0, 0, 0, 1));
}

TEST(SbMatrixTest, StoresElementsByRows)
{
    const SbMatrix m = countedMatrix();
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_EQ(m.getValue()[i], float(i));
    }
    EXPECT_EQ(m[2][1], 9.f);
    EXPECT_EQ(SbMatrix(m.getValue()), m);
}

TEST(SbMatrixTest, KeepsTheTranslationInElements12To14)
{
    const SbMatrix m = SbMatrix::translation(SbVec3f(5.f, 6.f, 7.f));
    EXPECT_EQ(m.getValue()[12], 5.f);
    EXPECT_EQ(m.getValue()[13], 6.f);
    EXPECT_EQ(m.getValue()[14], 7.f);
    EXPECT_EQ(m.multVecMatrix(SbVec3f(1.f, 1.f, 1.f)), SbVec3f(6.f, 7.f, 8.f));
}

TEST(SbMatrixTest, ProductAppliesTheLeftFactorFirst)
{
    const SbMatrix scale = SbMatrix::scaling(SbVec3f(2.f, 2.f, 2.f));
    const SbMatrix move = SbMatrix::translation(SbVec3f(10.f, 0.f, 0.f));
    EXPECT_EQ((scale * move).multVecMatrix(SbVec3f(1.f, 1.f, 1.f)), SbVec3f(12.f, 2.f, 2.f));
    EXPECT_EQ((move * scale).multVecMatrix(SbVec3f(1.f, 1.f, 1.f)), SbVec3f(22.f, 2.f, 2.f));
}

TEST(SbMatrixTest, ProductIsRowTimesColumn)
{
    const SbMatrix a = countedMatrix();
    const SbMatrix b(1, 0, 2, 0, 0, 3, 0, 1, 1, 1, 0, 0, 0, 0, 1, 2);
    EXPECT_EQ(a * b, SbMatrix(2, 5, 3, 7, 10, 21, 15, 19, 18, 37, 27, 31, 26, 53, 39, 43));
    SbMatrix c = a;
    c *= c;
    EXPECT_EQ(c, a * a) << "multiplied by itself";
}

TEST(SbMatrixTest, RotatesByTheRightHandRule)
{
    const SbMatrix aboutZ = SbMatrix::rotation(SbVec3f(0.f, 0.f, 2.f), HalfPi);
    expectNear(aboutZ.multVecMatrix(SbVec3f(1.f, 0.f, 0.f)), SbVec3f(0.f, 1.f, 0.f));
    const SbMatrix aboutX = SbMatrix::rotation(SbVec3f(1.f, 0.f, 0.f), HalfPi);
    expectNear(aboutX.multVecMatrix(SbVec3f(0.f, 1.f, 0.f)), SbVec3f(0.f, 0.f, 1.f));
    const SbMatrix aboutY = SbMatrix::rotation(SbVec3f(0.f, 1.f, 0.f), HalfPi);
    expectNear(aboutY.multVecMatrix(SbVec3f(0.f, 0.f, 1.f)), SbVec3f(1.f, 0.f, 0.f));
    EXPECT_EQ(SbMatrix::rotation(SbVec3f(), 1.f), SbMatrix());
}

TEST(SbMatrixTest, InverseTimesTheMatrixIsTheIdentity)
{
    const SbMatrix general(2, -1, 0, 3, 5, 1, -2, 0, 1, 4, 3, -1, 0, 2, 1, 7);
    expectNear(general * general.inverse(), SbMatrix(), 1e-5f);
    expectNear(general.inverse() * general, SbMatrix(), 1e-5f);
    const SbMatrix affine = SbMatrix::scaling(SbVec3f(2.f, 3.f, 4.f)) *
                            SbMatrix::rotation(SbVec3f(1.f, 2.f, 3.f), 0.7f) *
                            SbMatrix::translation(SbVec3f(100.f, -50.f, 25.f));
    expectNear(affine * affine.inverse(), SbMatrix(), 1e-5f);
}

TEST(SbMatrixTest, InverseHoldsForTinyScales)
{
    const SbMatrix tiny = SbMatrix::scaling(SbVec3f(1e-10f, 1e-10f, 1e-10f));
    expectNear(tiny * tiny.inverse(), SbMatrix(), 1e-6f);
}

TEST(SbMatrixTest, InverseOfASingularMatrixIsTheIdentity)
{
    EXPECT_EQ(countedMatrix().determinant(), 0.0);
    EXPECT_EQ(countedMatrix().inverse(), SbMatrix());
}

TEST(SbMatrixTest, DeterminantOfATriangleIsTheProductOfItsDiagonal)
{
    EXPECT_EQ(SbMatrix(2, 9, 9, 9, 0, 3, 9, 9, 0, 0, 5, 9, 0, 0, 0, 7).determinant(), 210.0);
}

TEST(SbMatrixTest, TransposeMirrorsAtTheDiagonal)
{
    const SbMatrix m = countedMatrix();
    for (std::size_t row = 0; row < 4; ++row)
    {
        for (std::size_t column = 0; column < 4; ++column)
        {
            EXPECT_EQ(m.transpose()[column][row], m[row][column]);
        }
    }
}

TEST(SbMatrixTest, PointsAreDividedByTheirW)
{
    SbMatrix perspective;
    perspective[2][3] = -1.f;
    perspective[3][3] = 0.f;
    EXPECT_EQ(perspective.multVecMatrix(SbVec3f(4.f, 6.f, -2.f)), SbVec3f(2.f, 3.f, -1.f));
    EXPECT_EQ(perspective.multVecMatrix(SbVec4f(4.f, 6.f, -2.f, 1.f)), SbVec4f(4.f, 6.f, -2.f, 2.f));
}

TEST(SbMatrixTest, DirectionsAreNotMoved)
{
    const SbMatrix m = SbMatrix::scaling(SbVec3f(2.f, 3.f, 4.f)) * SbMatrix::translation(SbVec3f(9.f, 9.f, 9.f));
    EXPECT_EQ(m.multDirMatrix(SbVec3f(1.f, 1.f, 1.f)), SbVec3f(2.f, 3.f, 4.f));
}

TEST(SbMatrixTest, DiffersWhenOneElementDiffers)
{
    for (std::size_t i = 0; i < 16; ++i)
    {
        SbMatrix m = countedMatrix();
        m.getValue()[i] += 1.f;
        EXPECT_NE(m, countedMatrix()) << "element " << i;
    }
}

TEST(SbMatrix3Test, TakesTheUpperLeftPart)
{
    const SbMatrix3 m(countedMatrix());
    EXPECT_EQ(m, SbMatrix3(0, 1, 2, 4, 5, 6, 8, 9, 10));
    EXPECT_EQ(m.transpose(), SbMatrix3(0, 4, 8, 1, 5, 9, 2, 6, 10));
    EXPECT_EQ(m.getValue()[5], 6.f);
}

TEST(SbMatrix3Test, ProductIsRowTimesColumn)
{
    const SbMatrix3 a(1, 2, 3, 4, 5, 6, 7, 8, 9);
    const SbMatrix3 b(1, 0, 2, 0, 1, 0, 3, 0, 1);
    EXPECT_EQ(a * b, SbMatrix3(10, 2, 5, 22, 5, 14, 34, 8, 23));
}

} // namespace
