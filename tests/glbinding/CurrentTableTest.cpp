#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <gtest/gtest.h>

#include <thread>

namespace
{
namespace glbinding = renderengine::glbinding;

using glbinding::g_silentTable;
using glbinding::refreshCurrentTable;
using glbinding::ScopedTable;
using glbinding::setCurrentTable;
using glbinding::setTableResolver;
using glbinding::t_table;

const GLEWContextStruct s_one = g_silentTable;
const GLEWContextStruct s_two = g_silentTable;
const GLEWContextStruct* s_resolved = nullptr;

const GLEWContextStruct* resolve()
{
    return s_resolved;
}

class CurrentTable : public ::testing::Test
{
protected:
    void TearDown() override
    {
        setTableResolver(nullptr);
        setCurrentTable(nullptr);
    }
};

TEST_F(CurrentTable, IsSilentAtFirst)
{
    EXPECT_EQ(t_table, &g_silentTable);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(glCreateProgram(), 0u);
    EXPECT_EQ(glGetString(GL_VERSION), nullptr);
    EXPECT_EQ(glMapBuffer(GL_ARRAY_BUFFER, GL_READ_ONLY), nullptr);
}

TEST_F(CurrentTable, IsSetForTheCallingThreadOnly)
{
    setCurrentTable(&s_one);
    EXPECT_EQ(t_table, &s_one);
    const GLEWContextStruct* other = nullptr;
    std::thread([&other] { other = t_table; }).join();
    EXPECT_EQ(other, &g_silentTable);
}

TEST_F(CurrentTable, NullMeansSilent)
{
    setCurrentTable(&s_one);
    setCurrentTable(nullptr);
    EXPECT_EQ(t_table, &g_silentTable);
}

TEST_F(CurrentTable, RefreshWithoutResolverChangesNothing)
{
    setCurrentTable(&s_one);
    refreshCurrentTable();
    EXPECT_EQ(t_table, &s_one);
}

TEST_F(CurrentTable, RefreshAsksTheResolver)
{
    setTableResolver(&resolve);
    s_resolved = &s_two;
    EXPECT_EQ(t_table, &g_silentTable);
    refreshCurrentTable();
    EXPECT_EQ(t_table, &s_two);
    s_resolved = nullptr;
    refreshCurrentTable();
    EXPECT_EQ(t_table, &g_silentTable);
}

TEST_F(CurrentTable, PinnedTableWinsOverResolverAndSetter)
{
    setTableResolver(&resolve);
    s_resolved = &s_two;
    {
        const ScopedTable scope(&s_one);
        refreshCurrentTable();
        EXPECT_EQ(t_table, &s_one);
        setCurrentTable(&s_two);
        EXPECT_EQ(t_table, &s_one);
    }
    EXPECT_EQ(t_table, &g_silentTable);
    refreshCurrentTable();
    EXPECT_EQ(t_table, &s_two);
}

TEST_F(CurrentTable, ScopesNestAndBringBackWhatWasCurrent)
{
    setCurrentTable(&s_two);
    {
        const ScopedTable outer(&s_one);
        {
            const ScopedTable inner(nullptr);
            EXPECT_EQ(t_table, &g_silentTable);
        }
        EXPECT_EQ(t_table, &s_one);
        setCurrentTable(&s_two);
        EXPECT_EQ(t_table, &s_one);
    }
    EXPECT_EQ(t_table, &s_two);
}

TEST_F(CurrentTable, PinHoldsForItsThreadOnly)
{
    const ScopedTable scope(&s_one);
    const GLEWContextStruct* other = nullptr;
    std::thread(
        [&other]
        {
            setCurrentTable(&s_two);
            other = t_table;
        })
        .join();
    EXPECT_EQ(other, &s_two);
    EXPECT_EQ(t_table, &s_one);
}

TEST_F(CurrentTable, CallsGoThroughTheTable)
{
    const glbinding::RecordingGL gl;
    glBindBuffer(GL_ARRAY_BUFFER, 3);
    EXPECT_EQ(gl.calls(), std::vector<std::string>{"glBindBuffer(GL_ARRAY_BUFFER, 3)"});
}
} // namespace
