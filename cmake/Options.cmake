# What every target is built with.

option(KEST_TESTS "Build the tests" ON)
option(KEST_BENCH "Build the benchmarks; needs what they are compared with" OFF)
option(KEST_FUZZERS "Build the fuzzers; needs clang++, and fuzzer-no-link among KEST_SANITIZE" OFF)
set(KEST_SANITIZE "" CACHE STRING "Sanitizers to build with, as in address,undefined")
option(KEST_COUNT_EDGES "Call what counts the edges that are run through: test/fuzz/Cost.cpp" OFF)
option(KEST_COVERAGE "Count which regions of the sources run; needs clang++" OFF)
option(KEST_PLAIN_PLATFORM "Build the library and its tests a second time, on test/plain-platform" OFF)
option(KEST_32BIT "Build for 32-bit x86" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# One place for what is run and loaded, so that the agent finds its driver beside it.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

include_directories(${CMAKE_SOURCE_DIR})
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 takes std::string's own copying for overlapping (its bug 105651).
  add_compile_options(-Wno-restrict)
  add_compile_options(-fpch-preprocess)  # lets ccache work beside precompiled headers
  # It looks for unused memory less often: a tenth of the time of sources, a quarter of that of tests.
  add_compile_options(--param=ggc-min-expand=1000)
endif()

if(KEST_32BIT)
  # The switch's control processor. SSE2 keeps floating point the same as on 64 bits.
  add_compile_options(-m32 -msse2 -mfpmath=sse)
  add_link_options(-m32)
endif()

# Hardened, as test/walls/hardening.sh checks. Sanitizers bring their own checks.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(NOT KEST_SANITIZE)
  add_compile_options(-fstack-protector-strong -fstack-clash-protection)
endif()
if(CMAKE_BUILD_TYPE MATCHES "^Rel" AND NOT KEST_SANITIZE)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)  # works only where it is optimised
endif()
# For folders whose instructions count: g++ otherwise inlines less where sources are joined, which costs
# operations 10 to 27 % more of them.
set(KEST_INLINED_AS_ALONE $<$<CXX_COMPILER_ID:GNU>:--param=large-unit-insns=200000>)
# For the folders in which instrumented programs spend their time.
set(KEST_HOT "")
# For sources that are compiled quickly instead of well.
set(KEST_NOT_OPTIMISED -O0 -U_FORTIFY_SOURCE)
# For programs that run long beside what is measured, but are not measured themselves.
set(KEST_LITTLE_OPTIMISED $<$<CONFIG:Release>:-O1>)

if(KEST_COVERAGE)
  # A process counts in a file that it maps, one for each program and library (%m), so that counts outlive
  # any end of the process (%c). It counts at once: an exception would lose what a loop keeps for its end.
  add_compile_options(-fprofile-instr-generate=${CMAKE_BINARY_DIR}/counts/%m%c.profraw -fcoverage-mapping
    "SHELL:-mllvm -runtime-counter-relocation" "SHELL:-mllvm -do-counter-promotion=false")
  add_link_options(-fprofile-instr-generate)
endif()

if(KEST_SANITIZE)
  # Hardly optimised: reports stay readable, and instrumented code compiles in half the time.
  add_compile_options(-O0 -g1)
  if(KEST_COVERAGE)
    set(KEST_HOT -O1)  # counting would make its tests twice as long
  endif()
  add_compile_options(-fsanitize=${KEST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KEST_SANITIZE})
  # They take a fifth of the compiler's time; null faults by itself, and x86 aligns by itself.
  add_compile_options(-fno-sanitize=null,alignment)
  if(KEST_COUNT_EDGES)
    add_compile_options(-fsanitize-coverage=trace-pc)
  endif()
  if(KEST_SANITIZE MATCHES "address")
    add_compile_definitions(KEST_ADDRESS_SANITIZER)
  endif()
endif()
