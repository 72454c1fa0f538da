#pragma once

#include <cstdarg>
#include <functional>

#include <kavelor/KavelorApi.h>
#include <kavelor/SbString.h>

/// Reports errors to whoever runs the program. Any thread may post; the handler runs on the thread that posts and must
/// be safe for that.
class KAVELOR_API SoError
{
public:
    using Handler = std::function<void(const SbString& message)>;

    /// Formats as printf does and hands the text to the handler. A null format is ignored.
    /// It is a template only so that a call without arguments prefers the overload below.
    template <class = void> KAVELOR_PRINTF(1, 2) static void post(const char* format, ...)
    {
        va_list arguments;
        va_start(arguments, format);
        postList(format, arguments);
        va_end(arguments);
    }

    /// A format without arguments: "%%" becomes one percent sign, and a conversion, which would have nothing to
    /// convert, stays as it is written. So text of unknown origin may be posted.
    static void post(const char* format);

    /// As post, with the arguments already collected.
    KAVELOR_PRINTF(1, 0)
    static void postList(const char* format, va_list arguments);

    /// Replaces the handler and returns the former one. An empty handler restores the default, which writes the text to
    /// the standard error as one line. A former handler may still be running on another thread when this returns.
    static Handler setHandler(Handler handler);

    SoError() = delete;
};

/// Reports misuse and noteworthy facts to the developer, with the name of the function that found them. Threads as for
/// SoError.
class KAVELOR_API SoDebugError
{
public:
    enum class Severity
    {
        Error,
        Info
    };

    using Handler = std::function<void(const SbString& function, const SbString& message, Severity severity)>;

    /// Reports an error found by function; format and arguments as in SoError::post.
    template <class = void> KAVELOR_PRINTF(2, 3) static void post(const char* function, const char* format, ...)
    {
        va_list arguments;
        va_start(arguments, format);
        postList(Severity::Error, function, format, arguments);
        va_end(arguments);
    }

    static void post(const char* function, const char* format);

    /// Reports a fact that is no error.
    template <class = void> KAVELOR_PRINTF(2, 3) static void postInfo(const char* function, const char* format, ...)
    {
        va_list arguments;
        va_start(arguments, format);
        postList(Severity::Info, function, format, arguments);
        va_end(arguments);
    }

    static void postInfo(const char* function, const char* format);

    /// As post and postInfo, with the arguments already collected.
    KAVELOR_PRINTF(3, 0)
    static void postList(Severity severity, const char* function, const char* format, va_list arguments);

    /// As SoError::setHandler. The default writes the severity, the function and the text to the standard error.
    static Handler setHandler(Handler handler);

    SoDebugError() = delete;
};
