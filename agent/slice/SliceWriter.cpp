#include "agent/slice/SliceWriter.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>

#include "agent/access/GenericJson.h"
#include "agent/access/OrderedKeys.h"
#include "agent/access/PiecewiseWork.h"
#include "agent/slice/SliceAttributes.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "text/Escapes.h"

namespace Kest::Agent {

namespace {

using Mox::Attribute;
using Mox::String8;
using Generic = std::unique_ptr<Mox::GenericIf>;

bool isCollection(Attribute const& attribute) {
  return attribute.introspectionClass == Mox::IntrospectionClass::collection;
}

/// In the order in which they are written: devices come before what they carry.
std::vector<Attribute const*> attributesInOrder() {
  std::vector<Attribute const*> all = sliceAttributes();
  std::stable_partition(all.begin(), all.end(), [](Attribute const* attribute) {
    return !isCollection(*attribute) || attribute->keyName == Config::Devices::keyName;
  });
  return all;
}

std::string strep(String8 const& string) {
  return std::string(Mox::valueToStrep(string).view());
}

/// A text with every byte above 7 bits escaped, as in a string's text form.
std::string escaped(std::string_view text) {
  std::string result;
  for (char const byte : text) {
    auto const code = static_cast<unsigned char>(byte);
    result.append(code < 0x80U ? std::string(1, byte) : Mox::format("\\x%02x", code).charPtr());
  }
  return result;
}

}  // namespace

/// How the parts of a slice file are written in one of its forms.
class FileForm {
 public:
  virtual ~FileForm() = default;
  virtual void handle(std::string& text, String8 const& path) = 0;
  virtual void scalar(std::string& text, Attribute const& attribute,
                      Mox::GenericIf const& value) = 0;
  virtual void entry(std::string& text, Attribute const& collection, String8 const& key,
                     Mox::GenericIf const& value) = 0;
  /// After the last handle, or the last entry of a collection.
  virtual void endList(std::string& text) = 0;
  virtual void end(std::string& text) = 0;
};

namespace {

class Statements final : public FileForm {
 public:
  void handle(std::string& text, String8 const& path) override {
    statement(text, handlesName, strep(path));
  }
  void scalar(std::string& text, Attribute const& attribute, Mox::GenericIf const& value) override {
    statement(text, attribute.name.view(), value.strRep().view());
  }
  void entry(std::string& text, Attribute const& collection, String8 const& key,
             Mox::GenericIf const& value) override {
    std::string const front = holdsKey(collection) ? "" : strep(key) + " ";
    statement(text, collection.name.view(), front + value.strRep().charPtr());
  }
  void endList(std::string& /*text*/) override {}
  void end(std::string& text) override { text.append(endName).append("\n"); }

 private:
  static void statement(std::string& text, std::string_view name, std::string_view content) {
    text.append(name).append(" ");
    text.append(Text::isUtf8(content) ? std::string(content) : escaped(content)).append("\n");
  }
};

class JsonMembers final : public FileForm {
 public:
  explicit JsonMembers(SliceWriter::NoUtf8 noUtf8) : noUtf8_(noUtf8) {}

  void handle(std::string& text, String8 const& path) override {
    beginElement(text, handlesName, "[", ",", "]");
    text.append(
        dumped(std::string(path.view()), [&] { return handlesName + (" " + strep(path)); }));
  }
  void scalar(std::string& text, Attribute const& attribute, Mox::GenericIf const& value) override {
    beginMember(text, attribute.name.view());
    text.append(dumped(toJson(value), [&] {
      return std::string(attribute.name.view()) + " " + value.strRep().charPtr();
    }));
  }
  void entry(std::string& text, Attribute const& collection, String8 const& key,
             Mox::GenericIf const& value) override {
    auto const what = [&] { return std::string(collection.name.view()) + " " + strep(key); };
    Json json = toJson(value);
    if (holdsKey(collection)) json.erase(std::string(collection.keyName.view()));
    std::string const name = dumped(std::string(key.view()), what);
    std::string const content = dumped(json, what);
    beginElement(text, collection.name.view(), "{\n    ", ",\n    ", "\n  }");
    text.append(name).append(": ").append(content);
  }
  void endList(std::string& text) override { text.append(std::exchange(listEnd_, "")); }
  void end(std::string& text) override {
    beginMember(text, endName);
    text.append("true\n}\n");
  }

 private:
  void beginMember(std::string& text, std::string_view name) {
    text.append(std::exchange(isBegun_, true) ? ",\n  \"" : "{\n  \"").append(name).append("\": ");
  }

  /// @param opens,separates,closes the list that is the member of that name
  void beginElement(std::string& text, std::string_view name, char const* opens,
                    char const* separates, char const* closes) {
    if (*std::exchange(listEnd_, closes) != '\0') {
      text.append(separates);
    } else {
      beginMember(text, name);
      text.append(opens);
    }
  }

