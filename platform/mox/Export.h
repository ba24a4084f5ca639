#pragma once

/// Marks what `libmox` exports; everything else in it is hidden.
#define MOX_API __attribute__((visibility("default")))
