// A source of test programs whose cases make contexts through the engine: a case that leaves a GL object fails.

#include "support/LiveObjects.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace renderengine::testing
{
namespace
{

class ObjectBalance : public ::testing::EmptyTestEventListener
{
public:
    void OnTestStart(const ::testing::TestInfo& /*info*/) override { LiveObjects::watchEveryContext(); }

    void OnTestEnd(const ::testing::TestInfo& /*info*/) override
    {
        EXPECT_EQ(LiveObjects::list(), std::vector<std::string>{}) << "GL objects that the case left behind";
    }
};

/// GoogleTest owns the listener.
const bool s_isListening = []
{
    ::testing::UnitTest::GetInstance()->listeners().Append(new ObjectBalance);
    return true;
}();

} // namespace
} // namespace renderengine::testing
