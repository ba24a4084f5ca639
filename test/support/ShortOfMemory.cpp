#include <new>

/// An entry of the simulated driver, for another library: there is no memory for the faults.
extern "C" __attribute__((visibility("default"))) int kestDmaSimFaultFileIs(char const*, char*,
                                                                            unsigned) {
  throw std::bad_alloc();
}
