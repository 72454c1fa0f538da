#include "gl/NameMap.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace renderengine
{
namespace
{

TEST(NameMapTest, NamesAreTheSameWhenEveryByteIs)
{
    for (std::size_t length = 0; length < 40; ++length)
    {
        const std::string name(length, 'x');
        EXPECT_TRUE(isSameName(name, std::string(name)));
        EXPECT_FALSE(isSameName(name, name + 'x'));
        for (std::size_t i = 0; i < length; ++i)
        {
            std::string other = name;
            other[i] = 'y';
            EXPECT_FALSE(isSameName(name, other)) << other;
        }
    }
}

TEST(NameMapTest, AnEmptyMapFindsNothing)
{
    const NameMap<int> names;
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(names.find(""), nullptr);
    EXPECT_EQ(names.find("color"), nullptr);
}

TEST(NameMapTest, FindsEachNameThatWasSetAndNoOther)
{
    // The names of a large array of structures, with those of each length beside them.
    std::vector<std::string> texts;
    for (int i = 0; i < 500; ++i)
    {
        texts.push_back("lights[" + std::to_string(i) + "].position");
    }
    for (size_t length = 0; length <= 40; ++length)
    {
        texts.emplace_back(length, 'x');
    }
    NameMap<size_t> names;
    for (size_t i = 0; i < texts.size(); ++i)
    {
        names.set(texts[i], i);
        ASSERT_EQ(names.find("absent"), nullptr);
    }
    ASSERT_EQ(names.size(), texts.size());
    for (size_t i = 0; i < texts.size(); ++i)
    {
        const size_t* value = names.find(texts[i]);
        ASSERT_NE(value, nullptr) << texts[i];
        EXPECT_EQ(*value, i);
        EXPECT_EQ(names.find(texts[i] + "y"), nullptr);
    }
}

TEST(NameMapTest, ASecondValueTakesThePlaceOfTheFirst)
{
    NameMap<int> names;
    names.set("color", 1);
    names.set("normal", 2);
    names.set("color", 3);
    EXPECT_EQ(names.size(), 2u);
    EXPECT_EQ(*names.find("color"), 3);
    EXPECT_EQ(names.getEntries().front().first, "color");
}

TEST(NameMapTest, AClearedMapTakesNamesAgain)
{
    NameMap<int> names;
    names.set("color", 1);
    names.clear();
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(names.find("color"), nullptr);
    names.set("normal", 2);
    EXPECT_EQ(*names.find("normal"), 2);
    EXPECT_EQ(names.find("color"), nullptr);
}

TEST(NameMapTest, NamesWithZerosAreWhole)
{
    NameMap<int> names;
    names.set(std::string("a\0b", 3), 1);
    names.set("a", 2);
    EXPECT_EQ(*names.find(std::string("a\0b", 3)), 1);
    EXPECT_EQ(*names.find("a"), 2);
    EXPECT_EQ(names.find(std::string("a\0", 2)), nullptr);
}

TEST(NameMapTest, EveryByteOfANameReachesItsHash)
{
    for (size_t length = 1; length <= 40; ++length)
    {
        const std::string base(length, 'x');
        std::set<uint64_t> hashes{hashName(base)};
        for (size_t i = 0; i < length; ++i)
        {
            std::string changed = base;
            changed[i] = 'y';
            hashes.insert(hashName(changed));
        }
        EXPECT_EQ(hashes.size(), length + 1);
    }
}

} // namespace
} // namespace renderengine
