#include "agent/process/DriverLibrary.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "agent/process/DriverOperation.h"

namespace Kest::Agent {

namespace {

/// An operation of driver/KestDma.h: its mangled name, and the function that sets `inDriver`.
struct Operation {
  char const* symbol;
  void (*bind)(void* symbol);
};

template <auto operation>
void bindTo(void* symbol) {
  inDriver<operation> = reinterpret_cast<decltype(operation)>(symbol);
}

constexpr Operation operations[] = {
    {"_ZN8Hardware4Kest12kestDmaIfaddEPKciiiN3Mox7String8EibbS2_",
     &bindTo<&Hardware::Kest::kestDmaIfadd>},
    {"_ZN8Hardware4Kest12kestDmaIfdelEPKc", &bindTo<&Hardware::Kest::kestDmaIfdel>},
    {"_ZN8Hardware4Kest17kestDmaNativeVlanEPKcbt", &bindTo<&Hardware::Kest::kestDmaNativeVlan>},
    {"_ZN8Hardware4Kest19kestDmaDeviceRenameEN3Mox7String8ENS1_3PtrIKN3Fru6PciHamEEE",
     &bindTo<&Hardware::Kest::kestDmaDeviceRename>},
    {"_ZN8Hardware4Kest18kestDmaDeviceParamEN3Mox7String8EjNS0_7FapTypeEjjjjjjj",
     &bindTo<&Hardware::Kest::kestDmaDeviceParam>},
    {"_ZN8Hardware4Kest17kestDmaDeviceDownEN3Mox7String8E",
     &bindTo<&Hardware::Kest::kestDmaDeviceDown>},
    {"_ZN8Hardware4Kest15kestDmaDeviceUpEN3Mox7String8E",
     &bindTo<&Hardware::Kest::kestDmaDeviceUp>},
    {"_ZN8Hardware4Kest17kestDmaIsDeviceUpEN3Mox7String8EPb",
     &bindTo<&Hardware::Kest::kestDmaIsDeviceUp>},
    {"_ZN8Hardware4Kest11kestDmaDumpEv", &bindTo<&Hardware::Kest::kestDmaDump>},
};

constexpr char const* simulatedDriver = "libkest-dma-sim.so";

/// The path of a library in `lib`, beside the folder of the running program.
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
    : path_(driver == "sim" ? beside(simulatedDriver) : driver) {
  if (path_.empty()) throw DriverError("no driver is named");  // the loader would take the program
  library_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library_ == nullptr) {
    throw DriverError("driver " + path_ + " cannot be loaded: " + dlerror());
  }
  std::string missing;
  for (Operation const& operation : operations) {
    if (symbol(operation.symbol) == nullptr) missing += "\n  " + demangled(operation.symbol);
  }
  if (!missing.empty()) throw DriverError("driver " + path_ + " lacks" + missing);
  for (Operation const& operation : operations) operation.bind(symbol(operation.symbol));
}

DriverLibrary::DeviceAnswer DriverLibrary::deviceState(Mox::String8 const& devName) const {
  bool up = false;
  int const error = inDriver<&Hardware::Kest::kestDmaIsDeviceUp>(devName, &up);
  return {error, up};
}

void* DriverLibrary::symbol(char const* name) const {
  return dlsym(library_, name);
}

}  // namespace Kest::Agent
