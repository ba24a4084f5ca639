#pragma once

/// Marks what `libmox` exports; everything else in it is hidden.
#define MOX_API __attribute__((visibility("default")))

/// Marks what counts references: the compilers would call it in large functions, which costs more
/// than it does (an update told to 64 observers takes 1.5 times as long). What is not optimised
/// anyway compiles in half the time without, and can be stepped through.
#ifdef __OPTIMIZE__
#define MOX_INLINE [[gnu::always_inline]]
#else
#define MOX_INLINE
#endif
