#include "agent/DriverLibrary.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <vector>

namespace Kest::Agent {

namespace {

constexpr char const* isDeviceUp = "_ZN8Hardware4Kest17kestDmaIsDeviceUpEN3Mox7String8EPb";

/// The nine operations of driver/KestDma.h, as the linker knows them.
constexpr char const* operations[] = {
    "_ZN8Hardware4Kest12kestDmaIfaddEPKciiiN3Mox7String8EibbS2_",
    "_ZN8Hardware4Kest12kestDmaIfdelEPKc",
    "_ZN8Hardware4Kest17kestDmaNativeVlanEPKcbt",
    "_ZN8Hardware4Kest19kestDmaDeviceRenameEN3Mox7String8ENS1_3PtrIKN3Fru6PciHamEEE",
    "_ZN8Hardware4Kest18kestDmaDeviceParamEN3Mox7String8EjNS0_7FapTypeEjjjjjjj",
    "_ZN8Hardware4Kest17kestDmaDeviceDownEN3Mox7String8E",
    "_ZN8Hardware4Kest15kestDmaDeviceUpEN3Mox7String8E",
    isDeviceUp,
    "_ZN8Hardware4Kest11kestDmaDumpEv",
};

constexpr char const* simulatedDriver = "libkest-dma-sim.so";

/// Libraries lie in `lib` beside the folder of the running program.
std::string beside(char const* library) {
  std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe");
  return program.parent_path().parent_path() / "lib" / library;
}

std::string demangled(char const* symbol) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> const name(
      abi::__cxa_demangle(symbol, nullptr, nullptr, &status), &std::free);
  return status == 0 ? name.get() : symbol;
}

}  // namespace

DriverLibrary::DriverLibrary(std::string const& driver)
    : path_(driver == "sim" ? beside(simulatedDriver) : driver),
      // Global, so that the state machine's library, loaded already, finds the operations.
      library_(dlopen(path_.c_str(), RTLD_NOW | RTLD_GLOBAL)) {
  if (library_ == nullptr) {
    throw DriverError("driver " + path_ + " cannot be loaded: " + dlerror());
  }
  std::string missing;
  for (char const* operation : operations) {
    if (dlsym(library_, operation) == nullptr) missing += "\n  " + demangled(operation);
  }
  if (!missing.empty()) throw DriverError("driver " + path_ + " lacks" + missing);
}

DriverLibrary::DeviceState DriverLibrary::deviceState(Mox::String8 const& devName) const {
  using IsDeviceUp = int (*)(Mox::String8 devName, bool* up);
  bool up = false;
  int const error = reinterpret_cast<IsDeviceUp>(symbol(isDeviceUp))(devName, &up);
  return {error, up};
}

void* DriverLibrary::symbol(char const* name) const {
  return dlsym(library_, name);
}

}  // namespace Kest::Agent
