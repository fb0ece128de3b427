#include <zo/headless/std_layer.h>
#include <zo/results.h>
#include <zo/system/cad.h>
#include <zo/system/sys_disp.h>
#include <zo/text/containers/array.h>
#include <zo/variant/variant.h>

#include <atomic>
#include <utility>

#include "headless/layer_table.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace zo {
namespace {

// Unlike the platform's, no number comes twice.
std::uint64_t threadNumber() noexcept {
  static std::atomic<std::uint64_t> last = 0;
  static thread_local const std::uint64_t number = ++last;
  return number;
}

}  // namespace
}  // namespace zo

namespace {

int give(ZoArray<ZoString> found, ZoSequence<ZoString>& names) {
  if (const int code = found.sort(ZoCICompare<ZoString>())) return code;
  return names.copyFrom(found);
}

bool isInUse(const ZoString& layer) {
  auto* const cad = zo::serviceOrNull<ZoCad>();
  return cad && cad->isLayerInUse(layer);
}

}  // namespace

ZoStdLayer::ZoStdLayer() : table_(std::make_unique<zo::LayerTable>()) {}
ZoStdLayer::~ZoStdLayer() = default;

int ZoStdLayer::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

// A thread that ended in a batch has left the guard to others, who tell what it collected.
unsigned int ZoStdLayer::ownBatches() const noexcept {
  return batchThread_ == zo::threadNumber() ? batches_ : 0;
}

// The notice goes out when the guard is free again, unless a batch collects it.
template <class Change>
int ZoStdLayer::run(Change change) {
  zo::LayerChanges changes;
  int result = ZoResult::ok;
  {
    const zo::Writing writing(*this);
    if (!writing) return ZoResult::refused;
    result = change(changes);
    if (result != ZoResult::ok && result != ZoResult::layersLeftOut) return result;
    if (pending_) {
      pending_->append(changes);
      if (ownBatches() > 0) return result;
      changes = *std::exchange(pending_, nullptr);
    }
  }
  tell(changes);
  return result;
}

void ZoStdLayer::tell(const zo::LayerChanges& changes) {
  if (changes.isEmpty()) return;
  if (auto* const dispatcher = zo::serviceOrNull<ZoSysDisp>())
    static_cast<void>(dispatcher->sendNotice(L"ZoLayersChanged", changes.asVariant()));
}

int ZoStdLayer::getCurrent(ZoString& name) {
  name = table_->current();
  return ZoResult::ok;
}

int ZoStdLayer::setCurrent(const ZoString& name) {
  return run([&](zo::LayerChanges& changes) { return table_->setCurrent(name, changes); });
}

bool ZoStdLayer::exists(const ZoString& name) { return table_->exists(name); }

int ZoStdLayer::add(const ZoLayerData& layer) {
  return run([&](zo::LayerChanges& changes) { return table_->add(layer, changes); });
}

int ZoStdLayer::ensure(const ZoLayerData& layer) {
  if (table_->exists(layer.name)) return ZoResult::ok;
  const int result = add(layer);  // another thread may have been quicker
  return result == ZoResult::layerExists ? ZoResult::ok : result;
}

int ZoStdLayer::get(const ZoString& name, ZoLayerData& layer) { return table_->get(name, layer); }

int ZoStdLayer::getNames(ZoSequence<ZoString>& names, const ZoString& pattern) {
  return give(table_->names(pattern), names);
}

int ZoStdLayer::change(const ZoString& pattern, const ZoLayerData& values,
                       ZoLayerData::Fields fields) {
  return run(
      [&](zo::LayerChanges& changes) { return table_->change(pattern, values, fields, changes); });
}

int ZoStdLayer::rename(const ZoString& from, const ZoString& to) {
  return run([&](zo::LayerChanges& changes) {
    const int result = table_->rename(from, to, changes);
    auto* const cad = zo::serviceOrNull<ZoCad>();
    if (result == ZoResult::ok && cad) cad->layerRenamed(from, to);
    return result;
  });
}

int ZoStdLayer::remove(const ZoString& name) {
  return run([&](zo::LayerChanges& changes) {
    return table_->exists(name) && isInUse(name) ? ZoResult::layerKept
                                                 : table_->remove(name, changes);
  });
}

int ZoStdLayer::saveState(const ZoString& state) {
  return run([&](zo::LayerChanges& changes) { return table_->saveState(state, changes); });
}

int ZoStdLayer::restoreState(const ZoString& state, ZoLayerData::Fields fields) {
  return run(
      [&](zo::LayerChanges& changes) { return table_->restoreState(state, fields, changes); });
}

int ZoStdLayer::removeState(const ZoString& state) {
  return run([&](zo::LayerChanges& changes) { return table_->removeState(state, changes); });
}

int ZoStdLayer::getStates(ZoSequence<ZoString>& states) { return give(table_->states(), states); }

int ZoStdLayer::toVariant(ZoVariant& layers) { return table_->toVariant(layers); }

int ZoStdLayer::fromVariant(const ZoVariant& layers) {
  zo::LayerContent content;
  if (const int code = zo::layersFromVariant(layers, content)) return code;
  return run([&](zo::LayerChanges& changes) {
    for (const ZoString& name : table_->names(L"*"))
      if (!content.layers.contains(name) && isInUse(name)) return ZoResult::layerKept;
    table_->replace(content, changes);
    return ZoResult::ok;
  });
}

int ZoStdLayer::beginBatch() {
  if (waitToWrite() != ZoResult::ok) return ZoResult::refused;
  if (!pending_) {
    try {
      pending_ = std::make_unique<zo::LayerChanges>();
    } catch (...) {
      doneWriting();
      throw;
    }
  }
  batches_ = ownBatches() + 1;
  batchThread_ = zo::threadNumber();
  return ZoResult::ok;
}

int ZoStdLayer::endBatch() {
  std::unique_ptr<zo::LayerChanges> changes;
  {
    const zo::Writing writing(*this);
    if (!writing || ownBatches() == 0) return ZoResult::refused;
    if (--batches_ == 0) changes = std::move(pending_);
    doneWriting();  // that of beginBatch
  }
  if (changes) tell(*changes);
  return ZoResult::ok;
}
