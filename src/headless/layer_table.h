// The table of layers in memory. Everything or nothing happens in each call.
//
// Errors:  results as in zo/system/layer.h; what is wrong with a name or value is found here, too.
// Threads: const functions any; the others one at a time, beside readers. Texts go in and out as
//          copies of their own.
#pragma once

#include <zo/text/containers/array.h>

#include "headless/layer_changes.h"
#include "headless/layer_content.h"
#include "platform/shared_lock.h"

namespace zo {

class LayerTable {
 public:
  LayerTable();

  [[nodiscard]] bool exists(std::wstring_view name) const;
  [[nodiscard]] ZoString current() const;
  [[nodiscard]] int get(std::wstring_view name, ZoLayerData& layer) const;
  [[nodiscard]] ZoArray<ZoString> names(std::wstring_view pattern) const;  // in no order
  [[nodiscard]] ZoArray<ZoString> states() const;
  [[nodiscard]] int toVariant(ZoVariant& out) const;

  [[nodiscard]] int setCurrent(std::wstring_view name, LayerChanges& changes);
  [[nodiscard]] int add(const ZoLayerData& layer, LayerChanges& changes);
  [[nodiscard]] int change(std::wstring_view pattern, const ZoLayerData& values,
                           ZoLayerData::Fields fields, LayerChanges& changes);
  [[nodiscard]] int rename(std::wstring_view from, std::wstring_view to, LayerChanges& changes);
  // Does not ask whether objects lie on it.
  [[nodiscard]] int remove(std::wstring_view name, LayerChanges& changes);
  [[nodiscard]] int saveState(std::wstring_view state, LayerChanges& changes);
  [[nodiscard]] int restoreState(std::wstring_view state, ZoLayerData::Fields fields,
                                 LayerChanges& changes);
  [[nodiscard]] int removeState(std::wstring_view state, LayerChanges& changes);
  // Takes the place of all there is, and leaves that in `content`.
  void replace(LayerContent& content, LayerChanges& changes);

 private:
  [[nodiscard]] bool isCurrent(const ZoLayerData& layer) const;
  template <class Assign>
  static bool assignTo(Layers& layers, Assign assign);

  mutable SharedLock lock_;  // held by writers while they change what is below
  LayerContent content_;
};

}  // namespace zo
