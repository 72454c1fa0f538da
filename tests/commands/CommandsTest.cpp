#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "commands/CommandBuffer.h"
#include "commands/CommandList.h"
#include "renderer/RendererNull.h"

namespace
{

using namespace renderengine;

struct NamedCommand
{
    std::string className;
    std::unique_ptr<CommandBase> command;
};

/// One command of each class, in the order of the renderer's overloads.
std::vector<NamedCommand> allCommands()
{
    std::vector<NamedCommand> commands;
#define MAKE_COMMAND(COMMAND) commands.push_back({#COMMAND, std::make_unique<COMMAND>()});
    RENDERENGINE_COMMANDS(MAKE_COMMAND)
#undef MAKE_COMMAND
    return commands;
}

/// Notes the overload that each command reaches, and the address of the command.
class OverloadRecorder : public RendererNull
{
public:
    OverloadRecorder() : RendererNull(false) {}

    using RendererNull::execute;
#define RECORD_OVERLOAD(COMMAND)                  \
    void execute(COMMAND& command) override       \
    {                                             \
        m_calls.emplace_back(#COMMAND, &command); \
    }
    RENDERENGINE_COMMANDS(RECORD_OVERLOAD)
#undef RECORD_OVERLOAD

    std::vector<std::pair<std::string, CommandBase*>> m_calls;
};

/// The names as the trace shows them. A name that follows the rule is "Command" and the name.
std::string expectedName(const std::string& className)
{
    const std::vector<std::pair<std::string, std::string>> exceptions = {
        {"CommandTask", "CommandBase"},
        {"CommandRenderTask", "CommandBase"},
        {"CommandMemoryBarrier", "CommandBase"},
        {"CommandReadbackTexture", "CommandBase"},
        {"CommandCreateShaderBuffer", "CreateShadermBuffer"},
        {"CommandAddDrawProperties", "CommandAddDrawProperties"},
        {"CommandRemoveDrawProperties", "CommandRemoveDrawProperties"},
        {"CommandRemoveAllDrawProperties", "CommandRemoveAllDrawProperties"},
    };
    for (const auto& [name, literal] : exceptions)
    {
        if (name == className)
        {
            return literal;
        }
    }
    return className.substr(std::strlen("Command"), className.find('<') - std::strlen("Command"));
}

TEST(Commands, AnswerTheirNames)
{
    const std::vector<NamedCommand> commands = allCommands();
    ASSERT_EQ(commands.size(), 103u);
    for (const NamedCommand& entry : commands)
    {
        EXPECT_EQ(entry.command->name(), expectedName(entry.className)) << entry.className;
    }
}

TEST(Commands, AnswerSomeNamesThatAreEasilyMistaken)
{
    EXPECT_EQ(CommandClearRT().name(), "ClearRT");
    EXPECT_EQ(CommandRender().name(), "Render");
    EXPECT_EQ(CommandGetQueryResult().name(), "GetQueryResult");
    EXPECT_EQ(CommandCreateShaderBuffer().name(), "CreateShadermBuffer");
    EXPECT_EQ(CommandUpdateShaderBuffer().name(), "UpdateShaderBuffer");
    EXPECT_EQ(CommandAddDrawProperties().name(), "CommandAddDrawProperties");
    EXPECT_EQ(CommandCreateShaderParameter<ShaderParameterProperties<float>>().name(), "CreateShaderParameter");
    EXPECT_EQ(CommandUpdateShaderParameter<ShaderParameterArrayProperties<SbMatrix>>().name(), "UpdateShaderParameter");
}

TEST(Commands, ReachTheOverloadOfTheirClassWithThemselves)
{
    OverloadRecorder renderer;
    const std::vector<NamedCommand> commands = allCommands();
    for (const NamedCommand& entry : commands)
    {
        entry.command->execute(renderer);
    }
    ASSERT_EQ(renderer.m_calls.size(), commands.size());
    for (std::size_t i = 0; i < commands.size(); ++i)
    {
        EXPECT_EQ(renderer.m_calls[i].first, commands[i].className);
        EXPECT_EQ(renderer.m_calls[i].second, commands[i].command.get());
    }
}

TEST(Commands, RunInRecordingOrder)
{
    OverloadRecorder renderer;
    CommandBuffer buffer;
    buffer.record<CommandBeginQuery>(QueryHandle(1));
    buffer.record<CommandRender>(DrawHandle(2));
    buffer.record<CommandEndQuery>(QueryHandle(1));
    renderer.executeCommands(buffer);
    ASSERT_EQ(renderer.m_calls.size(), 3u);
    EXPECT_EQ(renderer.m_calls[0].first, "CommandBeginQuery");
    EXPECT_EQ(renderer.m_calls[1].first, "CommandRender");
    EXPECT_EQ(renderer.m_calls[2].first, "CommandEndQuery");
    EXPECT_EQ(buffer.size(), 3u);
}

TEST(Commands, StartWithInvalidHandles)
{
    EXPECT_FALSE(CommandRender().handle.isValid());
    EXPECT_FALSE(CommandBlit().source.isValid());
    EXPECT_FALSE(CommandBlit().destination.isValid());
    EXPECT_FALSE(CommandCopyBuffer().source.isValid());
    EXPECT_FALSE(CommandCopyBuffer().destination.isValid());
    EXPECT_FALSE(CommandAddDrawProperties().handle.isValid());
    EXPECT_FALSE(CommandAddDrawProperties().drawProperties.isValid());
    EXPECT_FALSE(CommandDestroyTexture().handle.isValid());
}

TEST(Commands, AreNeverCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<CommandRender>);
    EXPECT_FALSE(std::is_copy_assignable_v<CommandUpdateTexture>);
    EXPECT_TRUE((std::is_base_of_v<CommandTask, CommandRenderTask>));
}

TEST(Commands, CarryTheirArguments)
{
    CommandCopyBuffer copy;
    copy.set(BufferHandle(1), BufferHandle(2), 3, 4, 5);
    EXPECT_EQ(copy.source, BufferHandle(1));
    EXPECT_EQ(copy.destination, BufferHandle(2));
    EXPECT_EQ(copy.sourceOffset, 3u);
    EXPECT_EQ(copy.destinationOffset, 4u);
    EXPECT_EQ(copy.length, 5u);

    CommandMapBuffer map;
    map.set(BufferHandle(1), 16, 32, 2);
    EXPECT_EQ(map.handle, BufferHandle(1));
    EXPECT_EQ(map.offset, 16u);
    EXPECT_EQ(map.length, 32u);
    EXPECT_EQ(map.access, 2u);

    CommandResizeTexture resize;
    resize.set(TextureHandle(9), 1, 2, 3);
    EXPECT_EQ(resize.handle, TextureHandle(9));
    EXPECT_EQ(resize.width, 1u);
    EXPECT_EQ(resize.height, 2u);
    EXPECT_EQ(resize.depth, 3u);

    CommandCreateQuery query;
    query.set(QueryHandle(4), 6);
    EXPECT_EQ(query.handle, QueryHandle(4));
    EXPECT_EQ(query.type, 6u);

    const auto gfxState = std::make_shared<const GfxStateProperties>();
    const auto shaderState = std::make_shared<const ShaderStateCoreProperties>();
    CommandCreateDraw draw;
    draw.set(DrawHandle(5), gfxState, shaderState);
    EXPECT_EQ(draw.handle, DrawHandle(5));
    EXPECT_EQ(draw.gfxState, gfxState);
    EXPECT_EQ(draw.shaderState, shaderState);
}

TEST(CommandCreateBuffer, CopiesTheDataAtOnce)
{
    std::vector<uint8_t> data{1, 2, 3, 4};
    BufferProperties properties;
    properties.kind = 3;
    properties.size = 4;
    properties.data = data.data();
    CommandCreateBuffer command;
    command.set(BufferHandle(1), properties);
    data.assign(4, 0);
    ASSERT_NE(command.block, nullptr);
    EXPECT_EQ(command.properties.data, command.block.get());
    EXPECT_EQ(command.properties.kind, 3);
    EXPECT_EQ(command.properties.size, 4u);
    EXPECT_EQ(std::vector<uint8_t>(command.block.get(), command.block.get() + 4), (std::vector<uint8_t>{1, 2, 3, 4}));
}

TEST(CommandCreateBuffer, AllocatesNothingWithoutData)
{
    BufferProperties properties;
    properties.size = 1024;
    CommandCreateBuffer command;
    command.set(BufferHandle(1), properties);
    EXPECT_EQ(command.block, nullptr);
    EXPECT_EQ(command.properties.data, nullptr);
    EXPECT_EQ(command.properties.size, 1024u);
}

TEST(CommandUpdateBuffer, AlwaysAllocatesTheSize)
{
    BufferProperties properties;
    properties.size = 3;
    CommandUpdateBuffer command;
    command.set(BufferHandle(1), properties);
    ASSERT_NE(command.block, nullptr);
    EXPECT_EQ(command.properties.data, command.block.get());
    EXPECT_EQ(std::vector<uint8_t>(command.block.get(), command.block.get() + 3), (std::vector<uint8_t>{0, 0, 0}));

    const uint8_t data[3] = {7, 8, 9};
    properties.data = data;
    command.set(BufferHandle(1), properties);
    EXPECT_NE(command.properties.data, data);
    EXPECT_EQ(std::memcmp(command.properties.data, data, 3), 0);
}

TEST(CommandUpdateBuffer, CanLetGoOfItsDataEarly)
{
    BufferProperties properties;
    properties.size = 3;
    CommandUpdateBuffer command;
    command.set(BufferHandle(1), properties);
    command.releaseData();
    EXPECT_EQ(command.block, nullptr);
    EXPECT_EQ(command.properties.data, nullptr);
    EXPECT_EQ(command.properties.size, 3u);
}

TEST(CommandUpdateBuffer, RefusesASizeThatCannotBeAllocated)
{
    BufferProperties properties;
    properties.size = ~uint64_t(0) - 4096;
    CommandUpdateBuffer command;
    EXPECT_THROW(command.set(BufferHandle(1), properties), std::bad_alloc);
}

TEST(CommandCreateTexture, KeepsTheClientsPointers)
{
    const uint8_t pixels[4] = {};
    TextureProperties properties;
    properties.data = {pixels};
    CommandCreateTexture command;
    command.set(TextureHandle(1), properties);
    EXPECT_EQ(command.properties.data, (std::vector<const void*>{pixels}));
}

TEST(CommandUpdateTexture, CopiesThePixelsAtOnceAndPointsAtTheCopies)
{
    std::vector<uint8_t> pixels{1, 2, 3, 4, 5, 6, 7, 8};
    TextureProperties properties;
    properties.width = 2;
    properties.data = {pixels.data()};
    CommandUpdateTexture command;
    command.set(TextureHandle(1), properties);
    pixels.assign(8, 0);
    ASSERT_EQ(command.blocks.size(), 1u);
    ASSERT_EQ(command.properties.data.size(), 1u);
    EXPECT_EQ(command.properties.data[0], command.blocks[0].get());
    EXPECT_EQ(std::vector<uint8_t>(command.blocks[0].get(), command.blocks[0].get() + 8),
              (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(CommandUpdateTexture, GivesTheSizeOfTheLevelForJoinedCompressedFaces)
{
    const uint8_t pixels[8] = {};
    TextureProperties properties;
    properties.type = 8;
    properties.compressed = 1;
    properties.sizes = {8};
    properties.data.assign(6, pixels);
    CommandUpdateTexture command;
    command.set(TextureHandle(1), properties);
    EXPECT_EQ(command.properties.sizes, (std::vector<uint32_t>{48}));
    EXPECT_EQ(command.properties.data.size(), 1u);
}

TEST(CommandUpdateTextureBatchData, CopiesMarkedEntriesTightly)
{
    // Two by two of a source with rows of three pixels.
    const uint8_t pixels[6] = {1, 2, 3, 4, 5, 6};
    TextureUpdateBatchData entry;
    entry.width = 2;
    entry.height = 2;
    entry.depth = 1;
    entry.format = 3;
    entry.rowLength = 3;
    entry.imageHeight = 2;
    entry.data = pixels;
    CommandUpdateTextureBatchData command;
    command.set(TextureHandle(1), {entry});
    ASSERT_EQ(command.properties.size(), 1u);
    const TextureUpdateBatchData& copied = command.properties[0];
    EXPECT_NE(copied.data, pixels);
    EXPECT_EQ(copied.flags, 3);
    EXPECT_EQ(copied.rowLength, 0u);
    EXPECT_EQ(copied.imageHeight, 0u);
    const uint8_t expected[4] = {1, 2, 4, 5};
    EXPECT_EQ(std::memcmp(copied.data, expected, 4), 0);
}

TEST(CommandUpdateTextureBatchData, KeepsTheClientsPointerOfUnmarkedEntries)
{
    const uint8_t pixels[4] = {};
    TextureUpdateBatchData entry;
    entry.width = 1;
    entry.height = 1;
    entry.depth = 1;
    entry.rowLength = 7;
    entry.imageHeight = 9;
    entry.data = pixels;
    entry.flags = 0;
    CommandUpdateTextureBatchData command;
    command.set(TextureHandle(1), {entry});
    EXPECT_EQ(command.properties[0], entry);
}

TEST(CommandUpdateTextureBatchData, NeverFreesTheClientsMemory)
{
    // The owning mark is the engine's: a client that sets it keeps its memory.
    const uint8_t pixels[4] = {};
    TextureUpdateBatchData entry;
    entry.data = pixels;
    entry.flags = 2;
    CommandUpdateTextureBatchData command;
    command.set(TextureHandle(1), {entry});
    EXPECT_EQ(command.properties[0].data, pixels);
    EXPECT_EQ(command.properties[0].flags, 0);
}

TEST(CommandPopDebugMarker, HasNoText)
{
    CommandPopDebugMarker command;
    command.set();
    EXPECT_TRUE(command.text.empty());
}

} // namespace
