#pragma once

#include <cstddef>

/// The allocation functions of the whole program, which its libraries use too, replaced. Whoever
/// links Allocation.cpp defines these two.
namespace Test {

/// Memory of that many bytes, of which there is at least one; null when there is none.
void* allocated(std::size_t bytes) noexcept;

/// Takes back what `allocated` gave. Null is nothing.
void freed(void* memory) noexcept;

}  // namespace Test
