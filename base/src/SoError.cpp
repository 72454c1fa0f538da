#include <kavelor/SoError.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

#include "MessageHandler.h"

namespace
{

using ErrorHandler = MessageHandler<const SbString&>;
using DebugErrorHandler = MessageHandler<const SbString&, const SbString&, SoDebugError::Severity>;

// Never destroyed: threads that outlive main may still post.
ErrorHandler& errorHandler()
{
    static ErrorHandler& handler = *new ErrorHandler;
    return handler;
}

DebugErrorHandler& debugErrorHandler()
{
    static DebugErrorHandler& handler = *new DebugErrorHandler;
    return handler;
}

KAVELOR_PRINTF(1, 0)
std::string formatList(const char* format, va_list arguments)
{
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
    {
        // A broken encoding or width: the bare format still tells where it came from.
        return format;
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

std::string formatWithoutArguments(const char* format)
{
    std::string text;
    for (const char* c = format; *c != '\0'; ++c)
    {
        text += *c;
        if (c[0] == '%' && c[1] == '%')
        {
            ++c;
        }
    }
    return text;
}

void writeLine(std::string text)
{
    if (text.empty() || text.back() != '\n')
    {
        text += '\n';
    }
    // One call, so that lines of two threads do not mix.
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

void reportError(const SbString& message)
{
    if (const SoError::Handler handler = errorHandler().get())
    {
        handler(message);
    }
    else
    {
        writeLine(message.toStdString());
    }
}

void reportDebugError(SoDebugError::Severity severity, const SbString& function, const SbString& message)
{
    if (const SoDebugError::Handler handler = debugErrorHandler().get())
    {
        handler(function, message, severity);
    }
    else
    {
        const char* const kind = severity == SoDebugError::Severity::Info ? "Info" : "Error";
        writeLine(std::string(kind) + " in " + function.toStdString() + ": " + message.toStdString());
    }
}

} // namespace

void SoError::post(const char* format)
{
    if (format)
    {
        reportError(formatWithoutArguments(format));
    }
}

void SoError::postList(const char* format, va_list arguments)
{
    if (format)
    {
        reportError(formatList(format, arguments));
    }
}

SoError::Handler SoError::setHandler(Handler handler)
{
    return errorHandler().set(std::move(handler));
}

void SoDebugError::post(const char* function, const char* format)
{
    if (format)
    {
        reportDebugError(Severity::Error, function, formatWithoutArguments(format));
    }
}

void SoDebugError::postInfo(const char* function, const char* format)
{
    if (format)
    {
        reportDebugError(Severity::Info, function, formatWithoutArguments(format));
    }
}

void SoDebugError::postList(Severity severity, const char* function, const char* format, va_list arguments)
{
    if (format)
    {
        reportDebugError(severity, function, formatList(format, arguments));
    }
}

SoDebugError::Handler SoDebugError::setHandler(Handler handler)
{
    return debugErrorHandler().set(std::move(handler));
}
