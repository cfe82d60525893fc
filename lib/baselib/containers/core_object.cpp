#include "lib/baselib/containers/core_object.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

void FailCoreObject() {
    Log() << LOGGING_LEVEL::ALARM << "OBJECT: can not allocate core object\n";
    throw ERROR_NO_MEMORY();
}

void FailElementCount(const char* container, long long count) {
    Log() << LOGGING_LEVEL::ALARM << container << ": an element count of " << count << " is not possible\n";
    throw ERROR_ARGUMENT();
}
