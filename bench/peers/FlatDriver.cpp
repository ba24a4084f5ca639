#include "bench/peers/FlatDriver.h"

namespace Kest::Bench::FlatDriver {

int ifadd(char const*, int, int, int, std::string const&, int, bool, bool, char const*) {
  return 0;
}

int ifdel(char const*) {
  return 0;
}

int nativeVlan(char const*, bool, unsigned short) {
  return 0;
}

}  // namespace Kest::Bench::FlatDriver
