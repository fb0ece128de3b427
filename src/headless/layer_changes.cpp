#include "headless/layer_changes.h"

#include <zo/results.h>

#include <algorithm>

namespace zo {

void LayerChanges::note(Kind kind, std::wstring_view name) {
  Names& names = names_[kind];
  if (names.seen.insertAt(ZoString(name), true) == ZoResult::refused) return;
  throwIfNoMemory(names.inOrder.append(ZoVariant(name)));
}

void LayerChanges::renamed(std::wstring_view from, std::wstring_view to) {
  ZoVariant pair(ZoVariant::kDict);
  throwIfNoMemory(pair.put(L"From", from));
  throwIfNoMemory(pair.put(L"To", to));
  throwIfNoMemory(renamed_.append(std::move(pair)));
}

void LayerChanges::append(const LayerChanges& later) {
  for (const Kind kind : {kAdded, kChanged, kRemoved})
    for (const ZoVariant& name : later.names_[kind].inOrder) note(kind, name.asString());
  throwIfNoMemory(renamed_.append(later.renamed_));
  if (!later.current_.isEmpty()) current_ = later.current_;
  states_ |= later.states_;
}

bool LayerChanges::isEmpty() const noexcept {
  return !states_ && current_.isEmpty() && renamed_.entries() == 0 &&
         std::ranges::all_of(names_, [](const Names& n) { return n.inOrder.entries() == 0; });
}

ZoVariant LayerChanges::asVariant() const {
  ZoVariant data(ZoVariant::kDict);
  const auto put = [&](const wchar_t* key, ZoVariant value) {
    throwIfNoMemory(data.put(key, std::move(value)));
  };
  constexpr const wchar_t* kKeys[] = {L"Added", L"Changed", L"Removed"};
  for (std::size_t i = 0; i < std::size(kKeys); ++i)
    if (names_[i].inOrder.entries() > 0) put(kKeys[i], ZoVariant(names_[i].inOrder));
  if (renamed_.entries() > 0) put(L"Renamed", ZoVariant(renamed_));
  if (!current_.isEmpty()) put(L"Current", ZoVariant(current_));
  if (states_) put(L"States", true);
  return data;
}

}  // namespace zo
