// The indices 0, 1, 2, ... through which ranges without an index buffer are drawn.

#include "RendererFixture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

namespace renderengine
{
namespace
{

/// Buffer 3 of the recording is the first one that the renderer makes behind those of the scene.
class IndexSequenceTest : public RendererGLTest
{
protected:
    /// A scene of one range that has no index buffer, not drawn yet.
    Scene makeSequenceScene(int32_t count = 3)
    {
        Scene scene = makeScene();
        scene.properties.ranges[0].indexBuffer = IndexBufferHandle();
        setCount(scene, count);
        return scene;
    }

    void setCount(Scene& scene, int32_t count)
    {
        scene.properties.ranges[0].count = count;
        run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    }

    /// The sequence as the device holds it.
    std::vector<uint32_t> sequence()
    {
        const std::vector<std::byte> bytes = gl.bufferContent(3);
        std::vector<uint32_t> indices(bytes.size() / sizeof(uint32_t));
        std::memcpy(indices.data(), bytes.data(), indices.size() * sizeof(uint32_t));
        return indices;
    }

    static std::vector<uint32_t> numbersUpTo(size_t count)
    {
        std::vector<uint32_t> numbers(count);
        std::iota(numbers.begin(), numbers.end(), 0u);
        return numbers;
    }
};

constexpr size_t firstCount = 1048576;

TEST_F(IndexSequenceTest, RangeWithoutIndicesDrawsThroughTheSequence)
{
    Scene scene = makeScene();
    drawCalls(scene);
    Texts expected = drawCalls(scene);
    scene.properties.ranges[0].indexBuffer = IndexBufferHandle();
    scene.properties.ranges[0].indexOffset = 8;
    run<CommandUpdateDrawProperties>(scene.member, scene.properties);
    drawCalls(scene);
    std::replace(expected.begin(), expected.end(), std::string("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 2)"),
                 std::string("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3)"));
    std::replace(expected.begin(), expected.end(),
                 std::string("glDrawElementsInstancedBaseInstance(GL_TRIANGLES, 3, GL_UNSIGNED_INT, null, 1, 0)"),
                 std::string("glDrawElementsInstancedBaseInstance(GL_TRIANGLES, 3, GL_UNSIGNED_INT, 8, 1, 0)"));
    EXPECT_EQ(drawCalls(scene), expected);
    EXPECT_TRUE(sequence() == numbersUpTo(firstCount));
}

TEST_F(IndexSequenceTest, GrowsByHalfOrToWhatIsAskedFor)
{
    Scene scene = makeSequenceScene();
    drawCalls(scene);
    setCount(scene, firstCount + 1);
    drawCalls(scene);
    EXPECT_TRUE(sequence() == numbersUpTo(1572864));
    setCount(scene, 4000000);
    drawCalls(scene);
    EXPECT_TRUE(sequence() == numbersUpTo(4000000));
}

TEST_F(IndexSequenceTest, SaturatesAtTheLargestCount)
{
    Scene scene = makeSequenceScene(-1); // the low 32 bits are asked for
    gl.fail("glMapBufferRange");
    drawCalls(scene);
    EXPECT_EQ(log.take(), Texts{"error: [RendererGL] There is no buffer for the sequence of 4294967295 indices."});
    gl.succeed("glMapBufferRange");
    setCount(scene, 3);
    drawCalls(scene);
    EXPECT_TRUE(sequence() == numbersUpTo(firstCount)) << "what could not be made is not kept";
}

TEST_F(IndexSequenceTest, IsTriedAgainWhenItCouldNotBeFilled)
{
    Scene scene = makeSequenceScene();
    gl.fail("glMapBufferRange", 1);
    drawCalls(scene);
    EXPECT_EQ(log.take(), Texts{"error: [RendererGL] There is no buffer for the sequence of 1048576 indices."});
    setCount(scene, 3);
    drawCalls(scene);
    EXPECT_TRUE(sequence() == numbersUpTo(firstCount));
}

TEST_F(IndexSequenceTest, KeepsWhatItHadWhenItCannotGrow)
{
    Scene scene = makeSequenceScene();
    drawCalls(scene);
    const Texts before = drawCalls(scene);
    DrawProperties tooLarge = scene.properties;
    tooLarge.ranges[0].count = 2000000;
    const DrawHandle other = makeDraw(scene, {makeMember(tooLarge)});
    gl.fail("glMapBufferRange", 1);
    run<CommandRender>(other);
    EXPECT_EQ(log.take(), Texts{"error: [RendererGL] There is no buffer for the sequence of 2000000 indices."});
    EXPECT_TRUE(sequence() == numbersUpTo(firstCount));
    EXPECT_EQ(drawCalls(scene), before);
}

} // namespace
} // namespace renderengine
