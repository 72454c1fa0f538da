#include <atomic>
#include <cstdlib>
#include <list>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <kavelor/SoError.h>
#include <kavelor/SoPreferences.h>

namespace
{

/// Collects the m_complaints, and takes back what a test put into the environment. Every test uses keys of its own, so
/// that the tests may share a process.
class SoPreferencesTest : public testing::Test
{
protected:
    SoPreferencesTest()
    {
        SoDebugError::setHandler([this](const SbString& function, const SbString& message, SoDebugError::Severity)
                                 { m_complaints.push_back(function.toStdString() + ": " + message.toStdString()); });
    }

    ~SoPreferencesTest() override
    {
        for (const std::string& name : m_names)
        {
            put(name + "=");
        }
        SoDebugError::setHandler({});
    }

    void setEnvironment(const std::string& name, const std::string& value)
    {
        m_names.push_back(name);
        put(name + "=" + value);
    }

    static const SoPreferences::AskedKey* findKey(const std::vector<SoPreferences::AskedKey>& keys, const char* name)
    {
        for (const SoPreferences::AskedKey& key : keys)
        {
            if (key.name == name)
            {
                return &key;
            }
        }
        return nullptr;
    }

    std::vector<std::string> m_complaints;

private:
    static void put(const std::string& assignment)
    {
        // The environment keeps the pointer for the life of the process.
        static auto& assignments = *new std::list<std::string>;
        assignments.push_back(assignment);
        ::putenv(assignments.back().data());
    }

