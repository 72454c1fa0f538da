#include "renderer/RingQueue.h"

#include <gtest/gtest.h>

#include <memory>

namespace renderengine
{
namespace
{

TEST(RingQueueTest, GivesElementsInTheOrderTheyCameWhereverTheRingStarts)
{
    for (int start = 0; start < 10; ++start)
    {
        RingQueue<int> queue;
        for (int i = 0; i < start; ++i)
        {
            queue.push(i);
            queue.pop();
        }
        for (int i = 0; i < 100; ++i)
        {
            queue.push(i);
        }
        EXPECT_EQ(queue.size(), 100u);
        for (int i = 0; i < 100; ++i)
        {
            ASSERT_EQ(queue.front(), i);
            queue.pop();
        }
        EXPECT_TRUE(queue.empty());
    }
}

TEST(RingQueueTest, TakesTurnsOfPushingAndPopping)
{
    RingQueue<int> queue;
    int expected = 0;
    for (int i = 0; i < 1000; ++i)
    {
        queue.push(i);
        if (i % 3 != 0)
        {
            ASSERT_EQ(queue.front(), expected++);
            queue.pop();
        }
    }
    EXPECT_EQ(queue.size(), static_cast<std::size_t>(1000 - expected));
}

TEST(RingQueueTest, DropsItsReferenceWithTheElement)
{
    const auto held = std::make_shared<int>(1);
    RingQueue<std::shared_ptr<int>> queue;
    for (int i = 0; i < 6; ++i)
    {
        queue.push(held);
    }
    EXPECT_EQ(held.use_count(), 7);
    queue.pop();
    queue.pop();
    EXPECT_EQ(held.use_count(), 5);
    queue = RingQueue<std::shared_ptr<int>>();
    EXPECT_EQ(held.use_count(), 1);
}

/// Looks at its queue when it goes, as the destructor of a client's task might.
struct Watcher
{
    Watcher(RingQueue<std::shared_ptr<Watcher>>& itsQueue, std::size_t& itsSize) : queue(itsQueue), size(itsSize) {}
    ~Watcher() { size = queue.size(); }

    RingQueue<std::shared_ptr<Watcher>>& queue;
    std::size_t& size;
};

TEST(RingQueueTest, IsInOrderAgainWhenAnElementGoes)
{
    RingQueue<std::shared_ptr<Watcher>> queue;
    std::size_t seen = 99;
    queue.push(std::make_shared<Watcher>(queue, seen));
    queue.pop();
    EXPECT_EQ(seen, 0u);
}

} // namespace
} // namespace renderengine
