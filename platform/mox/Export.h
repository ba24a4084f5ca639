#pragma once

/// Marks what `libmox` exports; everything else in it is hidden.
#define MOX_API __attribute__((visibility("default")))

/// Marks functions that count references. In large functions compilers would call them, which costs
/// more than the counting. A build that is not optimised compiles faster without, and can be
/// stepped through.
#ifdef __OPTIMIZE__
#define MOX_INLINE [[gnu::always_inline]]
#else
#define MOX_INLINE
#endif
