#include "base/src/trace.h"

#include <cstdarg>
#include <cstdio>

namespace KX {

namespace {

ITraceObserver* observerFor(TraceLevel level)
{
    ITraceObserver* observer = traceSettings.observer.load(std::memory_order_acquire);
    if (!observer || !(traceSettings.enableFlags.load(std::memory_order_relaxed) & kTraceEnabled))
        return nullptr;
    return traceSettings.levelMask.load(std::memory_order_relaxed) & level ? observer : nullptr;
}

struct Message {
    char text[kTraceBufferSize];
    size_t length; // with the NUL; beyond the buffer when the text was cut
};

[[gnu::format(printf, 2, 0)]] void format(Message& message, const char* format, va_list arguments)
{
    const int length = vsnprintf(message.text, sizeof message.text, format, arguments);
    message.text[sizeof message.text - 1] = '\0';
    message.length = length < 0 ? sizeof message.text : static_cast<size_t>(length) + 1;
}

void appendObject(Message& message, const void* object)
{
    if (message.length >= sizeof message.text)
        return;
    const size_t used = message.length - 1;
    const int added
        = snprintf(message.text + used, sizeof message.text - used, " this=0x%p", object);
    if (added > 0)
        message.length += static_cast<size_t>(added);
}

} // namespace

void Trace(TraceLevel level, const char* text, ...)
{
    ITraceObserver* observer = observerFor(level);
    if (!observer)
        return;
    Message message;
    va_list arguments;
    va_start(arguments, text);
    format(message, text, arguments);
    va_end(arguments);
    observer->TraceRecord(kTraceText, level, message.text, message.length);
}

void TraceThis(const void* object, TraceLevel level, const char* text, ...)
{
    ITraceObserver* observer = observerFor(level);
    if (!observer)
        return;
    Message message;
    va_list arguments;
    va_start(arguments, text);
    format(message, text, arguments);
    va_end(arguments);
    appendObject(message, object);
    observer->TraceRecord(kTraceText, level, message.text, message.length);
}

} // namespace KX
