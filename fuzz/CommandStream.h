#pragma once

#include "ByteReader.h"
#include "RecordDecoder.h"

#include <renderengine/BufferedRenderCache.h>
#include <renderengine/ContextInterface.h>
#include <renderengine/RenderCache.h>

#include <cstdint>
#include <memory>

namespace renderengine::fuzz
{

/// Reads bytes as what a client does with a context and its caches, one operation behind the other. The client keeps
/// to the rules for threads, pointers, ranges and indices, which nothing checks, and to nothing else.
class CommandStream
{
public:
    /// \p threaded: frames run on a render thread.
    CommandStream(ContextInterface& context, bool threaded, ByteReader& reader, const Limits& limits);

    /// Runs the whole input and, at its end, one more frame.
    void run();

private:
    using Operation = void (CommandStream::*)();

    /// A cache, and how many lists it was begun with.
    struct Cache
    {
        std::shared_ptr<RenderCache> cache;
        uint32_t lists = 0;
    };

    void step();
    Cache& pickCache() { return m_caches[m_reader.below(CACHES)]; }
    RenderCache& pickRenderCache();
    SbVec2i32 pickRange(uint64_t size);
    bool countWork(uint64_t commands);

    // Frames
    void submit();
    void execute();
    void executeResourceCommands();
    void discardFrame();
    void flush();
    void present();
    void setPresentTargets();

    // Tasks
    void addTask();
    void renderTask();

    // Resources of the context
    void drawOperation();
    void drawPropertiesOperation();
    void membersOfDraw();
    void bufferOperation();
    void bufferMemoryOperation();
    void vertexBufferOperation();
    void indexBufferOperation();
    void shaderBufferOperation();
    void textureImageOperation();
    void samplerOperation();
    void textureOperation();
    void texturePixelsOperation();
    void renderTargetOperation();
    void viewportOperation();
    void shaderObjectOperation();
    void shaderProgramOperation();
    void shaderParameterOperation();
    void queryOperation();

    // Recording on a cache
    void recordDraws();
    void recordUpdateDraw();
    void recordParameter();
    void recordTarget();
    void recordTexture();
    void recordCompute();
    void recordTask();
    void recordQuery();
    void recordTransformFeedback();
    void recordMarkers();
    void cacheLists();
    void cacheCopy();
    void bufferedCache();

    template <class Properties> void createParameter();
    template <class Properties> void updateParameter();
    template <class Properties> void recordParameterOf();

    static constexpr uint32_t CACHES = 4;

    ContextInterface& m_context;
    ByteReader& m_reader;
    RecordDecoder m_records;
    Cache m_caches[CACHES];
    BufferedRenderCache m_buffered;
    bool m_threaded;
    bool m_frameMayWait = false; // a frame was ended and may not have run
    uint64_t m_work = 0;         // commands shared among lists so far
};

} // namespace renderengine::fuzz
