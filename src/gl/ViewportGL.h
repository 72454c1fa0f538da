#pragma once

#include <renderengine/ViewportProperties.h>

namespace renderengine
{

/// What stands behind a viewport handle. It has no GL object: the record is sent when it becomes current.
class ViewportGL
{
public:
    void create(const ViewportProperties& properties) { m_properties = properties; }
    void update(const ViewportProperties& properties) { m_properties = properties; }

    /// Nothing to free; present so that all resources are destroyed alike.
    void destroy() {}

    /// `glViewport` and `glDepthRange`.
    void apply() const;

    const ViewportProperties& getProperties() const { return m_properties; }

private:
    ViewportProperties m_properties;
};

} // namespace renderengine
