#pragma once

#include <glbinding/CurrentTable.h>
#include <glbinding/ShaderReflection.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace renderengine::glbinding
{
class RecordingState;

/// A GL without a device for tests: every call is kept as text, and answered as a driver in good order would.
///
/// The object pins its table for the thread that made it (see ScopedTable) and must be destroyed on that thread; the
/// newest object of a thread receives its calls. Another thread takes part through a RecordingGL::Attach, or, when it
/// is not the test's own, through serveAllThreads and a table resolver that gives table(). GL calls may come from
/// several threads at once; calls() and the other members are for times when only the caller's thread is at work.
///
/// ## Texts
/// "glEnable(GL_CULL_FACE)", "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT)", "glDrawArrays(GL_POINTS, 0, 3)".
/// - Enumerants print by name, as the parameter calls for: 0 is GL_POINTS as a primitive and GL_NONE as a draw buffer.
///   Of several names of one value the core profile's is printed. Bits are joined in alphabetical order.
/// - GLboolean: GL_TRUE or GL_FALSE. Integers: decimal, except where they hold an enumerant (glTexParameteri). Floats:
///   the shortest text that reads back as the same value ("0.1", "1").
/// - Pointers: "null"; addresses below 1048576, which are offsets into a bound buffer, decimal; else "<pointer>".
///   Sync objects: "<sync 1>".
/// - Arrays whose length the call tells: "glDeleteBuffers(2, {1, 2})"; more than 64 elements end in ", ...".
/// - Strings: "glGetUniformLocation(1, \"color\")", with \n and \" escaped.
/// - Names that the call makes: "glGenBuffers(1, -> 3)", "glGenBuffers(2, -> {3, 4})", "glCreateProgram() -> 1";
///   fences have numbers too, "glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) -> 1". What other calls return or write
///   is not printed.
///
/// ## Answers
/// - Names count up from 1, for each kind of object on its own; shaders and programs share their numbers, as in GL.
/// - glIs* tells the live names (also those that were not yet bound), compile and link status are true, framebuffers
///   complete, fences signalled, query results available and 0.
/// - The context is 4.6, compatibility profile, vendor "Recording", with the extensions of the binding's scope.
/// - glGetIntegerv and its kin know bindings, viewport, the write masks and the capabilities; a buffer's size and the
///   memory behind it are kept, so that mapping and reading back work; everything else is 0 unless answer() sets it.
class RecordingGL
{
public:
    RecordingGL();
    ~RecordingGL();
    RecordingGL(const RecordingGL&) = delete;
    RecordingGL& operator=(const RecordingGL&) = delete;

    /// The table of the object that receives the calling thread's calls, null when there is none. A resolver for
    /// serveAllThreads returns it.
    static const GLEWContextStruct* table();

    /// Lets a further thread call into a recording, for as long as the object lives.
    class Attach
    {
    public:
        explicit Attach(RecordingGL& recording);
        ~Attach();
        Attach(const Attach&) = delete;
        Attach& operator=(const Attach&) = delete;

    private:
        RecordingState* m_previous;
        ScopedTable m_scope;
    };

    /// Lets this object receive the calls of all threads that have no object of their own, until it is destroyed or
    /// another object takes over. Those threads must have ended, or left table(), before this object is destroyed.
    void serveAllThreads();

    // Calls

    /// The calls so far, oldest first.
    const std::vector<std::string>& calls() const;
    /// Returns the calls so far and forgets them.
    std::vector<std::string> takeCalls();
    /// Forgets the calls; objects, bindings, answers and counters stay.
    void clear();
    /// Those of the calls that begin with `prefix`, for example "glBindBuffer(".
    std::vector<std::string> callsMatching(const std::string& prefix) const;
    /// How many calls begin with `prefix`.
    std::size_t countOf(const std::string& prefix) const;
    /// Stops and continues the recording of texts. Answers and counters go on. Initially true.
    void setRecording(bool recording);

    // Answers

    /// What glGetIntegerv and its kin (float, double, boolean, 64 bit, indexed) write for `pname` from now on. Also
    /// answers glGetProgramiv, glGetShaderiv, glGetQueryObject*, glGetBufferParameter*, glGetTexLevelParameter* and
    /// glGetFramebufferAttachmentParameteriv for that `pname`, whatever the object.
    template <class Value, class = std::enable_if_t<std::is_integral_v<Value>>> void answer(GLenum pname, Value value)
    {
        answer(pname, std::vector<std::int64_t>{static_cast<std::int64_t>(value)});
    }
    void answer(GLenum pname, const std::vector<std::int64_t>& values);
    void answer(GLenum pname, double value);
    /// What `function` (for example "glClientWaitSync") returns from now on: one value a call, the last one stays. The
    /// call does all else as usual.
    void answerReturn(const std::string& function, std::int64_t value);
    void answerReturn(const std::string& function, const std::vector<std::int64_t>& values);
    /// What glGetString returns for GL_VENDOR, GL_RENDERER, GL_VERSION, GL_SHADING_LANGUAGE_VERSION.
    void answerString(GLenum name, const std::string& value);
    /// What glGetShaderInfoLog and glGetProgramInfoLog tell; also sets GL_INFO_LOG_LENGTH. Initially empty.
    void setInfoLog(const std::string& text);
    /// The version of glGetString and of GL_MAJOR_VERSION and GL_MINOR_VERSION, and that of the table. A function that
    /// this version lacks is still recorded, so that a test sees a call that should not have been made.
    void setVersion(int major, int minor);
    /// The list of glGetStringi(GL_EXTENSIONS, i), and the extension flags of the table. Initially all of the binding's
    /// scope, whatever the version.
    void setExtensions(const std::vector<std::string>& extensions);
    /// The names and places that linked programs tell, for all programs, or for the one of that number.
    void setReflection(const ShaderReflection& reflection);
    void setReflection(GLuint program, const ShaderReflection& reflection);

    // Faults

    /// From now on `function` (for example "glMapBufferRange") fails: pointers, names and syncs are null, booleans
    /// false, glCheckFramebufferStatus is GL_FRAMEBUFFER_UNSUPPORTED, waits are GL_WAIT_FAILED, locations -1, and
    /// glCompileShader and glLinkProgram leave a false status. The call is recorded, and has no other effect, but that
    /// glUnmapBuffer also unmaps. `times` limits it to that many calls. Throws std::invalid_argument for a name that is
    /// no GL function, as answerReturn and succeed do.
    void fail(const std::string& function, std::size_t times = SIZE_MAX);
    /// Ends fail().
    void succeed(const std::string& function);
    /// What the next glGetError returns; errors queue up. Then GL_NO_ERROR again.
    void pushError(GLenum error);

    // Objects. Kinds: "Buffer", "Texture", "Sampler", "Framebuffer", "Renderbuffer", "VertexArray", "Query",
    // "TransformFeedback", "ProgramPipeline", "Shader", "Program", "Sync", "List".

    std::size_t made(const std::string& kind) const;
    std::size_t deleted(const std::string& kind) const;
    std::size_t live(const std::string& kind) const;
    /// The live objects as "Buffer 3", sorted by kind and number. Empty when all that was made was deleted.
    std::vector<std::string> liveObjects() const;

    // What was handed over

    /// The present content of a buffer, also what was written through a mapping; empty for an unknown name.
    std::vector<std::byte> bufferContent(GLuint buffer) const;
    /// The number of bytes that the program gave to glBufferData, glBufferSubData and glBufferStorage in all.
    std::uint64_t uploadedBytes() const;
    /// The text of a shader, of all strings given to glShaderSource; empty for an unknown name.
    std::string shaderSource(GLuint shader) const;
    /// Calls the callback that the program installed with glDebugMessageCallback; false when there is none.
    bool postDebugMessage(GLenum source, GLenum type, GLuint id, GLenum severity, const std::string& message);

private:
    std::unique_ptr<RecordingState> m_state;
    Attach m_attach;
};
} // namespace renderengine::glbinding
