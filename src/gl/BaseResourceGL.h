#pragma once

#include <cstddef>
#include <vector>

namespace renderengine
{

/// Base of every OpenGL resource of the renderer. It carries the dependency graph through which a change of a source
/// buffer reaches the merged buffers and batches made from it, and a new texture name reaches the render targets that
/// attach the texture.
///
/// The pointers of the graph are not owned; both ends unlink themselves when they are destroyed. Render thread only.
class BaseResourceGL
{
public:
    BaseResourceGL() = default;
    BaseResourceGL(const BaseResourceGL&) = delete;
    BaseResourceGL& operator=(const BaseResourceGL&) = delete;
    /// Unlinks the resource from its neighbours. Makes no GL call: a name that destroy() has not deleted dies with the
    /// share group of its context.
    virtual ~BaseResourceGL();

    /// Deletes the GL object. Needs the context current. Does nothing for resources that own no GL object.
    virtual void destroy();

    /// Stores the flag. Setting it also sets it on every dependent, recursively; clearing it stays with this resource.
    void setDirty(bool value);
    bool isDirty() const { return dirty; }

    /// Makes this resource depend on other: a setDirty(true) of other reaches this one. A second call with the same
    /// resource changes nothing. The graph must stay free of cycles.
    void addDependency(BaseResourceGL& other);

    /// Drops every dependency of this resource. Its dependents stay.
    void resetDependencies();

    std::vector<BaseResourceGL*> getDependents() const;
    const std::vector<BaseResourceGL*>& getDependencies() const { return dependencies; }

private:
    size_t dependentCount() const { return (firstDependent != nullptr ? 1 : 0) + otherDependents.size(); }
    bool hasDependent(const BaseResourceGL* resource) const;
    void removeDependent(const BaseResourceGL* resource);

    // Nearly every source has one dependent, the merged buffer, and a merge links thousands of sources.
    BaseResourceGL* firstDependent = nullptr;
    std::vector<BaseResourceGL*> otherDependents;
    std::vector<BaseResourceGL*> dependencies;
    bool dirty = false;
};

} // namespace renderengine
