#pragma once

/// Marks what `libkest-dma-sim` exports; everything else in it is hidden.
#define KEST_SIM_API __attribute__((visibility("default")))
