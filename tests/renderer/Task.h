#pragma once

#include <renderengine/TaskInterface.h>
#include <renderengine/TaskProperties.h>

#include <functional>
#include <memory>
#include <utility>

namespace renderengine::testing
{

/// A task made of a function.
struct FunctionTask final : TaskInterface
{
    explicit FunctionTask(std::function<void()> function) : m_function(std::move(function)) {}
    void run() override { m_function(); }

    std::function<void()> m_function;
};

inline TaskProperties makeTask(std::function<void()> function)
{
    TaskProperties properties;
    properties.task = std::make_shared<FunctionTask>(std::move(function));
    return properties;
}

} // namespace renderengine::testing
