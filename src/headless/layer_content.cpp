#include "headless/layer_content.h"

#include <zo/results.h>
#include <zo/text/containers/array.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <string>
#include <vector>

#include "text/code_units.h"

namespace zo {
namespace {

constexpr std::size_t kMostCharacters = 255;
constexpr unsigned int kMostDescription = 65535;

struct Switch {
  const wchar_t* key;
  bool ZoLayerData::* value;
};
constexpr Switch kSwitches[] = {{L"On", &ZoLayerData::on},
                                {L"Frozen", &ZoLayerData::frozen},
                                {L"Locked", &ZoLayerData::locked},
                                {L"Plotted", &ZoLayerData::plotted}};

using Entries = ZoHashDict<ZoVariant, ZoString>;

void put(Entries& entries, const wchar_t* key, ZoVariant value) {
  throwIfNoMemory(entries.insertAt(ZoString(key), std::move(value)));
}

ZoVariant variantOf(const ZoLayerData& layer) {
  Entries entries(16);
  put(entries, L"Name", ZoVariant(layer.name.copy()));
  put(entries, L"Color", ZoVariant(layer.color.toString()));
  put(entries, L"LineType", ZoVariant(layer.lineType.copy()));
  put(entries, L"LineWeight", layer.lineWeight);
  for (const Switch& each : kSwitches) put(entries, each.key, layer.*each.value);
  put(entries, L"Description", ZoVariant(layer.description.copy()));
  return ZoVariant(std::move(entries));
}

// By their names' code units, so that equal tables have equal values.
template <class T>
std::vector<const ZoString*> sortedKeys(const ZoHashDict<T, ZoString>& dict) {
  std::vector<const ZoString*> keys;
  keys.reserve(dict.entries());
  for (const auto [key, value] : dict) keys.push_back(&key);
  std::ranges::sort(keys, {}, [](const ZoString* key) { return key->view(); });
  return keys;
}

Entries variantOf(const LayerState& state) {
  ZoArray<ZoVariant> layers(state.layers.entries());
  for (const ZoString* name : sortedKeys(state.layers))
    throwIfNoMemory(layers.append(variantOf(*state.layers.at(*name))));
  Entries entries(4);
  put(entries, L"Current", ZoVariant(state.current.copy()));
  put(entries, L"Layers", ZoVariant(std::move(layers)));
  return entries;
}

// Only a text: a number in the place of one is no such value.
bool readText(const ZoVariant& value, ZoString& out) {
  if (value.isEmpty()) return true;
  if (!value.isTypeOf(ZoVariant::kString)) return false;
  out = value.asString().copy();
  return true;
}

bool readSwitch(const ZoVariant& value, bool& out) {
  if (value.isEmpty()) return true;
  int number = 0;
  if (!value.isTypeOf(ZoVariant::kInt) || value.get(number) != 0) return false;
  out = number != 0;
  return number == 0 || number == 1;
}

const ZoVariant& valueOf(const ZoVariant& dict, const wchar_t* key) {
  static const ZoVariant none;
  const ZoVariant* const found = dict.at(key);
  return found ? *found : none;
}

bool readLayer(const ZoVariant& value, ZoLayerData& layer) {
  if (!value.asDict()) return false;
  ZoString color = layer.color.toString();
  const bool isRead =
      readText(valueOf(value, L"Name"), layer.name) && readText(valueOf(value, L"Color"), color) &&
      readText(valueOf(value, L"LineType"), layer.lineType) &&
      readText(valueOf(value, L"Description"), layer.description) &&
      layer.color.fromString(color) == 0 && std::ranges::all_of(kSwitches, [&](const Switch& each) {
        return readSwitch(valueOf(value, each.key), layer.*each.value);
      });
  const ZoVariant& weight = valueOf(value, L"LineWeight");
  if (!weight.isEmpty() && (!weight.isTypeOf(ZoVariant::kInt) || weight.get(layer.lineWeight) != 0))
    return false;
  if (layer.lineType.isEmpty()) layer.lineType = ZoLayerData().lineType;
  return isRead && isLayerName(layer.name) && areLayerValues(layer, ZoLayerData::kAllFields);
}

bool readState(const ZoVariant& value, LayerState& state) {
  const ZoVariant::Sequence* const layers = valueOf(value, L"Layers").asSequence();
  if (!value.asDict() || !layers || !readText(valueOf(value, L"Current"), state.current))
    return false;
  for (const ZoVariant& each : *layers) {
    ZoLayerData layer;
    if (!readLayer(each, layer)) return false;
    const ZoString name = layer.name.copy();
    const int code = state.layers.insertAt(name, layer);  // refuses a name that is there
    if (code == ZoResult::outOfMemory) throw std::bad_alloc();
    if (code != ZoResult::ok) return false;
  }
  const ZoLayerData* const current = state.layers.at(state.current);
  return (!current || !current->frozen) && (current || state.current.isEmpty()) &&
         state.layers.contains(kLayerZero);
}

// The blanks of Unicode, but for those that are control characters.
bool isBlank(wchar_t c) noexcept {
  return c == L' ' || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
         c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

bool isControl(wchar_t c) noexcept { return c < L' ' || (c >= 0x7F && c <= 0x9F); }

bool hasLoneSurrogate(std::wstring_view text) noexcept {
  for (std::size_t size = 1; !text.empty(); text.remove_prefix(size)) {
    size = firstCharacter(text).size();
    if (size == 1 && isSurrogate(text.front())) return true;
  }
  return false;
}

bool areEqual(const LayerState& a, const LayerState& b) {
  if (a.current != b.current || a.layers.entries() != b.layers.entries()) return false;
  for (const auto [name, layer] : a.layers) {
    const ZoLayerData* const other = b.layers.at(name);
    if (!other || *other != layer) return false;
  }
  return true;
}

}  // namespace

bool areEqual(const LayerStates& a, const LayerStates& b) {
  const auto sameName = [](const ZoString* x, const ZoString* y) { return *x == *y; };
  const auto names = sortedKeys(a);
  return std::ranges::equal(names, sortedKeys(b), sameName) &&
         std::ranges::all_of(
             names, [&](const ZoString* name) { return areEqual(*a.at(*name), *b.at(*name)); });
}

bool isLayerName(std::wstring_view name) noexcept {
  return !name.empty() && name.size() <= kMostCharacters && !isBlank(name.front()) &&
         !isBlank(name.back()) && !hasLoneSurrogate(name) &&
         std::ranges::none_of(name, [](wchar_t c) {
           return isControl(c) ||
                  std::wstring_view(L"<>/\\\":;?*|,=`").find(c) != std::wstring_view::npos;
         });
}

bool areLayerValues(const ZoLayerData& values, ZoLayerData::Fields fields) noexcept {
  const auto isUnasked = [&](ZoLayerData::Fields field) { return (fields & field) == 0; };
  return (isUnasked(ZoLayerData::kLineType) || values.lineType.isEmpty() ||
          isLayerName(values.lineType)) &&
         (isUnasked(ZoLayerData::kLineWeight) ||
          (values.lineWeight <= ZoLayerData::kMaxWeight &&
           values.lineWeight >= ZoLayerData::kDefaultWeight)) &&
         (isUnasked(ZoLayerData::kDescription) || values.description.length() <= kMostDescription);
}

ZoLayerData ownCopy(const ZoLayerData& layer) {
  ZoLayerData copy(layer);
  copy.name = layer.name.copy();
  copy.lineType = layer.lineType.isEmpty() ? ZoLayerData().lineType : layer.lineType.copy();
  copy.description = layer.description.copy();
  return copy;
}

bool assignFields(ZoLayerData& layer, const ZoLayerData& values, ZoLayerData::Fields fields) {
  const ZoLayerData before = layer;
  if (fields & ZoLayerData::kColor) layer.color = values.color;
  if (fields & ZoLayerData::kLineType) layer.lineType = values.lineType;
  if (fields & ZoLayerData::kLineWeight) layer.lineWeight = values.lineWeight;
  if (fields & ZoLayerData::kOn) layer.on = values.on;
  if (fields & ZoLayerData::kFrozen) layer.frozen = values.frozen;
  if (fields & ZoLayerData::kLocked) layer.locked = values.locked;
  if (fields & ZoLayerData::kPlotted) layer.plotted = values.plotted;
  if (fields & ZoLayerData::kDescription) layer.description = values.description;
  return layer != before;
}

int layersToVariant(const LayerContent& content, ZoVariant& out) {
  Entries entries = variantOf(static_cast<const LayerState&>(content));
  Entries states;
  for (const ZoString* name : sortedKeys(content.states))
    throwIfNoMemory(states.insertAt(name->copy(), ZoVariant(variantOf(*content.states.at(*name)))));
  put(entries, L"States", ZoVariant(std::move(states)));
  out = ZoVariant(std::move(entries));
  return ZoResult::ok;
}

int layersFromVariant(const ZoVariant& value, LayerContent& out) {
  if (!readState(value, out) || out.current.isEmpty()) return ZoResult::invalid;
  const ZoVariant& states = valueOf(value, L"States");
  if (!states.isEmpty() && !states.asDict()) return ZoResult::invalid;
  for (const auto [key, position, each] : states.elements()) {
    LayerState state;
    if (!isLayerName(*key) || !readState(each, state)) return ZoResult::invalid;
    throwIfNoMemory(out.states.insertAt(key->copy(), std::move(state)));
  }
  return ZoResult::ok;
}

}  // namespace zo
