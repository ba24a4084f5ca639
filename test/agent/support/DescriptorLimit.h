#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace Kest::Agent {

/// The limit of open descriptors; at the end as it was before.
class DescriptorLimit {
 public:
  DescriptorLimit() { EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0); }
  ~DescriptorLimit() { restore(); }
  DescriptorLimit(DescriptorLimit const&) = delete;
  DescriptorLimit& operator=(DescriptorLimit const&) = delete;

  /// Returns whether the process may have so many.
  bool is(rlim_t soft) const {
    rlimit const wanted{soft, before_.rlim_max};
    return setrlimit(RLIMIT_NOFILE, &wanted) == 0;
  }
  /// No more than are open now.
  void isReached() const {
    int const free = dup(0);
    close(free);
    EXPECT_TRUE(is(static_cast<rlim_t>(free)));
  }
  void restore() const { setrlimit(RLIMIT_NOFILE, &before_); }

 private:
  rlimit before_{};
};

}  // namespace Kest::Agent
