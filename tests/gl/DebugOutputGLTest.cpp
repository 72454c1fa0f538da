#include "gl/DebugOutputGL.h"

#include "GLRecordingFixture.h"

#include <kavelor/SoPreferences.h>

#include <utility>

namespace renderengine
{

namespace
{

constexpr GLenum s_unknownSeverity = 1;

/// The level is read at the first message of the process, so each case needs a process of its own.
class DebugOutputGLTest : public GLRecordingTest
{
protected:
    void setLevel(int level) { SoPreferences::setInt("KVR_OPENGL_DEBUG_VERBOSE_LEVEL", level); }

    /// The severities of the messages that are shown.
    Texts shownSeverities()
    {
        for (const GLenum severity :
             {GLenum{GL_DEBUG_SEVERITY_HIGH}, GLenum{GL_DEBUG_SEVERITY_MEDIUM}, GLenum{GL_DEBUG_SEVERITY_LOW},
              GLenum{GL_DEBUG_SEVERITY_NOTIFICATION}, s_unknownSeverity})
        {
            debugOutputCallback(GL_DEBUG_SOURCE_API, GL_DEBUG_TYPE_ERROR, 7, severity, 3, "bad", nullptr);
        }
        return log.take();
    }

    static std::string line(const std::string& severity)
    {
        return "error: 7: ERROR of " + severity + " severity, raised from API: bad";
    }
};

} // namespace

TEST_F(DebugOutputGLTest, TheDefaultLevelShowsEverything)
{
    EXPECT_EQ(shownSeverities(),
              (Texts{line("HIGH"), line("MEDIUM"), line("LOW"), line("NOTIFICATION"), line("UNKNOWN")}));
}

TEST_F(DebugOutputGLTest, Level1HidesNotifications)
{
    setLevel(1);
    EXPECT_EQ(shownSeverities(), (Texts{line("HIGH"), line("MEDIUM"), line("LOW"), line("UNKNOWN")}));
}

TEST_F(DebugOutputGLTest, Level2HidesLowSeverityToo)
{
    setLevel(2);
    EXPECT_EQ(shownSeverities(), (Texts{line("HIGH"), line("MEDIUM"), line("UNKNOWN")}));
}

TEST_F(DebugOutputGLTest, Level3HidesMediumSeverityToo)
{
    setLevel(3);
    EXPECT_EQ(shownSeverities(), (Texts{line("HIGH"), line("UNKNOWN")}));
}

TEST_F(DebugOutputGLTest, Level4ShowsUnknownSeveritiesOnly)
{
    setLevel(4);
    EXPECT_EQ(shownSeverities(), Texts{line("UNKNOWN")});
}

TEST_F(DebugOutputGLTest, TheLevelIsReadOnce)
{
    setLevel(4);
    shownSeverities();
    setLevel(0);
    EXPECT_EQ(shownSeverities(), Texts{line("UNKNOWN")});
}

TEST_F(DebugOutputGLTest, NamesEachSource)
{
    const std::pair<GLenum, const char*> sources[] = {{GL_DEBUG_SOURCE_API, "API"},
                                                      {GL_DEBUG_SOURCE_WINDOW_SYSTEM, "WINDOW SYSTEM"},
                                                      {GL_DEBUG_SOURCE_SHADER_COMPILER, "SHADER COMPILER"},
                                                      {GL_DEBUG_SOURCE_THIRD_PARTY, "THIRD PARTY"},
                                                      {GL_DEBUG_SOURCE_APPLICATION, "APPLICATION"},
                                                      {GL_DEBUG_SOURCE_OTHER, "UNKNOWN"},
                                                      {1, "UNKNOWN"}};
    for (const auto& [source, word] : sources)
    {
        SCOPED_TRACE(word);
        debugOutputCallback(source, GL_DEBUG_TYPE_OTHER, 1, GL_DEBUG_SEVERITY_LOW, -1, "text", nullptr);
        EXPECT_EQ(log.take(), Texts{"error: 1: OTHER of LOW severity, raised from " + std::string(word) + ": text"});
    }
}

TEST_F(DebugOutputGLTest, NamesEachType)
{
    const std::pair<GLenum, const char*> types[] = {{GL_DEBUG_TYPE_ERROR, "ERROR"},
                                                    {GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR, "DEPRECATED BEHAVIOR"},
                                                    {GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR, "UDEFINED BEHAVIOR"},
                                                    {GL_DEBUG_TYPE_PORTABILITY, "PORTABILITY"},
                                                    {GL_DEBUG_TYPE_PERFORMANCE, "PERFORMANCE"},
                                                    {GL_DEBUG_TYPE_OTHER, "OTHER"},
                                                    {GL_DEBUG_TYPE_MARKER, "MARKER"},
                                                    {1, "UNKNOWN"}};
    for (const auto& [type, word] : types)
    {
        SCOPED_TRACE(word);
        debugOutputCallback(GL_DEBUG_SOURCE_API, type, 2, GL_DEBUG_SEVERITY_HIGH, -1, "text", nullptr);
        EXPECT_EQ(log.take(), Texts{"error: 2: " + std::string(word) + " of HIGH severity, raised from API: text"});
    }
}

TEST_F(DebugOutputGLTest, DebugGroupsHaveAnUnknownTypeAndTheWordOfTheirSource)
{
    for (const GLenum type : {GLenum{GL_DEBUG_TYPE_PUSH_GROUP}, GLenum{GL_DEBUG_TYPE_POP_GROUP}})
    {
        debugOutputCallback(GL_DEBUG_SOURCE_THIRD_PARTY, type, 1, GL_DEBUG_SEVERITY_NOTIFICATION, -1, "group", nullptr);
        EXPECT_EQ(log.take(), Texts{"error: 1: UNKNOWN of NOTIFICATION severity, raised from THIRD PARTY: group"});
    }
}

TEST_F(DebugOutputGLTest, ArrivesThroughTheInstalledCallback)
{
    glDebugMessageCallback(debugOutputCallback, nullptr);
    ASSERT_TRUE(gl.postDebugMessage(GL_DEBUG_SOURCE_API, GL_DEBUG_TYPE_ERROR, 9, GL_DEBUG_SEVERITY_HIGH, "100 %"));
    EXPECT_EQ(log.take(), Texts{"error: 9: ERROR of HIGH severity, raised from API: 100 %"});
}

} // namespace renderengine
