#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <kavelor/SoError.h>

namespace
{

/// Collects what is posted while it lives.
class SoErrorTest : public testing::Test
{
protected:
    SoErrorTest()
    {
        SoError::setHandler([this](const SbString& message) { m_messages.push_back(message.toStdString()); });
        SoDebugError::setHandler(
            [this](const SbString& function, const SbString& message, SoDebugError::Severity severity)
            {
                const char* const kind = severity == SoDebugError::Severity::Info ? "info" : "error";
                m_messages.push_back(std::string(kind) + "|" + function.toStdString() + "|" + message.toStdString());
            });
    }

    ~SoErrorTest() override
    {
        SoError::setHandler({});
        SoDebugError::setHandler({});
    }

    std::vector<std::string> m_messages;
};

using Messages = std::vector<std::string>;

TEST_F(SoErrorTest, FormatsLikePrintf)
{
    SoError::post("%d of %s at %.1f%%", 3, "five", 60.0);
    EXPECT_EQ(m_messages, Messages{"3 of five at 60.0%"});
}

TEST_F(SoErrorTest, FormatsLongTexts)
{
    const std::string longText(100000, 'x');
    SoError::post("<%s>", longText.c_str());
    EXPECT_EQ(m_messages, Messages{"<" + longText + ">"});
}

TEST_F(SoErrorTest, WithoutArgumentsADoubledPercentSignBecomesOne)
{
    SoError::post("100%% done, 50%%%%");
    EXPECT_EQ(m_messages, Messages{"100% done, 50%%"});
}

TEST_F(SoErrorTest, WithoutArgumentsAConversionStaysAsItIs)
{
    // The text is not a literal, as when a shader's log is posted.
    const std::string text = "%s %n %d 100% %";
    SoError::post(text.c_str());
    EXPECT_EQ(m_messages, Messages{text});
}

TEST_F(SoErrorTest, IgnoresANullFormat)
{
    SoError::post(nullptr);
    SoDebugError::post("f", nullptr);
    EXPECT_EQ(m_messages, Messages{});
}

TEST_F(SoErrorTest, DebugErrorTellsFunctionAndSeverity)
{
    SoDebugError::post("Format::activate()", "size %d", 7);
    SoDebugError::post("Format::activate()", "plain");
    SoDebugError::postInfo("Format::activate()", "size %d", 8);
    SoDebugError::postInfo("Format::activate()", "plain");
    EXPECT_EQ(m_messages, (Messages{"error|Format::activate()|size 7", "error|Format::activate()|plain",
                                    "info|Format::activate()|size 8", "info|Format::activate()|plain"}));
}

TEST_F(SoErrorTest, SetHandlerReturnsTheFormerOne)
{
    Messages other;
    SoError::Handler former = SoError::setHandler(
        [&](const SbString& message)
        {
            other.push_back(message.toStdString()); //
        });
    SoError::post("to the new one");
    SoError::setHandler(std::move(former));
    SoError::post("to the old one");
    EXPECT_EQ(other, Messages{"to the new one"});
    EXPECT_EQ(m_messages, Messages{"to the old one"});
}

TEST_F(SoErrorTest, AHandlerMayPostAndReplaceItself)
{
    SoError::setHandler(
        [this](const SbString& message)
        {
            m_messages.push_back("first:" + message.toStdString());
            SoError::setHandler([this](const SbString& inner)
                                { m_messages.push_back("second:" + inner.toStdString()); });
            SoError::post("inner");
        });
    SoError::post("outer");
    EXPECT_EQ(m_messages, (Messages{"first:outer", "second:inner"}));
}

TEST_F(SoErrorTest, DefaultHandlersWriteOneLineToStandardError)
{
    SoError::setHandler({});
    SoDebugError::setHandler({});
    testing::internal::CaptureStderr();
    SoError::post("without an end");
    SoError::post("with an end\n");
    SoDebugError::post("f", "wrong");
    SoDebugError::postInfo("g", "told\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "without an end\nwith an end\nError in f: wrong\nInfo in g: told\n");
}

TEST_F(SoErrorTest, HandlersMayBeReplacedWhileThreadsPost)
{
    std::atomic<int> received{0};
    const auto count = [&received](const SbString&) { ++received; };
    SoError::setHandler(count);
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            []
            {
                for (int i = 0; i < 1000; ++i)
                {
                    SoError::post("%d", i);
                }
            });
    }
    for (int i = 0; i < 1000; ++i)
    {
        SoError::setHandler(count);
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(received, 4000);
}

} // namespace
