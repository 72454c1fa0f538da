#include "gl/BaseResourceGL.h"

#include <algorithm>

namespace renderengine
{

BaseResourceGL::~BaseResourceGL()
{
    resetDependencies();
    for (BaseResourceGL* dependent : getDependents())
    {
        std::vector<BaseResourceGL*>& list = dependent->dependencies;
        list.erase(std::remove(list.begin(), list.end(), this), list.end());
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
    if (firstDependent != nullptr)
    {
        firstDependent->setDirty(true);
    }
    for (BaseResourceGL* dependent : otherDependents)
    {
        dependent->setDirty(true);
    }
}

std::vector<BaseResourceGL*> BaseResourceGL::getDependents() const
{
    std::vector<BaseResourceGL*> dependents;
    if (firstDependent != nullptr)
    {
        dependents.push_back(firstDependent);
    }
    dependents.insert(dependents.end(), otherDependents.begin(), otherDependents.end());
    return dependents;
}

bool BaseResourceGL::hasDependent(const BaseResourceGL* resource) const
{
    return firstDependent == resource ||
           std::find(otherDependents.begin(), otherDependents.end(), resource) != otherDependents.end();
}

void BaseResourceGL::removeDependent(const BaseResourceGL* resource)
{
    if (firstDependent != resource)
    {
        otherDependents.erase(std::remove(otherDependents.begin(), otherDependents.end(), resource),
                              otherDependents.end());
        return;
    }
    firstDependent = nullptr;
    if (!otherDependents.empty())
    {
        firstDependent = otherDependents.front();
        otherDependents.erase(otherDependents.begin());
    }
}

void BaseResourceGL::addDependency(BaseResourceGL& other)
{
    // Either list tells whether the two are linked. A merged buffer has many sources with few dependents each, the
    // shared sequence buffer many dependents with few sources each: the shorter one is searched.
    const bool linked = dependencies.size() <= other.dependentCount()
                            ? std::find(dependencies.begin(), dependencies.end(), &other) != dependencies.end()
                            : other.hasDependent(this);
    if (!linked)
    {
        dependencies.push_back(&other);
        if (other.firstDependent == nullptr)
        {
            other.firstDependent = this;
        }
        else
        {
            other.otherDependents.push_back(this);
        }
    }
}

void BaseResourceGL::resetDependencies()
{
    for (BaseResourceGL* dependency : dependencies)
    {
        dependency->removeDependent(this);
    }
    dependencies.clear();
}

} // namespace renderengine
