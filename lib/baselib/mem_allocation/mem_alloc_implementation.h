/// \file mem_alloc_implementation.h
/// Element storage aligned to 32 bytes, so that vector instructions can work on it.
///
///   block := count(8 bytes, signed) zero(24 bytes) elements(count x size of T)
///
/// The count stands in the block, hence a block can be released without knowing who held it.
/// Errors: no memory, or a size that no address space holds, yields no block (nullptr), never an exception.

#pragma once

#include <cstddef>
#include <memory>

namespace MEM_ALLOCATION {

inline constexpr std::size_t kAlignment = 32;  ///< also the size of the block's header

/// For who allocates by other means than operator new, when there is no memory: the program's handler may tell where.
void TellNewHandler() noexcept;

/// Raw block; @return the address of the (unconstructed) elements, nullptr on failure or for a negative count.
[[nodiscard]] void* AllocateBlock(long long count, std::size_t element_size) noexcept;
/// @param elements as AllocateBlock returned it; nullptr is allowed
void FreeBlock(void* elements) noexcept;
/// The count in the header of the block of these elements.
[[nodiscard]] long long BlockCount(const void* elements) noexcept;

/// A block of value-initialised elements (zero for numbers and records of numbers), nullptr when there is no memory for
/// the block or for what its elements own.
template <class T>
[[nodiscard]] T* Allocate(long long count) {
    static_assert(alignof(T) <= kAlignment);
    T* const elements = static_cast<T*>(AllocateBlock(count, sizeof(T)));
    if (elements == nullptr) return nullptr;
    try {
        std::uninitialized_value_construct_n(elements, count);
    } catch (...) {  // whatever an element reports that could not get its memory
        FreeBlock(elements);
        return nullptr;
    }
    return elements;
}

template <class T>
void Free(T* elements) noexcept {
    if (elements == nullptr) return;
    std::destroy_n(elements, BlockCount(elements));
    FreeBlock(elements);
}

}  // namespace MEM_ALLOCATION
