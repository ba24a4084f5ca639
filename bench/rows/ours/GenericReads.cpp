#include "bench/rows/GenericReads.h"

#include <iterator>
#include <memory>

#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/rows/Rows.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/MoxType.h"

namespace Kest::Bench {

namespace {

using Adapter = std::unique_ptr<Mox::GenericIf>;

std::vector<Adapter> adapters() {
  std::vector<Adapter> all;
  for (Ours::Record const& record : visitedRecords<Ours>(shortNames)) {
    all.push_back(Mox::genericOf(record));
  }
  return all;
}

std::uint64_t numberOf(Mox::GenericIf const& value) {
  if (auto const* number = Mox::genericVal<std::uint32_t>(&value)) return *number;
  if (auto const* text = Mox::genericVal<Mox::String8>(&value)) return text->bytes();
  if (auto const* flag = Mox::genericVal<bool>(&value)) return *flag ? 1 : 0;
  return Mox::genericVal<Pelk::EthAddr>(&value)->octets().size();
}

std::uint64_t readAdapter(Adapter const& record, Mox::AttributeId id) {
  Adapter result;
  record->attributeOp({id, Mox::AttributeOpCode::read, nullptr}, nullptr, result);
  return numberOf(*result);
}

void oursById(Run& run) {
  auto const records = adapters();
  std::vector<Mox::AttributeId> ids;
  for (char const* name : attributeNames) ids.push_back(records[0]->attributeId(name));
  readAttributes(run, records, ids, readAdapter);
}

void oursByName(Run& run) {
  auto const records = adapters();
  std::vector<Mox::String8> const strings(std::begin(attributeNames), std::end(attributeNames));
  readAttributes(run, records, strings, [](Adapter const& record, Mox::String8 const& name) {
    return readAdapter(record, record->attributeId(name));
  });
}

}  // namespace

void measureOurGenericReads() {
  measure("i", "by id", "ours", oursById);
  measure("i", "by name", "ours", oursByName);
}

}  // namespace Kest::Bench
