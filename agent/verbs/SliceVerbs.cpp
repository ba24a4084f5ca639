#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "agent/rules/ChangeRules.h"
#include "agent/slice/Comparison.h"
#include "agent/slice/SliceForm.h"
#include "agent/slice/SliceWriter.h"
#include "agent/verbs/PiecewiseResult.h"
#include "agent/verbs/Verbs.h"

/// Whole slice files.
namespace Kest::Agent {

namespace {

/// A reader of the file that a request names.
std::unique_ptr<SliceReader> readerFor(Request const& request) {
  std::string const file = request.string("file");
  SliceForm form = sliceFormOf(file);
  if (request.find("format") != nullptr) {
    bool const isJson = request.oneOf("format", {"slice", "json"}) == "json";
    form = isJson ? SliceForm::json : SliceForm::statements;
  }
  return sliceReader(file, form, SliceEnd::optional);
}

/// Reads a slice file, then works with the slice.
class SliceWork : public LongResult {
 public:
  explicit SliceWork(Request const& request) : reader_(readerFor(request)) {}

  /// The file comes either piece by piece, before the first `goOn`, or whole, for `goOn` to read.
  void take(std::string_view bytes) {
    uploaded_ += bytes.size();
    reader_->take(bytes);
  }
  void contentIs(std::string content) { content_ = std::move(content); }

  /// An entry takes more memory than its text, which may be as short as twenty bytes.
  std::size_t held() const override {
    constexpr std::size_t bytesForOne = 16;
    return LongResult::held() + content_.capacity() + bytesForOne * (uploaded_ + content_.size());
  }

  Progress goOn(std::string& text) override {
    if (!reader_) return carryOn(text);
    if (readOn()) return Progress::more;
    begin(reader_->slice());
    reader_ = nullptr;
    return Progress::more;
  }

 protected:
  virtual void begin(Slice wanted) = 0;
  virtual Progress carryOn(std::string& text) = 0;

 private:
  bool readOn() {
    if (taken_ == content_.size()) return reader_->goOn();
    std::string_view const rest = std::string_view(content_).substr(taken_);
    std::string_view const piece = rest.substr(0, sliceBytesAtOnce);
    reader_->take(piece);
    taken_ += piece.size();
    return true;
  }

  std::unique_ptr<SliceReader> reader_;  // null when the slice has been read
  std::string content_;
  std::size_t taken_ = 0;     // bytes of the content
  std::size_t uploaded_ = 0;  // bytes that came after the request
};

class SliceUpload final : public Upload {
 public:
  explicit SliceUpload(std::unique_ptr<SliceWork> work) : work_(std::move(work)) {}

  std::size_t held() const override { return work_->held(); }
  void take(std::string_view bytes) override { work_->take(bytes); }
  Answer end() override { return std::unique_ptr<LongResult>(std::move(work_)); }

 private:
  std::unique_ptr<SliceWork> work_;
};

/// The file's content is in the request, or follows it.
Answer answerOf(Request const& request, std::unique_ptr<SliceWork> work) {
  if (request.find("bytes") != nullptr) {
    request.checkMembers({"file", "format", "bytes"});
    return std::unique_ptr<Upload>(std::make_unique<SliceUpload>(std::move(work)));
  }
  request.checkMembers({"file", "format", "content"});
  work->contentIs(request.string("content"));
  return std::unique_ptr<LongResult>(std::move(work));
}

class ApplyWork final : public SliceWork {
 public:
  using Apply = std::function<void(Slice wanted)>;

  ApplyWork(Request const& request, Apply apply) : SliceWork(request), apply_(std::move(apply)) {}

 protected:
  void begin(Slice wanted) override { wanted_ = std::move(wanted); }
  Progress carryOn(std::string& /*text*/) override {
    apply_(std::move(wanted_));
    return Progress::later;
  }

 private:
  Apply apply_;
  Slice wanted_;
};

/// Writes the steps as they are found.
class DiffWork final : public SliceWork {
 public:
  DiffWork(Request const& request, Mox::Ptr<Config const> running)
      : SliceWork(request), running_(std::move(running)) {}

  std::size_t held() const override {
    return SliceWork::held() + (comparison_ ? comparison_->held() : 0);
  }

 protected:
  void begin(Slice wanted) override { comparison_.emplace(running_, wanted.config); }

  Progress carryOn(std::string& text) override {
    bool const isMore = comparison_->goOn();
    auto& [steps, unchanged, portsSet, portsGone] = comparison_->changes();
    for (Change const& step : std::exchange(steps, {})) {
      text.append(std::exchange(separator_, ",")).append(jsonText(step.text));
    }
    if (isMore) return Progress::more;
    text.append(*separator_ == ',' ? "" : separator_);
    text.append(R"(],"unchanged":)").append(std::to_string(unchanged)).append("}");
    return Progress::done;
  }

 private:
  Mox::Ptr<Config const> running_;
  std::optional<Comparison> comparison_;
  char const* separator_ = R"({"steps":[)";  // in front of the next step
};

/// For JSON, first writes the file without keeping it, to find out whether JSON can hold its
/// strings; then writes it into the result.
class DumpWork final : public LongResult {
 public:
  DumpWork(Mox::Ptr<Config const> config, std::vector<Mox::String8> handles, SliceForm form)
      : config_(std::move(config)),
        changeCount_(config_->changeCount()),
        isOnTrial_(form == SliceForm::json),
        trial_(config_, handles, form),
        writer_(config_, std::move(handles), form, SliceWriter::NoUtf8::replaced) {}

  std::size_t held() const override { return LongResult::held() + trial_.held() + writer_.held(); }

  Progress goOn(std::string& text) override {
    std::string lines;
    if (isOnTrial_) {
      isOnTrial_ = trial_.goOn(lines);
      return Progress::more;
    }
    bool const isMore = writer_.goOn(lines);
    std::string const piece = jsonText(lines);
    text.append(std::exchange(front_, "")).append(piece, 1, piece.size() - 2);
    if (isMore) return Progress::more;
    bool const hasChanged = config_->changeCount() != changeCount_;
    text.append(R"(","changed":)").append(hasChanged ? "true" : "false").append("}");
    return Progress::done;
  }

 private:
  Mox::Ptr<Config const> config_;
  std::uint64_t changeCount_;
  bool isOnTrial_;
  SliceWriter trial_;
  SliceWriter writer_;
  char const* front_ = R"({"content":")";
};

Json appliedJson(Applied const& applied) {
  return {
      {"announced", applied.announced}, {"unchanged", applied.unchanged}, {"notUp", applied.notUp}};
}

}  // namespace

Answer Verbs::apply(Request const& request) {
  checkIdle();
  auto apply = [this, file = request.string("file"), later = request.later()](Slice wanted) {
    checkIdle();
    checkApply(*wanted.config, *agent_.config, *agent_.status);
    agent_.apply(file, std::move(wanted),
                 [later](Applied const& applied) { later(appliedJson(applied)); });
  };
  return answerOf(request, std::make_unique<ApplyWork>(request, std::move(apply)));
}

Answer Verbs::diff(Request const& request) {
  return answerOf(request, std::make_unique<DiffWork>(request, agent_.config));
}

Answer Verbs::dump(Request const& request) {
  request.checkMembers({"format"});
  bool const isJson = request.oneOf("format", {"slice", "json"}) == "json";
  return std::unique_ptr<LongResult>(std::make_unique<DumpWork>(
      agent_.config, agent_.handles.paths(), isJson ? SliceForm::json : SliceForm::statements));
}

}  // namespace Kest::Agent
