// The standard layer service: a table of layers in memory, which belongs to the program as a whole.
// An installed service maps the same interface to a host.
//
// Errors, Threads, Cost: as in zo/system/layer.h.
#pragma once

#include <zo/system/layer.h>

#include <cstdint>
#include <memory>

namespace zo {
class LayerChanges;
class LayerTable;
}  // namespace zo

class ZO_COM_API ZoStdLayer : public ZoLayer {
 public:
  ZoStdLayer();  // with layer "0"
  ~ZoStdLayer() override;
  ZoStdLayer(const ZoStdLayer&) = delete;
  ZoStdLayer& operator=(const ZoStdLayer&) = delete;

  int release(const wchar_t* module) override;

  int getCurrent(ZoString& name) override;
  int setCurrent(const ZoString& name) override;
  [[nodiscard]] bool exists(const ZoString& name) override;
  int add(const ZoLayerData& layer) override;
  int ensure(const ZoLayerData& layer) override;
  int get(const ZoString& name, ZoLayerData& layer) override;
  using ZoLayer::getNames;
  int getNames(ZoSequence<ZoString>& names, const ZoString& pattern) override;
  int change(const ZoString& pattern, const ZoLayerData& values,
             ZoLayerData::Fields fields) override;
  int rename(const ZoString& from, const ZoString& to) override;
  int remove(const ZoString& name) override;
  int saveState(const ZoString& state) override;
  using ZoLayer::restoreState;
  int restoreState(const ZoString& state, ZoLayerData::Fields fields) override;
  int removeState(const ZoString& state) override;
  int getStates(ZoSequence<ZoString>& states) override;
  int toVariant(ZoVariant& layers) override;
  int fromVariant(const ZoVariant& layers) override;
  int beginBatch() override;
  int endBatch() override;

 private:
  template <class Change>
  int run(Change change);
  [[nodiscard]] unsigned int ownBatches() const noexcept;
  void tell(const zo::LayerChanges& changes);

  std::unique_ptr<zo::LayerTable> table_;
  std::unique_ptr<zo::LayerChanges> pending_;  // of a batch
  unsigned int batches_ = 0;
  std::uint64_t batchThread_ = 0;
};
