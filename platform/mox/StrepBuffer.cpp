#include "platform/mox/StrepBuffer.h"

#include <algorithm>

namespace Mox {

void StrepBuffer::grow(std::size_t count) {
  std::string_view const text = view();
  std::size_t const bytes = std::max(2 * text.size(), text.size() + count);
  std::unique_ptr<char[]> larger(new char[bytes]);
  std::memcpy(larger.get(), text.data(), text.size());
  long_ = std::move(larger);
  start_ = long_.get();
  end_ = start_ + text.size();
  limit_ = start_ + bytes;
}

}  // namespace Mox
