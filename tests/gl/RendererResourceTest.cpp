#include "RendererFixture.h"

#include <kavelor/SoPreferences.h>

#include <array>

namespace renderengine
{
namespace
{

using RendererGL41ResourceTest = RendererGLTest;

Texts error(const std::string& text)
{
    return {"error: [RendererGL] " + text};
}

TEST_F(RendererGL41ResourceTest, InvalidHandlesAreReportedWithTheirOwnTexts)
{
    const auto expectError = [this](const char* text)
    {
        EXPECT_EQ(log.take(), error(text));
        EXPECT_EQ(gl.takeCalls(), Texts{}) << text;
    };
    run<CommandUpdateDrawProperties>(DrawPropertiesHandle(), DrawProperties());
    expectError("Trying to update invalid draw properties.");
    run<CommandDestroyDrawProperties>(DrawPropertiesHandle());
    expectError("Trying to destroy an invalid draw properties.");
    run<CommandUpdateDraw>(DrawHandle(), nullptr, nullptr);
    expectError("Trying to update an invalid draw call.");
    run<CommandAddDrawProperties>(DrawHandle(), DrawPropertiesHandle());
    expectError("Trying to update an invalid draw call.");
    run<CommandDestroyDraw>(DrawHandle());
    expectError("Trying to destroy an invalid draw command.");
    run<CommandRemoveDrawProperties>(DrawHandle(), DrawPropertiesHandle());
    expectError("Trying to remove an invalid draw property.");
    run<CommandRemoveAllDrawProperties>(DrawHandle());
    expectError("Trying to remove draw properties from an invalid draw command.");
    run<CommandDestroyVertexBuffer>(VertexBufferHandle());
    expectError("Trying to destroy an invalid vertex buffer.");
    run<CommandDestroyIndexBuffer>(IndexBufferHandle());
    expectError("Trying to destroy an invalid index buffer.");
    run<CommandDestroyShaderBuffer>(ShaderBufferHandle());
    expectError("Trying to destroy an invalid shader buffer.");
    run<CommandDestroyTextureImage>(TextureImageHandle());
    expectError("Trying to destroy an invalid texture image.");
    run<CommandUpdateSampler>(SamplerHandle(), SamplerProperties());
    expectError("Trying to update an invalid sampler.");
    run<CommandDestroySampler>(SamplerHandle());
    expectError("Trying to destroy an invalid sampler.");
    run<CommandResizeTexture>(TextureHandle(), 1u, 1u, 1u);
    expectError("Trying to resize an invalid texture.");
    run<CommandUpdateTexture>(TextureHandle(), TextureProperties());
    expectError("Trying to update an invalid texture.");
    run<CommandUpdateTextureBatchData>(TextureHandle(), TextureUpdateBatchDataProperties());
    expectError("Trying to update an invalid texture.");
    run<CommandReadbackTexture>(TextureHandle());
    expectError("Trying to read back an invalid texture.");
    renderer->readbackTexture(TextureHandle(), nullptr, 0);
    expectError("Trying to readback an invalid texture.");
    run<CommandDestroyTexture>(TextureHandle());
    expectError("Trying to destroy an invalid texture.");
    run<CommandDestroyRenderTarget>(RenderTargetHandle());
    expectError("Trying to destroy an invalid render target.");
    run<CommandDestroyViewport>(ViewportHandle());
    expectError("Trying to destroy an invalid viewport.");
    run<CommandMapBuffer>(BufferHandle(), 0u, 0u, 0u);
    expectError("Trying to map an invalid buffer.");
    run<CommandUnmapBuffer>(BufferHandle());
    expectError("Trying to unmap an invalid buffer.");
    run<CommandResizeBuffer>(BufferHandle(), 0u);
    expectError("Trying to resize an invalid buffer.");
    run<CommandUpdateBuffer>(BufferHandle(), BufferProperties());
    expectError("Trying to update an invalid buffer.");
    run<CommandDestroyBuffer>(BufferHandle());
    expectError("Trying to destroy an invalid buffer.");
}

#define UPDATE_PARAMETER(RECORD) run<CommandUpdateShaderParameter<RECORD>>(ShaderParameterHandle(), RECORD());

TEST_F(RendererGL41ResourceTest, EveryParameterTypeReportsAnInvalidHandle)
{
    RENDERENGINE_SHADER_PARAMETERS(UPDATE_PARAMETER)
    const Texts expected(19, "error: [RendererGL] Trying to update an invalid param.");
    EXPECT_EQ(log.take(), expected);
}

#undef UPDATE_PARAMETER

TEST_F(RendererGL41ResourceTest, ASlotWithoutAnObjectCountsAsInvalid)
{
    const BufferHandle handle = renderer->generateBufferHandle();
    run<CommandUnmapBuffer>(handle);
    EXPECT_EQ(log.take(), error("Trying to unmap an invalid buffer."));
    run<CommandDestroyBuffer>(handle);
    EXPECT_EQ(log.take(), error("Trying to destroy an invalid buffer."));
    // Its number was not taken back: it belongs to a create that is still to come.
    EXPECT_EQ(renderer->generateBufferHandle().id, handle.id + 1);
}

TEST_F(RendererGL41ResourceTest, CopyTestsBothHandles)
{
    const BufferHandle buffer = makeBuffer(4);
    run<CommandCopyBuffer>(buffer, BufferHandle(), 0u, 0u, 4u);
    EXPECT_EQ(log.take(), error("Trying to copy data between invalid buffers."));
    run<CommandCopyBuffer>(BufferHandle(7), buffer, 0u, 0u, 4u);
    EXPECT_EQ(log.take(), error("Trying to copy data between invalid buffers."));
}

TEST_F(RendererGL41ResourceTest, CopyReadsTheFirstBufferAndWritesTheSecond)
{
    const BufferHandle source = makeBuffer(32);
    const BufferHandle destination = makeBuffer(64);
    EXPECT_EQ(callsOf<CommandCopyBuffer>(source, destination, 4u, 8u, 16u),
              (Texts{"glBindBuffer(GL_COPY_WRITE_BUFFER, 2)", "glBindBuffer(GL_COPY_READ_BUFFER, 1)",
                     "glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, <pointer>)",
                     "glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 4, 8, 16)",
                     "glBindBuffer(GL_COPY_WRITE_BUFFER, 0)", "glBindBuffer(GL_COPY_READ_BUFFER, 0)"}));
}

TEST_F(RendererGL41ResourceTest, UpdateThatRunsAgainAfterItsDataWasFreedKeepsTheContent)
{
    const BufferHandle buffer = makeBuffer(4);
    const std::array<uint8_t, 4> data = {1, 2, 3, 4};
    BufferProperties properties;
    properties.size = data.size();
    properties.data = data.data();
    CommandUpdateBuffer command;
    command.set(buffer, properties);
    renderer->execute(command);
    gl.clear();
    renderer->execute(command);
    EXPECT_EQ(gl.takeCalls(), Texts{});
    EXPECT_EQ(gl.bufferContent(1), (std::vector<std::byte>{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4}}));
}

TEST_F(RendererGL41ResourceTest, MipmapsAreMadeOfTheTextureThatIsNamed)
{
    makeTexture();
    const TextureHandle second = makeTexture();
    EXPECT_EQ(callsOf<CommandGenerateMipmap>(second),
              (Texts{"glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS)", "glGetIntegerv(GL_TEXTURE_BINDING_2D, <pointer>)",
                     "glBindTexture(GL_TEXTURE_2D, 2)", "glGenerateMipmap(GL_TEXTURE_2D)",
                     "glBindTexture(GL_TEXTURE_2D, 0)"}));
}

TEST_F(RendererGL41ResourceTest, PartialUpdatesReachTheTextureThatIsNamed)
{
    makeTexture();
    const TextureHandle second = makeTexture();
    const std::array<uint32_t, 2> pixels = {1, 2};
    TextureUpdateBatchData part;
    part.x = 1;
    part.y = 3;
    part.width = 2;
    part.height = 1;
    part.depth = 1;
    part.data = pixels.data();
    gl.clear();
    run<CommandUpdateTextureBatchData>(second, TextureUpdateBatchDataProperties{part});
    EXPECT_EQ(gl.countOf("glBindTexture(GL_TEXTURE_2D, 2)"), 1u);
    EXPECT_EQ(gl.callsMatching("glTexSubImage2D("),
              Texts{"glTexSubImage2D(GL_TEXTURE_2D, 0, 1, 3, 2, 1, GL_RGBA, GL_UNSIGNED_BYTE, <pointer>)"});
}

TEST_F(RendererGL41ResourceTest, UpdateOfASamplerSendsItsParameters)
{
    makeSampler();
    const SamplerHandle second = makeSampler();
    SamplerProperties properties;
    properties.wrapS = 4;
    const Texts calls = callsOf<CommandUpdateSampler>(second, properties);
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.front(), "glSamplerParameteri(2, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)");
}

