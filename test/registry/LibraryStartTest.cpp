#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/mox/IntrospectionReactor.h"
#include "test/agent/support/ScratchDirectory.h"

/// What the library does while it is loaded.
namespace {

using testing::ElementsAre;

/// The first time that each of these strings is made tells what is being done.
constexpr std::string_view telling[] = {"Hardware::Kest::Slice::KestSliceDmaSm",
                                        "KEST_DMA_DEVICE_STATE_ERROR", "Hardware::Kest::Slice"};
std::vector<std::string_view> told;

void note(std::string_view chars) {
  auto const* const one = std::find(std::begin(telling), std::end(telling), chars);
  if (one != std::end(telling) && std::find(told.begin(), told.end(), *one) == told.end()) {
    told.push_back(*one);
  }
}

using Constructor = void (*)(void*, std::string_view);

Constructor original(char const* name) {
  return reinterpret_cast<Constructor>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// Stand in for `Mox::String8(std::string_view)`, for the libraries too. Compilers call it by one of
// two names.
#define STRING_CONSTRUCTOR(variant) \
  "_ZN3Mox7String8" variant "ESt17basic_string_viewIcSt11char_traitsIcEE"

extern "C" MOX_API void madeString(void* self,
                                   std::string_view chars) asm(STRING_CONSTRUCTOR("C1"));
void madeString(void* self, std::string_view chars) {
  static Constructor const make = original(STRING_CONSTRUCTOR("C1"));
  note(chars);
  make(self, chars);
}

extern "C" MOX_API void madeBaseString(void* self,
                                       std::string_view chars) asm(STRING_CONSTRUCTOR("C2"));
void madeBaseString(void* self, std::string_view chars) {
  static Constructor const make = original(STRING_CONSTRUCTOR("C2"));
  note(chars);
  make(self, chars);
}

namespace {

/// The library needs the driver's operations at once.
void* load(char const* path) {
  static void* const driver = dlopen(KEST_DRIVER_SIM, RTLD_NOW | RTLD_GLOBAL);
  if (driver == nullptr) ADD_FAILURE() << dlerror();
  void* const handle = dlopen(path, RTLD_LAZY | RTLD_LOCAL);
  if (handle == nullptr) ADD_FAILURE() << dlerror();
  return handle;
}

TEST(LibraryStart, MakesTheTypesThenTheLogMessageThenAnnounces) {
  told.clear();
  dlclose(load(KEST_SLICE_DMA));
  EXPECT_THAT(told, ElementsAre("Hardware::Kest::Slice::KestSliceDmaSm",
                                "KEST_DMA_DEVICE_STATE_ERROR", "Hardware::Kest::Slice"));
}

using LibraryStartDeathTest = Kest::Agent::ScratchDirectory;

TEST_F(LibraryStartDeathTest, EndsTheProcessWhenAnotherCopyIsLoaded) {
  std::string const copy = directory + "/libkest-slice-dma-copy.so";
  std::filesystem::copy_file(KEST_SLICE_DMA, copy);
  EXPECT_EXIT(
      {
        load(KEST_SLICE_DMA);
        load(copy.c_str());
      },
      testing::KilledBySignal(SIGABRT),
      testing::Eq("kest-slice-dma cannot register its types: "
                  "'Hardware::Kest::Slice::DeviceState' is registered already\n"));
}

TEST_F(LibraryStartDeathTest, EndsTheProcessWhenATypesNameIsTaken) {
  static Mox::MoxType const taken("Hardware::Kest::Slice::KestSliceDmaSm");
  EXPECT_EXIT(
      {
        Mox::IntrospectionReactor::global().onNamespace("Hardware::Kest::Slice");
        Mox::IntrospectionReactor::global().onType(taken);
        load(KEST_SLICE_DMA);
      },
      testing::KilledBySignal(SIGABRT),
      testing::Eq("kest-slice-dma cannot register its types: "
                  "'Hardware::Kest::Slice::KestSliceDmaSm' is registered already\n"));
}

}  // namespace
