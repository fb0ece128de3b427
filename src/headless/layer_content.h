// Layers, the current one and saved states as a plain value; its rules, and its form as a variant.
#pragma once

#include <zo/system/layer.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/text_keys.h>

#include <string_view>

class ZoVariant;

namespace zo {

constexpr const wchar_t* kLayerZero = L"0";

// Of layers, line types and states.
[[nodiscard]] bool isLayerName(std::wstring_view name) noexcept;
// Whether a layer can have these values of the fields; an empty line type is the usual one.
[[nodiscard]] bool areLayerValues(const ZoLayerData& values, ZoLayerData::Fields fields) noexcept;

// The same with texts of its own: what another thread may be given.
[[nodiscard]] ZoLayerData ownCopy(const ZoLayerData& layer);
// Gives `layer` the values of the fields. Returns whether anything changed.
bool assignFields(ZoLayerData& layer, const ZoLayerData& values, ZoLayerData::Fields fields);

using Layers = ZoHashDict<ZoLayerData, ZoString>;

struct LayerState {
  Layers layers;
  ZoString current;  // of a saved one, empty: it is there no more
};

using LayerStates = ZoHashDict<LayerState, ZoString>;
struct LayerContent : LayerState {
  LayerStates states;
};

[[nodiscard]] bool areEqual(const LayerStates& a, const LayerStates& b);

[[nodiscard]] int layersToVariant(const LayerContent& content, ZoVariant& out);
// Refuses what breaks a rule; `out` may be anything then.
[[nodiscard]] int layersFromVariant(const ZoVariant& value, LayerContent& out);

}  // namespace zo
