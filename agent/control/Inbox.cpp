#include "agent/control/Inbox.h"

#include <algorithm>

namespace Kest::Agent {

void Inbox::add(std::string_view bytes) {
  text_.erase(0, begin_);
  searched_ -= begin_;
  if (lineEnd_ != std::string::npos) lineEnd_ -= begin_;
  begin_ = 0;
  text_.append(bytes);
}

void Inbox::drop(std::size_t bytes) {
  begin_ += bytes;
  if (begin_ == text_.size()) {
    std::string().swap(text_);  // the memory goes, too
    begin_ = 0;
    searched_ = 0;
    lineEnd_ = std::string::npos;
    return;
  }
  if (lineEnd_ < begin_) lineEnd_ = std::string::npos;
  searched_ = std::max(searched_, begin_);
}

bool Inbox::hasLine() const {
  if (lineEnd_ == std::string::npos) {
    lineEnd_ = text_.find('\n', searched_);
    searched_ = lineEnd_ == std::string::npos ? text_.size() : lineEnd_;
  }
  return lineEnd_ != std::string::npos;
}

}  // namespace Kest::Agent
