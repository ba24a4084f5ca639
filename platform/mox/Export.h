#pragma once

/// Marks what `libmox` exports; everything else in it is hidden.
#define MOX_API __attribute__((visibility("default")))

/// Marks what counts references: the compilers would call it in large functions, which costs more
/// than it does (an update told to 64 observers takes 1.5 times as long).
/// A build that counts branches defines it as nothing, so that each line has its own alone.
#ifndef MOX_INLINE
#define MOX_INLINE [[gnu::always_inline]]
#endif