TEST_F(RendererGL41ResourceTest, CommandsThatDoNotTestTheirHandleAreSilent)
{
    run<CommandUpdateVertexBuffer>(VertexBufferHandle(), VertexBufferProperties());
    run<CommandUpdateIndexBuffer>(IndexBufferHandle(), IndexBufferProperties());
    run<CommandUpdateShaderBuffer>(ShaderBufferHandle(), ShaderBufferProperties());
    run<CommandUpdateTextureImage>(TextureImageHandle(), TextureImageProperties());
    run<CommandUpdateViewport>(ViewportHandle(), ViewportProperties());
    run<CommandUpdateRenderTarget>(RenderTargetHandle(), RenderTargetProperties());
    run<CommandGenerateMipmap>(TextureHandle());
    run<CommandDestroyShaderObject>(ShaderObjectHandle());
    run<CommandDestroyShaderProgram>(ShaderProgramHandle());
    run<CommandDestroyShaderParameter>(ShaderParameterHandle());
    run<CommandDestroyQuery>(QueryHandle());
    run<CommandCreateBuffer>(BufferHandle(), BufferProperties());
    run<CommandCreateTextureImage>(TextureImageHandle(), TextureImageProperties());
    EXPECT_EQ(gl.takeCalls(), Texts{});
}

