#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace Kest::Agent {

/// The memory that clients hold together, in bytes.
class Account {
 public:
  /// What one client holds.
  class Share {
   public:
    explicit Share(Account& account) noexcept : account_(account) {}
    ~Share() { account_.held_ -= bytes_; }
    Share(Share const&) = delete;
    Share& operator=(Share const&) = delete;

    std::size_t bytes() const noexcept { return bytes_; }
    /// Calls `Exceeded`, before it returns, if the sum is too much.
    void is(std::size_t bytes) {
      account_.held_ += bytes - bytes_;
      bytes_ = bytes;
      if (account_.held_ > account_.most_) account_.exceeded_();
    }

   private:
    Account& account_;
    std::size_t bytes_ = 0;
  };

  using Exceeded = std::function<void()>;

  Account(std::size_t most, Exceeded exceeded) : most_(most), exceeded_(std::move(exceeded)) {}
  Account(Account const&) = delete;
  Account& operator=(Account const&) = delete;

  std::size_t held() const noexcept { return held_; }

 private:
  std::size_t most_;
  Exceeded exceeded_;
  std::size_t held_ = 0;
};

}  // namespace Kest::Agent
