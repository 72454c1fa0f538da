#include <type_traits>
#include <unordered_set>

#include <gtest/gtest.h>

#include <renderengine/Handle.h>

namespace
{

using namespace renderengine;

TEST(Handle, IsInvalidByDefault)
{
    const DrawHandle handle;
    EXPECT_FALSE(handle.isValid());
    EXPECT_EQ(handle.id, 0xFFFFFFFFu);
}

TEST(Handle, IsValidBelowTheLastNumber)
{
    EXPECT_TRUE(DrawHandle(0).isValid());
    EXPECT_TRUE(DrawHandle(0xFFFFFFFEu).isValid());
    EXPECT_FALSE(DrawHandle(0xFFFFFFFFu).isValid());
}

TEST(Handle, ComparesByNumber)
{
    EXPECT_EQ(BufferHandle(3), BufferHandle(3));
    EXPECT_NE(BufferHandle(3), BufferHandle(4));
    EXPECT_LT(BufferHandle(3), BufferHandle(4));
    EXPECT_FALSE(BufferHandle(4) < BufferHandle(4));
    EXPECT_EQ(BufferHandle(), BufferHandle());
}

TEST(Handle, DoesNotConvertBetweenConceptsOrFromNumbers)
{
    EXPECT_FALSE((std::is_convertible_v<TextureHandle, BufferHandle>));
    EXPECT_FALSE((std::is_constructible_v<BufferHandle, TextureHandle>));
    EXPECT_FALSE((std::is_convertible_v<uint32_t, BufferHandle>));
    EXPECT_TRUE((std::is_constructible_v<BufferHandle, uint32_t>));
}

TEST(Handle, IsNamedByItsTagInBothNamespaces)
{
    EXPECT_TRUE((std::is_same_v<TextureHandle, Handle<handleconcept::TextureConcept>>));
#if __cplusplus < 202002L
    EXPECT_TRUE((std::is_same_v<TextureHandle, Handle<concept::TextureConcept>>));
#endif
}

TEST(Handle, IsPlainAndAsLargeAsItsNumber)
{
    EXPECT_EQ(sizeof(QueryHandle), sizeof(uint32_t));
    EXPECT_TRUE(std::is_trivially_copyable_v<QueryHandle>);
    EXPECT_TRUE(std::is_standard_layout_v<QueryHandle>);
}

TEST(Handle, CanBeAKey)
{
    std::unordered_set<QueryHandle> handles{QueryHandle(1), QueryHandle(2), QueryHandle(1), QueryHandle()};
    EXPECT_EQ(handles.size(), 3u);
    EXPECT_EQ(handles.count(QueryHandle(2)), 1u);
    EXPECT_EQ(handles.count(QueryHandle(3)), 0u);
}

} // namespace
