#pragma once

#include <string>
#include <utility>
#include <vector>

#include "bench/Run.h"
#include "bench/Workload.h"

/// Rows g and h: a record is printed, and read.
namespace Kest::Bench {

/// Runs `work(input)` over one input of `make(port)` after the other.
template <class Make, class Work>
void measureOver(std::string const& row, Shape shape, char const* who, Make make, Work work) {
  measure(row, std::to_string(shape.nameLength), who, [=](Run& run) {
    std::vector<decltype(make(Port()))> inputs;
    for (Port const& port : visited(portsOf(shape))) inputs.push_back(make(port));
    std::size_t at = 0;
    for (auto _ : run) {
      keep(work(std::as_const(inputs)[at]));
      if (++at == inputs.size()) at = 0;
    }
  });
}

}  // namespace Kest::Bench
