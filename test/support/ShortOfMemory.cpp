#include <new>

/// An entry of the simulated driver that finds no memory for the faults, for another library.
extern "C" __attribute__((visibility("default"))) int kestDmaSimFaultFileIs(char const*, char*,
                                                                            unsigned) {
  throw std::bad_alloc();
}
