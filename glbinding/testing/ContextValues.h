#pragma once

#include "CallOutput.h"
#include "ObjectNames.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace renderengine::glbinding
{
/// The context state that the queries of a recording tell: bindings, values, capabilities and strings.
class ContextValues
{
public:
    ContextValues();

    /// Follows a call that changes state; all other calls are ignored.
    void track(FunctionIndex function, const CallValue* values);
    /// Answers glGet* of a value, glIsEnabled* and the strings; nothing for all other calls.
    std::optional<std::uint64_t> query(FunctionIndex function, const CallValue* values);
    /// Unbinds an object that was deleted.
    void forget(const DeletedObject& object);

    void answer(GLenum name, const Numbers& numbers) { m_answers[name] = numbers; }
    /// What answer() set for that name, null for nothing.
    const Numbers* answered(GLenum name) const;

    void setString(GLenum name, const std::string& text) { m_strings[name] = text; }
    void setVersion(int major, int minor);
    void setExtensions(const std::vector<std::string>& extensions) { m_extensions = extensions; }

    /// The buffer bound to a target, 0 for none.
    GLuint boundBuffer(GLenum target) const;
    GLuint boundVertexArray() const { return m_vertexArray; }

private:
    bool trackBinding(FunctionIndex function, const CallValue* values);
    bool trackMasks(FunctionIndex function, const CallValue* values);
    void set(GLenum name, const Numbers& numbers) { m_values[name] = numbers; }
    void setArguments(GLenum name, const CallValue* values, int count, bool real);
    void bindBuffer(GLenum target, GLuint buffer);
    void bindIndexed(GLenum target, GLuint index, GLuint buffer);
    void bindFramebuffer(GLenum target, GLuint framebuffer);
    void unbind(GLenum name, GLuint object);
    Numbers numbersOf(GLenum name) const;
    Numbers numbersOf(GLenum name, GLuint index) const;
    std::uint64_t stringAt(GLenum name, GLuint index) const;

    std::map<GLenum, Numbers> m_values;
    std::map<GLenum, Numbers> m_answers;
    std::map<std::pair<GLenum, GLuint>, Numbers> m_indexed;
    // By capability and index, 0 for those without.
    std::set<std::pair<GLenum, GLuint>> m_enabled;
    // By texture unit and name of the binding.
    std::map<std::pair<GLuint, GLenum>, GLuint> m_unitBindings;
    // The element buffer belongs to the vertex array.
    std::map<GLuint, GLuint> m_elementBuffers;
    GLuint m_vertexArray = 0;
    GLuint m_activeUnit = 0;
    std::map<GLenum, std::string> m_strings;
    std::vector<std::string> m_extensions;
};
} // namespace renderengine::glbinding