  /// JSON on one line; `what` tells people what it is.
  template <class What>
  std::string dumped(Json const& json, What const& what) const {
    using OnError = Json::error_handler_t;
    bool const isStrict = noUtf8_ == SliceWriter::NoUtf8::refused;
    try {
      return json.dump(-1, ' ', false, isStrict ? OnError::strict : OnError::replace);
    } catch (Json::type_error const&) {
      throw Mox::RangeException(String8(escaped(what()) +
                                        " holds bytes that are no UTF-8, which JSON cannot hold; "
                                        "statements can"));
    }
  }

  SliceWriter::NoUtf8 noUtf8_;
  bool isBegun_ = false;      // with its first member
  char const* listEnd_ = "";  // what closes the list that is being written, if one is
};

std::unique_ptr<FileForm> newForm(SliceForm form, SliceWriter::NoUtf8 noUtf8) {
  if (form == SliceForm::json) return std::make_unique<JsonMembers>(noUtf8);
  return std::make_unique<Statements>();
}

}  // namespace

/// Walks a configuration in the order of a slice file.
class SliceWriter::Walk {
 public:
  Walk(Mox::Ptr<Config const> const& config, std::vector<String8> handles,
       std::unique_ptr<FileForm> form)
      : adapter_(Mox::genericOf(config)), form_(std::move(form)), handles_(std::move(handles)) {
    for (Attribute const* attribute : attributesInOrder()) {
      if (isCollection(*attribute)) findHandles(*attribute);
    }
    writeHandles();
    for (Attribute const* attribute : attributesInOrder()) {
      isCollection(*attribute) ? writeEntries(*attribute) : writeScalar(*attribute);
    }
    addOnce([this] { form_->end(*text_); });
  }

  bool goOn(std::string& text) {
    constexpr std::size_t entriesAtOnce = 50;
    text_ = &text;
    return work_.take(entriesAtOnce);
  }
  std::size_t held() const { return work_.held(); }

 private:
  template <class Work>
  void addOnce(Work work) {
    work_.add([work] {
      work();
      return false;
    });
  }

  std::shared_ptr<Mox::AttributeIterator> iteratorOf(Attribute const& collection) const {
    return adapter_->attributeIteratorConst(collection.id);
  }

  void findHandles(Attribute const& collection) {
    work_.add([this, at = iteratorOf(collection)] {
      if (!*at) return false;
      forEachField(*at->value(), [&](auto const&, Mox::GenericIf const& field) {
        bool isHandle = false;
        auto const handle = Mox::genericRef<Fru::PciHam const>(&field, isHandle);
        if (handle) handles_.push_back(handle->fullName());
      });
      ++*at;
      return true;
    });
  }

  /// Once all have been found.
  void writeHandles() {
    OrderedKeys paths;
    paths.add([this, next = std::size_t{0}]() mutable {
      return next < handles_.size() ? std::optional(handles_[next++]) : std::nullopt;
    });
    work_.addVisits(std::move(paths), [this](String8 const& path) { form_->handle(*text_, path); });
    addOnce([this] { form_->endList(*text_); });
  }

  void writeScalar(Attribute const& attribute) {
    addOnce([this, &attribute] {
      Generic value;
      adapter_->attributeOp({attribute.id, Mox::AttributeOpCode::read}, nullptr, value);
      form_->scalar(*text_, attribute, *value);
    });
  }

  void writeEntries(Attribute const& collection) {
    OrderedKeys keys;
    keys.add(iteratorOf(collection));
    work_.addVisits(std::move(keys),
                    [this, &collection](String8 const& key) { writeEntry(collection, key); });
    addOnce([this] { form_->endList(*text_); });
  }

  void writeEntry(Attribute const& collection, String8 const& key) {
    auto const at = adapter_->attributeIteratorKeyConst(collection.id, Mox::genericOf(key).get());
    if (*at) form_->entry(*text_, collection, key, *at->value());
  }

  Generic adapter_;
  std::unique_ptr<FileForm> form_;
  std::vector<String8> handles_;  // paths, some of them more than once
  std::string* text_ = nullptr;
  PiecewiseWork work_;
};

SliceWriter::SliceWriter(Mox::Ptr<Config const> config, std::vector<String8> handles,
                         SliceForm form, NoUtf8 noUtf8)
    : walk_(std::make_unique<Walk>(config, std::move(handles), newForm(form, noUtf8))) {}

SliceWriter::~SliceWriter() = default;

bool SliceWriter::goOn(std::string& text) {
  return walk_->goOn(text);
}

std::size_t SliceWriter::held() const {
  return walk_->held();
}

namespace {

std::string wholeText(Config const& config, std::vector<String8> const& handles, SliceForm form) {
  SliceWriter writer(Mox::Ptr<Config const>(&config), handles, form);
  std::string text;
  while (writer.goOn(text)) {
  }
  return text;
}

}  // namespace

std::string sliceText(Config const& config, std::vector<String8> const& handles) {
  return wholeText(config, handles, SliceForm::statements);
}

std::string sliceJson(Config const& config, std::vector<String8> const& handles) {
  return wholeText(config, handles, SliceForm::json);
}

}  // namespace Kest::Agent
