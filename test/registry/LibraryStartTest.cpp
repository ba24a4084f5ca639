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
#include "test/agent/ScratchDirectory.h"

/// What the library does while it is loaded.
namespace {

using testing::ElementsAre;

#define STRING_CONSTRUCTOR "_ZN3Mox7String8C1ESt17basic_string_viewIcSt11char_traitsIcEE"

/// The first time that each of these strings is made tells what is being done.
constexpr std::string_view telling[] = {"Hardware::Kest::Slice::KestSliceDmaSm",
                                        "KEST_DMA_DEVICE_STATE_ERROR", "Hardware::Kest::Slice"};
std::vector<std::string_view> told;

}  // namespace

/// Stands in for `Mox::String8(std::string_view)`, for the libraries too.
extern "C" MOX_API void madeString(void* self, std::string_view chars) asm(STRING_CONSTRUCTOR);
void madeString(void* self, std::string_view chars) {
  static auto const original =
      reinterpret_cast<void (*)(void*, std::string_view)>(dlsym(RTLD_NEXT, STRING_CONSTRUCTOR));
  auto const* const one = std::find(std::begin(telling), std::end(telling), chars);
  if (one != std::end(telling) && std::find(told.begin(), told.end(), *one) == told.end()) {
    told.push_back(*one);
  }
  original(self, chars);
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
