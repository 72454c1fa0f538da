#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/base_sink.h>

namespace renderengine::sinks
{

/// A function that receives each message as it was logged, not yet formatted. It is called under the sink's mutex, so
/// it must not log itself.
using LogCallback = std::function<void(const spdlog::details::log_msg& message)>;

/// A sink of spdlog that hands each message to a callback. Newer releases of spdlog bring one of the same
/// shape; the release we build with does not.
template <class Mutex> class CallbackSink final : public spdlog::sinks::base_sink<Mutex>
{
public:
    explicit CallbackSink(LogCallback callback) : m_callback(std::move(callback)) {}

protected:
    void sink_it_(const spdlog::details::log_msg& message) override { m_callback(message); }

    /// The callback keeps nothing back.
    void flush_() override {}

private:
    LogCallback m_callback;
};

/// Named as spdlog names its sinks for several threads.
using callback_sink_mt = CallbackSink<std::mutex>;

} // namespace renderengine::sinks
