#include <limits>

#include <gtest/gtest.h>
#include <kavelor/SbBox.h>
#include <kavelor/SbColor.h>
#include <kavelor/SbDataType.h>

namespace
{

TEST(SbDataTypeTest, EveryValueHasItsNumberAndSize)
{
    struct Row
    {
        SbDataType::Type type;
        unsigned value;
        unsigned size;
    };
    const Row rows[] = {
        {SbDataType::UNSIGNED_BYTE, 0, 1}, {SbDataType::UNSIGNED_SHORT, 1, 2}, {SbDataType::UNSIGNED_INT, 2, 4},
        {SbDataType::RESERVED_3, 3, 1},    {SbDataType::BYTE, 4, 1},           {SbDataType::SHORT, 5, 2},
        {SbDataType::INT, 6, 4},           {SbDataType::RESERVED_7, 7, 1},     {SbDataType::RESERVED_8, 8, 1},
        {SbDataType::RESERVED_9, 9, 1},    {SbDataType::FLOAT, 10, 4},         {SbDataType::DOUBLE, 11, 8},
    };
    static_assert(sizeof(rows) / sizeof(rows[0]) == SbDataType::Count);
    for (const Row& row : rows)
    {
        const SbDataType dataType = row.type;
        EXPECT_EQ(unsigned(dataType.getType()), row.value);
        EXPECT_EQ(dataType.getSize(), row.size) << "type " << row.value;
    }
}

TEST(SbDataTypeTest, IsUnsignedByteByDefault)
{
    EXPECT_EQ(SbDataType(), SbDataType::UNSIGNED_BYTE);
    EXPECT_NE(SbDataType(), SbDataType(SbDataType::FLOAT));
}

TEST(SbDataTypeTest, ValueOutOfRangeCountsAsAByte)
{
    EXPECT_EQ(SbDataType(static_cast<SbDataType::Type>(99)).getSize(), 1u);
}

TEST(SbColorRGBATest, UnpacksRedFromTheHighestByte)
{
    const SbColorRGBA color(0xFF800033u);
    EXPECT_FLOAT_EQ(color.getValue()[0], 1.f);
    EXPECT_FLOAT_EQ(color.getValue()[1], 128.f / 255.f);
    EXPECT_FLOAT_EQ(color.getValue()[2], 0.f);
    EXPECT_FLOAT_EQ(color.getValue()[3], 0.2f);
}

TEST(SbColorRGBATest, PackingRoundsBackToEveryByte)
{
    for (std::uint32_t byte = 0; byte < 256; ++byte)
    {
        const std::uint32_t packed = byte << 24 | (255 - byte) << 16 | byte << 8 | (byte ^ 0x55u);
        EXPECT_EQ(SbColorRGBA(packed).getPackedValue(), packed);
    }
}

TEST(SbColorRGBATest, KeepsValuesOutOfRangeUntilPacked)
{
    const SbColorRGBA color(SbVec4f(-1.f, 2.f, 0.5f, std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(color.getValue()[0], -1.f);
    EXPECT_EQ(color.getValue()[1], 2.f);
    EXPECT_EQ(color.getPackedValue(), 0x00FF8000u);
}

TEST(SbBoxTest, IsEmptyByDefault)
{
    EXPECT_TRUE(SbBox3i32().isEmpty());
    EXPECT_TRUE(SbBox3f().isEmpty());
    EXPECT_EQ(SbBox3f().getSize(), SbVec3f());
    EXPECT_EQ(SbBox3i32().getCenter(), SbVec3i32());
}

TEST(SbBoxTest, ExtendsToHoldEveryPoint)
{
    SbBox3f box;
    box.extendBy(SbVec3f(1.f, 2.f, 3.f));
    EXPECT_FALSE(box.isEmpty());
    box.extendBy(SbVec3f(-1.f, 4.f, 0.f));
    EXPECT_EQ(box, SbBox3f(SbVec3f(-1.f, 2.f, 0.f), SbVec3f(1.f, 4.f, 3.f)));
    EXPECT_EQ(box.getSize(), SbVec3f(2.f, 2.f, 3.f));
    EXPECT_EQ(box.getCenter(), SbVec3f(0.f, 3.f, 1.5f));
}

TEST(SbBoxTest, AnEmptyBoxAddsNothing)
{
    SbBox3i32 box(SbVec3i32(0, 0, 0), SbVec3i32(1, 1, 1));
    box.extendBy(SbBox3i32());
    EXPECT_EQ(box, SbBox3i32(SbVec3i32(0, 0, 0), SbVec3i32(1, 1, 1)));
    box.extendBy(SbBox3i32(SbVec3i32(-2, 0, 0), SbVec3i32(0, 0, 5)));
    EXPECT_EQ(box, SbBox3i32(SbVec3i32(-2, 0, 0), SbVec3i32(1, 1, 5)));
}

TEST(SbBoxTest, TheBorderIsInside)
{
    const SbBox3i32 box(SbVec3i32(0, 0, 0), SbVec3i32(2, 2, 2));
    EXPECT_TRUE(box.intersect(SbVec3i32(2, 0, 1)));
    EXPECT_FALSE(box.intersect(SbVec3i32(3, 0, 1)));
    EXPECT_FALSE(box.intersect(SbVec3i32(1, 1, -1)));
}

} // namespace
