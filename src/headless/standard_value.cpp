#include "headless/standard_value.h"

#include <zo/results.h>

#include <algorithm>
#include <string>

#include "headless/standard_name.h"
#include "headless/standard_store.h"

namespace zo {
namespace {

struct Text {
  const wchar_t* key;
  std::wstring Standard::* text;
};
constexpr Text kTexts[] = {{L"Name", &Standard::name},
                           {L"Edition", &Standard::edition},
                           {L"ReplacedBy", &Standard::replacedBy},
                           {L"Firm", &Standard::firm},
                           {L"Catalog", &Standard::catalog},
                           {L"Class", &Standard::standardClass}};
constexpr std::size_t kMostCharacters = 255;

// Absent counts as empty; only a text is one.
bool readTexts(const ZoVariant& value, Standard& standard) {
  for (const Text& each : kTexts) {
    const ZoVariant* const text = value.at(each.key);
    if (!text) continue;
    if (!text->isTypeOf(ZoVariant::kString)) return false;
    standard.*each.text = text->asString().view();
    if ((standard.*each.text).size() > kMostCharacters) return false;
  }
  return standard.name.find(L':') == std::wstring::npos &&
         !StandardName(standard.name).key().empty();
}

bool areTables(const ZoVariant* tables) {
  if (!tables) return true;
  if (!tables->asDict()) return false;
  for (const auto [key, position, table] : tables->elements()) {
    if (!table.asDict()) return false;
    for (const auto [size, place, row] : table.elements())
      if (!row.asDict()) return false;
  }
  return true;
}

// Absent counts as false.
bool readWithdrawn(const ZoVariant* value, bool& isWithdrawn) {
  isWithdrawn = false;
  if (!value || value->isEmpty()) return true;
  int number = 0;
  if (!value->isTypeOf(ZoVariant::kInt) || value->get(number) != 0) return false;
  isWithdrawn = number == 1;
  return number == 0 || number == 1;
}

std::shared_ptr<Standard> readStandard(const ZoVariant& value) {
  auto standard = std::make_shared<Standard>();
  if (!value.asDict() || value.isTooDeep() || !readTexts(value, *standard) ||
      !areTables(value.at(L"Tables")) ||
      !readWithdrawn(value.at(L"Withdrawn"), standard->isWithdrawn))
    return nullptr;
  if (!standard->replacedBy.empty()) standard->isWithdrawn = true;
  standard->value = value.copy();
  return standard;
}

}  // namespace

int readStandards(const ZoVariant& value, std::vector<std::shared_ptr<Standard>>& standards) {
  const auto take = [&](const ZoVariant& each) {
    standards.push_back(readStandard(each));
    return standards.back() != nullptr;
  };
  if (!value.asSequence()) return take(value) ? ZoResult::ok : ZoResult::invalid;
  return std::ranges::all_of(*value.asSequence(), take) ? ZoResult::ok : ZoResult::invalid;
}

const ZoVariant* standardTable(const ZoVariant& standard, std::wstring_view name) {
  const ZoVariant* const tables = standard.at(L"Tables");
  if (!tables) return nullptr;
  if (!name.empty()) return tables->at(name);
  if (tables->entries() != 1) return nullptr;
  for (const auto [key, position, table] : tables->elements()) return &table;
  return nullptr;
}

// By its name, in another spelling, or by the number that is all that is in it beside letters.
const ZoVariant* standardRow(const ZoVariant& table, std::wstring_view size) {
  if (const ZoVariant* const row = table.at(size)) return row;
  const StandardName wanted(size);
  if (wanted.key().empty()) return nullptr;
  const ZoVariant* byNumber = nullptr;
  bool isOne = true;
  for (const auto [key, position, row] : table.elements()) {
    const StandardName name(*key);
    if (name.key() == wanted.key()) return &row;
    std::wstring_view number = name.key();
    number.remove_prefix(std::min(number.find_first_of(L"0123456789"), number.size()));
    if (number != wanted.key()) continue;
    isOne = byNumber == nullptr;
    byNumber = &row;
  }
  return isOne ? byNumber : nullptr;
}

}  // namespace zo
