#pragma once

/// Everything here is exported, and inlined as the compiler likes.
#define MOX_API
#define MOX_INLINE