TEST_F(RendererGL41ResourceTest, DestroyInvalidatesTheCommandAndASecondRunReports)
{
    CommandDestroyBuffer command;
    command.set(makeBuffer(4));
    gl.clear();
    renderer->execute(command);
    EXPECT_EQ(gl.takeCalls(), (Texts{"glIsBuffer(1)", "glDeleteBuffers(1, {1})"}));
    EXPECT_FALSE(command.handle.isValid());
    renderer->execute(command);
    EXPECT_EQ(log.take(), error("Trying to destroy an invalid buffer."));
    EXPECT_EQ(renderer->generateBufferHandle(), BufferHandle(0));
}

TEST_F(RendererGL41ResourceTest, CreateFreesTheDataOfItsCommand)
{
    const std::array<uint8_t, 4> data = {1, 2, 3, 4};
    BufferProperties properties;
    properties.size = data.size();
    properties.data = data.data();
    CommandCreateBuffer command;
    command.set(renderer->generateBufferHandle(), properties);
    renderer->execute(command);
    EXPECT_EQ(command.block, nullptr);
    EXPECT_EQ(gl.bufferContent(1), (std::vector<std::byte>{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4}}));
}

TEST_F(RendererGL41ResourceTest, MappedPointerIsFoundWithoutGrowingTheTable)
{
    const BufferHandle buffer = makeBuffer(16);
    EXPECT_EQ(renderer->getMappedBufferPointer(buffer), nullptr);
    run<CommandMapBuffer>(buffer, 0u, 16u, 1u);
    EXPECT_NE(renderer->getMappedBufferPointer(buffer), nullptr);
    run<CommandUnmapBuffer>(buffer);
    EXPECT_EQ(renderer->getMappedBufferPointer(buffer), nullptr);
    EXPECT_EQ(renderer->getMappedBufferPointer(BufferHandle(1000)), nullptr);
    EXPECT_EQ(renderer->getMappedBufferPointer(BufferHandle()), nullptr);
}

TEST_F(RendererGL41ResourceTest, ReadbackIsCutToWhatWasRead)
{
    const TextureHandle texture = makeTexture();
    std::array<uint8_t, 128> pixels{};
    pixels.fill(7);
    renderer->readbackTexture(texture, pixels.data(), pixels.size());
    EXPECT_EQ(pixels[0], 7) << "nothing has been read back yet";
    run<CommandReadbackTexture>(texture);
    renderer->readbackTexture(texture, pixels.data(), pixels.size());
    EXPECT_NE(pixels[63], 7);
    EXPECT_EQ(pixels[64], 7);
}

