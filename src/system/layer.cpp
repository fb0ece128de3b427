#include <zo/results.h>
#include <zo/system/layer.h>

int ZoLayer::add(const ZoLayerData&) { return ZoResult::refused; }
int ZoLayer::ensure(const ZoLayerData& layer) {
  return exists(layer.name) ? ZoResult::ok : add(layer);
}
int ZoLayer::get(const ZoString&, ZoLayerData&) { return ZoResult::refused; }
int ZoLayer::getNames(ZoSequence<ZoString>&, const ZoString&) { return ZoResult::refused; }
int ZoLayer::change(const ZoString&, const ZoLayerData&, ZoLayerData::Fields) {
  return ZoResult::refused;
}
int ZoLayer::rename(const ZoString&, const ZoString&) { return ZoResult::refused; }
int ZoLayer::remove(const ZoString&) { return ZoResult::refused; }
int ZoLayer::saveState(const ZoString&) { return ZoResult::refused; }
int ZoLayer::restoreState(const ZoString&, ZoLayerData::Fields) { return ZoResult::refused; }
int ZoLayer::removeState(const ZoString&) { return ZoResult::refused; }
int ZoLayer::getStates(ZoSequence<ZoString>&) { return ZoResult::refused; }
int ZoLayer::toVariant(ZoVariant&) { return ZoResult::refused; }
int ZoLayer::fromVariant(const ZoVariant&) { return ZoResult::refused; }
int ZoLayer::beginBatch() { return ZoResult::ok; }
int ZoLayer::endBatch() { return ZoResult::ok; }
