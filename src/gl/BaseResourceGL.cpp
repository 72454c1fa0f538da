#include "gl/BaseResourceGL.h"

#include <algorithm>

namespace renderengine
{

namespace
{
void removeAll(std::vector<BaseResourceGL*>& list, const BaseResourceGL* resource)
{
    list.erase(std::remove(list.begin(), list.end(), resource), list.end());
}
} // namespace

BaseResourceGL::~BaseResourceGL()
{
    resetDependencies();
    for (BaseResourceGL* dependent : dependents)
    {
        removeAll(dependent->dependencies, this);
    }
}

void BaseResourceGL::destroy() {}

void BaseResourceGL::setDirty(bool value)
{
    dirty = value;
    if (!value)
    {
        return;
    }
    for (BaseResourceGL* dependent : dependents)
    {
        dependent->setDirty(true);
    }
}

void BaseResourceGL::addDependency(BaseResourceGL& other)
{
    // Either list tells whether the two are linked. A merged buffer has many sources with few dependents each, the
    // shared sequence buffer many dependents with few sources each: the shorter one is searched.
    const bool linked =
        dependencies.size() <= other.dependents.size()
            ? std::find(dependencies.begin(), dependencies.end(), &other) != dependencies.end()
            : std::find(other.dependents.begin(), other.dependents.end(), this) != other.dependents.end();
    if (!linked)
    {
        dependencies.push_back(&other);
        other.dependents.push_back(this);
    }
}

void BaseResourceGL::resetDependencies()
{
    for (BaseResourceGL* dependency : dependencies)
    {
        removeAll(dependency->dependents, this);
    }
    dependencies.clear();
}

} // namespace renderengine
