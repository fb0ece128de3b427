#include "headless/layer_content.h"

#include <zo/results.h>
#include <zo/text/containers/array.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <string>
#include <vector>

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
  return isRead && isLayerName(layer.name) && areLayerValues(layer);
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
  return current && !current->frozen && state.layers.contains(kLayerZero);
}

}  // namespace

bool isLayerName(std::wstring_view name) noexcept {
  return !name.empty() && name.size() <= kMostCharacters && name.front() != L' ' &&
         name.back() != L' ' && std::ranges::all_of(name, [](wchar_t c) {
           return c >= L' ' &&
                  std::wstring_view(L"<>/\\\":;?*|,=`").find(c) == std::wstring_view::npos;
         });
}

bool areLayerValues(const ZoLayerData& values) noexcept {
  return (values.lineType.isEmpty() || isLayerName(values.lineType)) &&
         values.lineWeight <= ZoLayerData::kMaxWeight &&
         values.lineWeight >= ZoLayerData::kDefaultWeight &&
         values.description.length() <= kMostDescription;
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
  if (!readState(value, out)) return ZoResult::invalid;
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
