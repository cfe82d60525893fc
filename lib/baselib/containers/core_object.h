/// \file core_object.h
/// What the objects that own heap storage do when there is none.

#pragma once

#include <memory>
#include <new>
#include <utility>

/// Logs that an object's storage could not be had. @throws ERROR_NO_MEMORY
[[noreturn]] void FailCoreObject();

/// Logs that a container of this many elements makes no sense. @throws ERROR_ARGUMENT
[[noreturn]] void FailElementCount(const char* container, long long count);

/// Creates the object that a facade owns. @throws ERROR_NO_MEMORY when there is no memory for it
template <class T, class... ARGUMENTS>
[[nodiscard]] std::unique_ptr<T> CreateCoreObject(ARGUMENTS&&... arguments) {
    try {
        return std::make_unique<T>(std::forward<ARGUMENTS>(arguments)...);
    } catch (const std::bad_alloc&) {
        FailCoreObject();
    }
}
