#pragma once

#include <cstddef>

/// Replaces the allocation functions of the whole program, its libraries included. A program that
/// links Allocation.cpp defines these two.
namespace Test {

/// Memory of that many bytes, of which there is at least one; null when there is none.
void* allocated(std::size_t bytes) noexcept;

/// Takes back what `allocated` gave. Null is nothing.
void freed(void* memory) noexcept;

}  // namespace Test