    std::vector<std::string> m_names;
};

using Source = SoPreferences::Source;
using Type = SoPreferences::Type;

TEST_F(SoPreferencesTest, UnsetKeysGiveTheDefault)
{
    EXPECT_TRUE(SoPreferences::getBool("T_UNSET", true));
    EXPECT_FALSE(SoPreferences::getBool("T_UNSET", false));
    EXPECT_EQ(SoPreferences::getInt("T_UNSET", 7), 7);
    EXPECT_EQ(SoPreferences::getFloat("T_UNSET", 1.5f), 1.5f);
    EXPECT_EQ(SoPreferences::getString("T_UNSET", "GL"), "GL");
    EXPECT_TRUE(m_complaints.empty());
}

TEST_F(SoPreferencesTest, ReadsTruthInEveryAcceptedSpelling)
{
    for (const char* word : {"1", "true", "on", "yes", "TRUE", "On", "yEs", " 1 "})
    {
        setEnvironment("T_TRUTH", word);
        EXPECT_TRUE(SoPreferences::getBool("T_TRUTH", false)) << word;
    }
    for (const char* word : {"0", "false", "off", "no", "FALSE", "Off", "nO"})
    {
        setEnvironment("T_TRUTH", word);
        EXPECT_FALSE(SoPreferences::getBool("T_TRUTH", true)) << word;
    }
    EXPECT_TRUE(m_complaints.empty());
}

TEST_F(SoPreferencesTest, MalformedTruthGivesTheDefaultAndIsToldOnce)
{
    setEnvironment("T_BAD_TRUTH", "maybe");
    EXPECT_TRUE(SoPreferences::getBool("T_BAD_TRUTH", true));
    EXPECT_FALSE(SoPreferences::getBool("T_BAD_TRUTH", false));
    const std::vector<std::string> expected = {
        "SoPreferences::getBool: T_BAD_TRUTH is \"maybe\", which is no truth value; the default 1 is taken."};
    EXPECT_EQ(m_complaints, expected);
}

TEST_F(SoPreferencesTest, ReadsDecimalIntegers)
{
    const std::pair<const char*, int> rows[] = {{"0", 0},
                                                {"42", 42},
                                                {"-3", -3},
                                                {"+5", 5},
                                                {" 12 ", 12},
                                                {"007", 7},
                                                {"2147483647", 2147483647},
                                                {"-2147483648", -2147483647 - 1}};
    for (const auto& [text, value] : rows)
    {
        setEnvironment("T_INT", text);
        EXPECT_EQ(SoPreferences::getInt("T_INT", 99), value) << text;
    }
    EXPECT_TRUE(m_complaints.empty());
}

TEST_F(SoPreferencesTest, MalformedIntegersGiveTheDefault)
{
    const std::vector<const char*> words = {"four", "1.5", "0x10", "12a", "2147483648", "+-1", "+", "   ", "1 2"};
    for (const char* word : words)
    {
        setEnvironment("T_BAD_INT", word);
        EXPECT_EQ(SoPreferences::getInt("T_BAD_INT", 11), 11) << word;
        EXPECT_EQ(SoPreferences::getInt("T_BAD_INT", 11), 11) << word;
    }
    EXPECT_EQ(m_complaints.size(), words.size());
    EXPECT_EQ(m_complaints[0],
              "SoPreferences::getInt: T_BAD_INT is \"four\", which is no integer; the default 11 is taken.");
}

TEST_F(SoPreferencesTest, ReadsNumbersWithAPointOnly)
{
    const std::pair<const char*, float> rows[] = {{"1.5", 1.5f}, {"-0.25", -0.25f}, {"2", 2.f}, {"1e3", 1000.f}};
    for (const auto& [text, value] : rows)
    {
        setEnvironment("T_FLOAT", text);
        EXPECT_EQ(SoPreferences::getFloat("T_FLOAT", 9.f), value) << text;
    }
    setEnvironment("T_FLOAT", "1,5");
    EXPECT_EQ(SoPreferences::getFloat("T_FLOAT", 9.f), 9.f);
    EXPECT_EQ(m_complaints.size(), 1u);
}

TEST_F(SoPreferencesTest, AnEmptyEnvironmentVariableCountsAsUnset)
{
    setEnvironment("T_EMPTY", "");
    EXPECT_EQ(SoPreferences::getString("T_EMPTY", "GL"), "GL");
    EXPECT_EQ(SoPreferences::getInt("T_EMPTY", 3), 3);
    EXPECT_TRUE(m_complaints.empty());
}

TEST_F(SoPreferencesTest, StringsAreTakenAsTheyStand)
{
    setEnvironment("T_STRING", " Vk ");
    EXPECT_EQ(SoPreferences::getString("T_STRING", "GL"), " Vk ");
}

TEST_F(SoPreferencesTest, TheProgramWinsOverTheEnvironment)
{
    setEnvironment("T_WINS", "1");
    SoPreferences::setInt("T_WINS", 2);
    EXPECT_EQ(SoPreferences::getInt("T_WINS", 0), 2);
    SoPreferences::unset("T_WINS");
    EXPECT_EQ(SoPreferences::getInt("T_WINS", 0), 1);
}

TEST_F(SoPreferencesTest, AnEmptyStringOfTheProgramIsAValue)
{
    setEnvironment("T_PROGRAM_EMPTY", "GL41");
    SoPreferences::setString("T_PROGRAM_EMPTY", "");
    EXPECT_EQ(SoPreferences::getString("T_PROGRAM_EMPTY", "GL"), "");
}

TEST_F(SoPreferencesTest, EverySetterIsReadByItsGetter)
{
    SoPreferences::setBool("T_SET_BOOL", true);
    SoPreferences::setInt("T_SET_INT", -12);
    SoPreferences::setFloat("T_SET_FLOAT", 0.1f);
    SoPreferences::setString("T_SET_STRING", "LOG");
    EXPECT_TRUE(SoPreferences::getBool("T_SET_BOOL", false));
    EXPECT_EQ(SoPreferences::getInt("T_SET_BOOL", 0), 1);
    EXPECT_EQ(SoPreferences::getInt("T_SET_INT", 0), -12);
    EXPECT_EQ(SoPreferences::getFloat("T_SET_FLOAT", 0.f), 0.1f);
    EXPECT_EQ(SoPreferences::getString("T_SET_STRING", "GL"), "LOG");
    EXPECT_TRUE(m_complaints.empty());
}

TEST_F(SoPreferencesTest, AskedKeysAreListedWithTypeDefaultValueAndSource)
{
    setEnvironment("T_LIST_B", "YES");
    setEnvironment("T_LIST_D", "nonsense");
    SoPreferences::setString("T_LIST_C", "LOG");
    SoPreferences::setString("T_LIST_NEVER_ASKED", "x");
    SoPreferences::getInt("T_LIST_A", 5);
    SoPreferences::getBool("T_LIST_B", false);
    SoPreferences::getString("T_LIST_C", "GL");
    SoPreferences::getFloat("T_LIST_D", 2.5f);
    const std::vector<SoPreferences::AskedKey> keys = SoPreferences::getAskedKeys();

    struct Row
    {
        const char* name;
        Type type;
        const char* defaultValue;
        const char* value;
        Source source;
    };
    const Row rows[] = {{"T_LIST_A", Type::Int, "5", "5", Source::Default},
                        {"T_LIST_B", Type::Bool, "0", "1", Source::Environment},
                        {"T_LIST_C", Type::String, "GL", "LOG", Source::Program},
                        {"T_LIST_D", Type::Float, "2.5", "2.5", Source::Default}};
    for (const Row& row : rows)
    {
        const SoPreferences::AskedKey* const key = findKey(keys, row.name);
        ASSERT_NE(key, nullptr) << row.name;
        EXPECT_EQ(key->type, row.type) << row.name;
        EXPECT_EQ(key->defaultValue, row.defaultValue) << row.name;
        EXPECT_EQ(key->value, row.value) << row.name;
        EXPECT_EQ(key->source, row.source) << row.name;
    }
    EXPECT_EQ(findKey(keys, "T_LIST_NEVER_ASKED"), nullptr);
    EXPECT_LT(findKey(keys, "T_LIST_A"), findKey(keys, "T_LIST_D")) << "ordered by name";
}

TEST_F(SoPreferencesTest, AHandlerMayAskForPreferences)
{
    SoDebugError::setHandler(
        [this](const SbString&, const SbString&, SoDebugError::Severity)
        { m_complaints.push_back(SoPreferences::getString("T_ASKED_INSIDE", "asked").toStdString()); });
    SoPreferences::setString("T_ASKS", "x");
    EXPECT_EQ(SoPreferences::getInt("T_ASKS", 1), 1);
    EXPECT_EQ(m_complaints, std::vector<std::string>{"asked"});
}

TEST_F(SoPreferencesTest, ThreadsMayAskAndSetAtTheSameTime)
{
    SoPreferences::setInt("T_THREADS", 0);
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::atomic<bool> outOfRange{false};
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            [t, &outOfRange]
            {
                for (int i = 0; i < 500; ++i)
                {
                    SoPreferences::setInt("T_THREADS", t);
                    const int value = SoPreferences::getInt("T_THREADS", -1);
                    if (value < 0 || value > 3)
                    {
                        outOfRange = true;
                    }
                    SoPreferences::getAskedKeys();
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_FALSE(outOfRange);
}

} // namespace
