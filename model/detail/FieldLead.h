#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <utility>

/// What a record's text form has in front of each field's value, put together by the compiler from
/// the record's name and field table: it is printed, and recognised, in one piece.
namespace Hardware::Kest::Slice::detail {

template <class Record>
using FieldIndexes = std::make_index_sequence<std::tuple_size_v<decltype(Record::fieldTable())>>;

template <class Record, std::size_t index>
class FieldLead {
  static constexpr bool isFirst = index == 0;

 public:
  static constexpr auto field = std::get<index>(Record::fieldTable());

 private:
  static constexpr std::string_view parts[] = {isFirst ? "Value('" : "",
                                               isFirst ? Record::typeName : "",
                                               isFirst ? "', ** {'" : ", '", field.name, "': "};
  static constexpr std::size_t bytes = [] {
    std::size_t sum = 0;
    for (std::string_view const part : parts) sum += part.size();
    return sum;
  }();
  static constexpr auto chars = [] {
    std::array<char, bytes> all{};
    auto* out = all.begin();
    for (std::string_view const part : parts) out = std::copy(part.begin(), part.end(), out);
    return all;
  }();

 public:
  static constexpr std::string_view text{chars.data(), bytes};
};

}  // namespace Hardware::Kest::Slice::detail
