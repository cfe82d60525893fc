#include "app/say.h"

#include "lib/baselib/logging/logging.h"

void Say(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Log().MessageOf(LOGGING_LEVEL::INFO, format, arguments);
    va_end(arguments);
}

void Explain(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Log().MessageOf(LOGGING_LEVEL::ALARM, format, arguments);
    va_end(arguments);
}
