#include <string>
#include <unordered_map>
#include <utility>

#include <gtest/gtest.h>
#include <kavelor/SbString.h>

namespace
{

TEST(SbStringTest, IsMadeFromCStringsAndStandardStrings)
{
    const SbString fromLiteral = "abc";
    const SbString fromString = std::string("abc");
    EXPECT_EQ(fromLiteral, fromString);
    EXPECT_EQ(fromLiteral.toStdString(), "abc");
    EXPECT_STREQ(fromLiteral.getString(), "abc");
    EXPECT_EQ(fromLiteral.getLength(), 3u);
}

TEST(SbStringTest, NullPointerGivesTheEmptyString)
{
    const char* const null = nullptr;
    EXPECT_TRUE(SbString(null).isEmpty());
    EXPECT_TRUE(SbString("") == null);
}

TEST(SbStringTest, UpperMapsOnlyTheLettersOfAscii)
{
    EXPECT_EQ(SbString("gl41 Vulkan_z{`").upper(), "GL41 VULKAN_Z{`");
    EXPECT_EQ(SbString("\xC3\xA4").upper(), "\xC3\xA4");
    EXPECT_EQ(SbString("TRUE @[").lower(), "true @[");
}

TEST(SbStringTest, UpperLeavesTheOriginalAlone)
{
    const SbString original("log");
    EXPECT_EQ(original.upper(), "LOG");
    EXPECT_EQ(original, "log");
}

TEST(SbStringTest, ComparesByBytes)
{
    EXPECT_TRUE(SbString("a") < SbString("b"));
    EXPECT_FALSE(SbString("b") < SbString("a"));
    EXPECT_TRUE(SbString("a") != "A");
    EXPECT_TRUE("a" == SbString("a"));
    EXPECT_TRUE(SbString("a") == std::string("a"));
}

TEST(SbStringTest, Appends)
{
    SbString text("KVR");
    text += "_X";
    EXPECT_EQ(text + SbString("Y"), "KVR_XY");
}

TEST(SbStringTest, GivesItsCharactersAwayWhenItDies)
{
    SbString text("a text that is long enough to live on the heap");
    const std::string taken = std::move(text).toStdString();
    EXPECT_EQ(taken, "a text that is long enough to live on the heap");
}

TEST(SbStringTest, IsAHashKey)
{
    std::unordered_map<SbString, int> map;
    map["one"] = 1;
    map[std::string("one")] += 1;
    EXPECT_EQ(map.size(), 1u);
    EXPECT_EQ(map["one"], 2);
}

} // namespace
