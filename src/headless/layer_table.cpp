#include "headless/layer_table.h"

#include <zo/results.h>
#include <zo/variant/variant.h>

#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

#include "names/wildcard.h"

namespace zo {
namespace {

bool isPattern(std::wstring_view text) { return text.find_first_of(L"*?,") != text.npos; }

std::wstring_view withoutBlanks(std::wstring_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
  return text.substr(0, text.find_last_not_of(L' ') + 1);
}

// Patterns with commas between them.
bool fits(std::wstring_view name, std::wstring_view patterns) {
  for (;;) {
    const std::size_t comma = std::min(patterns.find(L','), patterns.size());
    if (fitsPattern(name, withoutBlanks(patterns.substr(0, comma)))) return true;
    if (comma == patterns.size()) return false;
    patterns.remove_prefix(comma + 1);
  }
}

// Calls for each layer that fits; one without a sign of a pattern is looked up.
template <class Table, class Call>
void forEach(Table& layers, std::wstring_view pattern, Call call) {
  if (isPattern(pattern)) {
    for (const auto [name, layer] : layers)
      if (fits(name, pattern)) call(layer);
  } else if (auto* const layer = layers.at(pattern)) {
    call(*layer);
  }
}

// A layer, and what it is to become.
using Change = std::pair<ZoLayerData*, ZoLayerData>;

}  // namespace

LayerTable::LayerTable() {
  throwIfNoMemory(content_.layers.insertAt(ZoString(kLayerZero), {.name = kLayerZero}));
  content_.current = kLayerZero;
}

bool LayerTable::exists(std::wstring_view name) const {
  const std::shared_lock reading(lock_);
  return content_.layers.contains(name);
}

ZoString LayerTable::current() const {
  const std::shared_lock reading(lock_);
  return content_.current.copy();
}

int LayerTable::get(std::wstring_view name, ZoLayerData& layer) const {
  const std::shared_lock reading(lock_);
  const ZoLayerData* const found = content_.layers.at(name);
  if (!found) return ZoResult::refused;
  ZoLayerData copy;  // by parts: the counters of the table's texts are its writers' business
  copy.name = found->name.copy();
  copy.lineType = found->lineType.copy();
  copy.description = found->description.copy();
  constexpr unsigned int kTexts = ZoLayerData::kLineType | ZoLayerData::kDescription;
  assignFields(copy, *found, ZoLayerData::Fields(ZoLayerData::kAllFields & ~kTexts));
  layer = std::move(copy);
  return ZoResult::ok;
}

ZoArray<ZoString> LayerTable::names(std::wstring_view pattern) const {
  ZoArray<ZoString> names;
  const std::shared_lock reading(lock_);
  forEach(content_.layers, pattern,
          [&](const ZoLayerData& layer) { throwIfNoMemory(names.append(layer.name.copy())); });
  return names;
}

ZoArray<ZoString> LayerTable::states() const {
  ZoArray<ZoString> names;
  const std::shared_lock reading(lock_);
  for (const auto [name, state] : content_.states) throwIfNoMemory(names.append(name.copy()));
  return names;
}

int LayerTable::toVariant(ZoVariant& out) const {
  const std::shared_lock reading(lock_);
  return layersToVariant(content_, out);
}

bool LayerTable::isCurrent(const ZoLayerData& layer) const {
  return &layer == content_.layers.at(content_.current);
}

int LayerTable::setCurrent(std::wstring_view name, LayerChanges& changes) {
  const ZoLayerData* const layer = content_.layers.at(name);
  if (!layer) return ZoResult::refused;
  if (layer->frozen) return ZoResult::layerFrozen;
  if (isCurrent(*layer)) return ZoResult::ok;
  ZoString current = layer->name.copy();
  changes.current(current);
  const std::unique_lock writing(lock_);
  content_.current.swap(current);
  return ZoResult::ok;
}

int LayerTable::add(const ZoLayerData& layer, LayerChanges& changes) {
  if (!isLayerName(layer.name) || !areLayerValues(layer, ZoLayerData::kAllFields))
    return ZoResult::invalid;
  if (content_.layers.contains(layer.name)) return ZoResult::layerExists;
  changes.note(LayerChanges::kAdded, layer.name);
  ZoLayerData own = ownCopy(layer);
  ZoString key = own.name.copy();
  const std::unique_lock writing(lock_);
  return content_.layers.insertAt(std::move(key), std::move(own));
}

// What each layer becomes is settled before the first is touched.
int LayerTable::change(std::wstring_view pattern, const ZoLayerData& values,
                       ZoLayerData::Fields fields, LayerChanges& changes) {
  if (!areLayerValues(values, fields) || fields == 0 || (fields & ~ZoLayerData::kAllFields) != 0)
    return ZoResult::invalid;
  const ZoLayerData own = ownCopy(values);
  std::vector<Change> todo;
  bool isFound = false, isWhole = true;
  forEach(content_.layers, pattern, [&](ZoLayerData& layer) {
    isFound = true;
    ZoLayerData next = layer;
    assignFields(next, own, fields);
    if (next.frozen && isCurrent(layer)) isWhole = next.frozen = false;
    if (next == layer) return;
    changes.note(LayerChanges::kChanged, layer.name);
    todo.emplace_back(&layer, std::move(next));
  });
  if (!isFound) return ZoResult::refused;
  const std::unique_lock writing(lock_);
  for (auto& [layer, next] : todo) std::swap(*layer, next);
  return isWhole ? ZoResult::ok : ZoResult::layersLeftOut;
}

namespace {

// What is left of a layer that is there no more.
void forget(LayerState& state, const ZoString& name) {
  const ZoLayerData* const layer = state.layers.at(name);
  if (!layer) return;
  if (layer == state.layers.at(state.current)) state.current = ZoString();
  state.layers.removeAt(name);
}

// The same layer under another name.
void rekey(LayerState& state, const ZoString& from, const ZoString& to) {
  const ZoLayerData* const layer = state.layers.at(from);
  if (!layer) return;
  const bool isCurrent = layer == state.layers.at(state.current);
  ZoLayerData renamed(*layer);
  renamed.name = to;
  state.layers.removeAt(from);
  throwIfNoMemory(state.layers.insertAt(to.copy(), renamed));
  if (isCurrent) state.current = to;
}

}  // namespace

// A copy is changed: saved states of many layers take a while, and memory may run out.
int LayerTable::rename(std::wstring_view from, std::wstring_view to, LayerChanges& changes) {
  const ZoLayerData* const layer = content_.layers.at(from);
  if (!layer) return ZoResult::refused;
  if (layer == content_.layers.at(kLayerZero)) return ZoResult::layerKept;
  if (!isLayerName(to)) return ZoResult::invalid;
  const ZoLayerData* const other = content_.layers.at(to);
  if (other && other != layer) return ZoResult::layerExists;
  if (layer->name.view() == to) return ZoResult::ok;
  changes.renamed(layer->name, to);
  LayerContent next(content_);
  const ZoString oldName = layer->name.copy(), newName(to);
  rekey(next, oldName, newName);
  for (const auto [name, state] : next.states) {
    if (!other) forget(state, newName);
    rekey(state, oldName, newName);
  }
  const std::unique_lock writing(lock_);
  std::swap(content_, next);
  return ZoResult::ok;
}

int LayerTable::remove(std::wstring_view name, LayerChanges& changes) {
  const ZoLayerData* const layer = content_.layers.at(name);
  if (!layer) return ZoResult::refused;
  if (isCurrent(*layer) || layer == content_.layers.at(kLayerZero)) return ZoResult::layerKept;
  changes.note(LayerChanges::kRemoved, layer->name);
  const ZoString key = layer->name.copy();
  const std::unique_lock writing(lock_);
  return content_.layers.removeAt(key);
}

int LayerTable::saveState(std::wstring_view state, LayerChanges& changes) {
  if (!isLayerName(state)) return ZoResult::invalid;
  LayerState saved(content_);
  changes.states();
  const std::unique_lock writing(lock_);
  if (LayerState* const old = content_.states.at(state)) {
    std::swap(*old, saved);
    return ZoResult::ok;
  }
  return content_.states.insertAt(ZoString(state), std::move(saved));
}

int LayerTable::restoreState(std::wstring_view state, ZoLayerData::Fields fields,
                             LayerChanges& changes) {
  const LayerState* const saved = content_.states.at(state);
  if (!saved) return ZoResult::refused;
  if (fields == 0 || (fields & ~ZoLayerData::kAllFields) != 0) return ZoResult::invalid;
  const ZoLayerData* current = content_.layers.at(saved->current);
  const bool isStillFrozen = current && current->frozen && (fields & ZoLayerData::kFrozen) == 0;
  bool isWhole = current && !isStillFrozen;
  if (!isWhole) current = content_.layers.at(content_.current);
  std::vector<Change> todo;
  for (const auto [name, then] : saved->layers) {
    ZoLayerData* const layer = content_.layers.at(name);
    if (!layer) {
      isWhole = false;
      continue;
    }
    ZoLayerData next = *layer;
    assignFields(next, then, fields);
    if (next.frozen && layer == current) isWhole = next.frozen = false;
    if (next == *layer) continue;
    changes.note(LayerChanges::kChanged, layer->name);
    todo.emplace_back(layer, std::move(next));
  }
  ZoString currentName = current->name.copy();
  if (!isCurrent(*current)) changes.current(currentName);
  const std::unique_lock writing(lock_);
  for (auto& [layer, next] : todo) std::swap(*layer, next);
  content_.current.swap(currentName);
  return isWhole ? ZoResult::ok : ZoResult::layersLeftOut;
}

int LayerTable::removeState(std::wstring_view state, LayerChanges& changes) {
  if (!content_.states.contains(state)) return ZoResult::refused;
  changes.states();
  const ZoString key(state);
  const std::unique_lock writing(lock_);
  return content_.states.removeAt(key);
}

void LayerTable::replace(LayerContent& content, LayerChanges& changes) {
  for (const auto [name, layer] : content_.layers)
    if (!content.layers.contains(name)) changes.note(LayerChanges::kRemoved, layer.name);
  for (const auto [name, layer] : content.layers) {
    const ZoLayerData* const old = content_.layers.at(name);
    if (!old) changes.note(LayerChanges::kAdded, layer.name);
    if (old && *old != layer) changes.note(LayerChanges::kChanged, layer.name);
  }
  if (content.current.view() != content_.current.view()) changes.current(content.current);
  if (!areEqual(content.states, content_.states)) changes.states();
  const std::unique_lock writing(lock_);
  std::swap(content_, content);
}

}  // namespace zo