TEST_F(RendererGL41ResourceTest, RenderTargetSkipsAttachmentsWithoutTexture)
{
    RenderTargetProperties properties;
    properties.attachments.resize(2);
    properties.attachments[0].texture = TextureHandle(9);
    properties.attachments[1].texture = makeTexture();
    properties.attachments[1].attachment = 1;
    const RenderTargetHandle target = renderer->generateRenderTargetHandle();
    gl.clear();
    run<CommandCreateRenderTarget>(target, properties);
    EXPECT_EQ(gl.callsMatching("glFramebufferTexture"),
              Texts{"glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, 1, 0)"});
    // The same list again builds nothing.
    EXPECT_EQ(callsOf<CommandUpdateRenderTarget>(target, properties), Texts{});
}

TEST_F(RendererGL41ResourceTest, TextureThatGetsANewNameIsAttachedByTheNextDraw)
{
    Scene scene = makeScene();
    TextureProperties properties;
    properties.width = 4;
    properties.height = 4;
    const TextureHandle texture = renderer->generateTextureHandle();
    run<CommandCreateTexture>(texture, properties);
    RenderTargetProperties target;
    target.attachments.resize(1);
    target.attachments[0].texture = texture;
    run<CommandUpdateRenderTarget>(scene.shaderState.renderTarget, target);
    drawCalls(scene);
    properties.type = 3;
    run<CommandUpdateTexture>(texture, properties);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.callsMatching("glFramebufferTexture("),
              (Texts{"glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 0, 0)",
                     "glFramebufferTexture(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 3, 0)"}));
    EXPECT_EQ(gl.countOf("glBindFramebuffer("), 3u) << "rebuild, its restore, and the bind";
}

TEST_F(RendererGL41ResourceTest, DestroyOfWhatIsInUseSendsEverythingNextTime)
{
    Scene scene = makeScene();
    scene.shaderState.textures.mask = 1;
    scene.shaderState.textures.textures[0] = makeTexture();
    scene.shaderState.textures.samplers[0] = makeSampler();
    updateState(scene);
    const auto isFull = [&]
    {
        const Texts calls = drawCalls(scene);
        return std::count(calls.begin(), calls.end(), "glViewport(0, 0, 8, 6)") == 1;
    };
    EXPECT_TRUE(isFull());
    EXPECT_FALSE(isFull());
    run<CommandDestroySampler>(scene.shaderState.textures.samplers[0]);
    EXPECT_TRUE(isFull());
    run<CommandDestroyRenderTarget>(scene.shaderState.renderTarget);
    EXPECT_TRUE(isFull());
    run<CommandDestroyShaderProgram>(scene.shaderState.program);
    EXPECT_TRUE(isFull());
}

TEST_F(RendererGL41ResourceTest, ReusedProgramNumberCountsAsNew)
{
    Scene scene = makeScene();
    drawCalls(scene);
    run<CommandDestroyShaderProgram>(scene.shaderState.program);
    EXPECT_EQ(makeProgram(), scene.shaderState.program);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glUseProgram(2)"), 1u);
}

TEST_F(RendererGL41ResourceTest, ShaderLogIsKeptAfterAFailureOnly)
{
    gl.setInfoLog("0:1: syntax error");
    const ShaderObjectHandle good = renderer->generateShaderObjectHandle();
    run<CommandCreateShaderObject>(good, ShaderObjectProperties());
    EXPECT_EQ(renderer->getShaderObjectLog(good), "");
    gl.fail("glCompileShader");
    gl.fail("glLinkProgram");
    const ShaderObjectHandle bad = renderer->generateShaderObjectHandle();
    run<CommandCreateShaderObject>(bad, ShaderObjectProperties());
    EXPECT_NE(renderer->getShaderObjectLog(bad).find("syntax error"), std::string::npos);
    const ShaderProgramHandle program = makeProgram();
    EXPECT_NE(renderer->getShaderProgramLog(program).find("syntax error"), std::string::npos);

    // A reused number starts without a text.
    run<CommandDestroyShaderObject>(bad);
    gl.succeed("glCompileShader");
    const ShaderObjectHandle reused = renderer->generateShaderObjectHandle();
    ASSERT_EQ(reused, bad);
    run<CommandCreateShaderObject>(reused, ShaderObjectProperties());
    EXPECT_EQ(renderer->getShaderObjectLog(reused), "");

    SoPreferences::setBool("KVR_GLSL_DEBUG", true);
    run<CommandCreateShaderObject>(reused, ShaderObjectProperties());
    EXPECT_NE(renderer->getShaderObjectLog(reused).find("syntax error"), std::string::npos);
    gl.succeed("glLinkProgram");
    EXPECT_NE(renderer->getShaderProgramLog(makeProgram()).find("syntax error"), std::string::npos);
    gl.setInfoLog("");
    run<CommandCreateShaderObject>(reused, ShaderObjectProperties());
    EXPECT_EQ(renderer->getShaderObjectLog(reused), "") << "an empty log leaves the text as it was";
    EXPECT_EQ(renderer->getShaderProgramLog(makeProgram()), "");
}

