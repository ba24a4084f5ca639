#pragma once

/// Marks what `libkest-slice-dma` exports; everything else in it is hidden.
#define KEST_SLICE_DMA_API __attribute__((visibility("default")))