TEST_F(RendererGL41ResourceTest, ProgramLinksTheStagesThatExist)
{
    const ShaderObjectHandle vertex = renderer->generateShaderObjectHandle();
    run<CommandCreateShaderObject>(vertex, ShaderObjectProperties());
    ShaderProgramProperties properties;
    properties.shaderObjects = {vertex, ShaderObjectHandle(), ShaderObjectHandle(12)};
    gl.clear();
    run<CommandCreateShaderProgram>(renderer->generateShaderProgramHandle(), properties);
    EXPECT_EQ(gl.callsMatching("glAttachShader("), Texts{"glAttachShader(2, 1)"});
}

TEST_F(RendererGL41ResourceTest, ParameterOfAnotherTypeReplacesTheFormer)
{
    Scene scene = makeScene();
    ShaderParameterProperties<float> scalar;
    scalar.value = 2.0f;
    const ShaderParameterHandle parameter = makeParameter("color", scalar);
    scene.shaderState.shaderParameters = {parameter};
    updateState(scene);
    drawCalls(scene);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glUniform1f(2, 2)"), 1u);
    ShaderParameterArrayProperties<int> integers;
    integers.name = "color";
    integers.value = {4, 5};
    run<CommandUpdateShaderParameter<ShaderParameterArrayProperties<int>>>(parameter, integers);
    gl.clear();
    run<CommandRender>(scene.draw);
    EXPECT_EQ(gl.countOf("glUniform1iv(2, 2, {4, 5})"), 1u);
}

TEST_F(RendererGL41ResourceTest, ResizeAndUpdateOfATextureForgetTheTextureBlock)
{
    Scene scene = makeScene();
    scene.shaderState.textures.mask = 1;
    scene.shaderState.textures.textures[0] = makeTexture();
    updateState(scene);
    drawCalls(scene);
    const TextureHandle other = makeTexture();
    const Texts unbind = {"glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 0)", "glDisable(GL_TEXTURE_2D)",
                          "glBindSampler(0, 0)", "glActiveTexture(GL_TEXTURE0)"};
    const auto startsWithUnbind = [&](Texts calls)
    {
        calls.resize(unbind.size());
        return calls == unbind;
    };
    EXPECT_TRUE(startsWithUnbind(callsOf<CommandResizeTexture>(other, 8u, 8u, 1u)));
    drawCalls(scene);
    EXPECT_TRUE(startsWithUnbind(callsOf<CommandUpdateTexture>(other, TextureProperties())));
    drawCalls(scene);
    // Partial updates leave the textures bound.
    EXPECT_EQ(callsOf<CommandUpdateTextureBatchData>(other, TextureUpdateBatchDataProperties()), Texts{});
}

TEST_F(RendererGL41ResourceTest, RemovalLeavesTheBatchesAsTheyAre)
{
    Scene scene = makeScene();
    const DrawPropertiesHandle second = makeMember(scene.properties);
    run<CommandAddDrawProperties>(scene.draw, second);
    drawCalls(scene);
    const Texts merged = drawCalls(scene);
    run<CommandRemoveDrawProperties>(scene.draw, second);
    EXPECT_EQ(drawCalls(scene), merged);
    run<CommandRemoveAllDrawProperties>(scene.draw);
    EXPECT_EQ(drawCalls(scene), Texts{});
}

TEST_F(RendererGL41ResourceTest, DestroyedDrawPropertiesLeaveTheirDraws)
{
    const Scene scene = makeScene();
    drawCalls(scene);
    run<CommandDestroyDrawProperties>(scene.member);
    EXPECT_EQ(drawCalls(scene), Texts{});
    // The number comes back for another object, which the draw does not hold.
    EXPECT_EQ(makeMember(scene.properties), scene.member);
    EXPECT_EQ(drawCalls(scene), Texts{});
}

} // namespace
} // namespace renderengine
