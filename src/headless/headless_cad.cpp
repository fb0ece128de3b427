#include <zo/headless/headless_cad.h>
#include <zo/results.h>
#include <zo/system/layer.h>
#include <zo/text/containers/array.h>

#include <utility>

#include "headless/headless_objects.h"
#include "system/first_failure.h"
#include "system/service_or_null.h"
#include "system/service_scope.h"

namespace {

// A layer that is there, and stays there under its name while this lasts. It is made before the
// guard is taken: the layer service takes its own one first when it asks here.
class HeldLayer {
 public:
  HeldLayer(ZoLayer& layers, const ZoString& wanted) : batch_(layers) {
    ZoLayerData data;
    if (batch_.isOpen() && layers.get(wanted, data) == ZoResult::ok) name = data.name.copy();
  }
  ZoString name;  // empty without it

 private:
  ZoLayerBatch batch_;
};

bool isLocked(const ZoString& layer) {
  auto* const layers = zo::serviceOrNull<ZoLayer>();
  ZoLayerData data;
  return layers && layers->get(layer, data) == ZoResult::ok && data.locked;
}

}  // namespace

ZoHeadlessCad::ZoHeadlessCad() : objects_(std::make_unique<zo::HeadlessObjects>()) {}
ZoHeadlessCad::~ZoHeadlessCad() = default;

bool ZoHeadlessCad::isPresent() { return true; }

int ZoHeadlessCad::openDocument(const ZoString& name) {
  int code = ZoResult::ok;
  zo::FirstFailure failure;  // of a reactor: it is open all the same
  failure.run([&] { code = documentOpened(name); });
  if (code == ZoResult::ok) failure.run([&] { code = documentActivated(name); });
  failure.rethrow();
  return code;
}

int ZoHeadlessCad::activateDocument(const ZoString& name) { return documentActivated(name); }

int ZoHeadlessCad::closeDocument(const ZoString& name) { return documentClosed(name); }

void ZoHeadlessCad::documentEnds(const ZoString& name) { objects_->removeDocument(name); }

namespace {

// One operation on an object under the guard.
template <class Scope, class Call>
int withObject(ZoHeadlessCad& cad, zo::HeadlessObjects& objects, const ZoHnd& handle, Call call) {
  const Scope scope(cad);
  ZoString document;
  if (!scope || cad.getDocument(document) != ZoResult::ok) return ZoResult::refused;
  std::int64_t id = 0;
  auto* const object = objects.find(handle, document, id);
  if (!object) return ZoResult::refused;
  return call(*object, id);
}

}  // namespace

using Object = zo::HeadlessObjects::Object;

bool ZoHeadlessCad::exists(const ZoHnd& object) {
  return withObject<zo::Reading>(*this, *objects_, object, [](const Object&, std::int64_t) {
           return ZoResult::ok;
         }) == ZoResult::ok;
}

int ZoHeadlessCad::prompt(const ZoString& text) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  objects_->prompts.push_back(text.copy());
  if (objects_->prompts.size() > kMostPrompts) objects_->prompts.pop_front();
  return ZoResult::ok;
}

bool ZoHeadlessCad::isLayerInUse(const ZoString& layer) {
  const zo::Reading reading(*this);
  return !reading || objects_->isInUse(layer);  // who cannot tell had better say yes
}

void ZoHeadlessCad::layerRenamed(const ZoString& from, const ZoString& to) {
  const zo::Writing writing(*this);
  if (writing) objects_->layerRenamed(from, to);
}

int ZoHeadlessCad::addObject(const ZoVariant& object, ZoHnd& handle) {
  auto* const layers = zo::serviceOrNull<ZoLayer>();
  ZoString current;
  if (!layers || layers->getCurrent(current) != ZoResult::ok) return ZoResult::refused;
  return addObject(object, current, handle);
}

int ZoHeadlessCad::addObject(const ZoVariant& object, const ZoString& layer, ZoHnd& handle) {
  auto* const layers = zo::serviceOrNull<ZoLayer>();
  if (!layers) return ZoResult::refused;
  ZoVariant value = object.copy();
  HeldLayer held(*layers, layer);
  if (held.name.isEmpty()) return ZoResult::refused;
  const zo::Writing writing(*this);
  ZoString document;
  if (!writing || getDocument(document) != ZoResult::ok) return ZoResult::refused;
  handle = objects_->add(document, std::move(value), std::move(held.name));
  return ZoResult::ok;
}

int ZoHeadlessCad::getObject(const ZoHnd& handle, ZoVariant& object) {
  return withObject<zo::Reading>(*this, *objects_, handle, [&](const Object& found, std::int64_t) {
    object = found.value.copy();
    return ZoResult::ok;
  });
}

int ZoHeadlessCad::setObject(const ZoHnd& handle, const ZoVariant& object) {
  ZoString layer;
  if (getObjectLayer(handle, layer) != ZoResult::ok || isLocked(layer)) return ZoResult::refused;
  ZoVariant value = object.copy();
  return withObject<zo::Writing>(*this, *objects_, handle, [&](Object& found, std::int64_t) {
    found.value.swap(value);
    return ZoResult::ok;
  });
}

int ZoHeadlessCad::removeObject(const ZoHnd& handle) {
  ZoString layer;
  if (getObjectLayer(handle, layer) != ZoResult::ok || isLocked(layer)) return ZoResult::refused;
  return withObject<zo::Writing>(*this, *objects_, handle, [&](const Object&, std::int64_t id) {
    objects_->remove(id);
    return ZoResult::ok;
  });
}

int ZoHeadlessCad::getObjects(ZoSequence<ZoHnd>& handles) {
  ZoArray<ZoHnd> found;
  {
    const zo::Reading reading(*this);
    ZoString document;
    if (!reading || getDocument(document) != ZoResult::ok) return ZoResult::refused;
    for (const auto& [id, object] : objects_->all()) {
      if (!zo::equalTexts(object.document, document)) continue;
      ZoHnd handle(object.handle.data());
      handle.setId(id);
      zo::throwIfNoMemory(found.append(std::move(handle)));
    }
  }
  return handles.copyFrom(found);
}

int ZoHeadlessCad::getHandle(const ZoHnd& part, ZoHnd& handle) {
  return withObject<zo::Reading>(*this, *objects_, part, [&](const Object& found, std::int64_t id) {
    ZoHnd whole(found.handle.data());
    whole.setId(id);
    handle.swap(whole);
    return ZoResult::ok;
  });
}

int ZoHeadlessCad::getObjectLayer(const ZoHnd& handle, ZoString& layer) {
  return withObject<zo::Reading>(*this, *objects_, handle, [&](const Object& found, std::int64_t) {
    layer = found.layer.copy();
    return ZoResult::ok;
  });
}

int ZoHeadlessCad::setObjectLayer(const ZoHnd& handle, const ZoString& layer) {
  auto* const layers = zo::serviceOrNull<ZoLayer>();
  if (!layers) return ZoResult::refused;
  HeldLayer held(*layers, layer);
  ZoString before;
  if (held.name.isEmpty() || getObjectLayer(handle, before) != ZoResult::ok || isLocked(before))
    return ZoResult::refused;
  return withObject<zo::Writing>(*this, *objects_, handle, [&](Object& found, std::int64_t) {
    objects_->setLayer(found, std::move(held.name));
    return ZoResult::ok;
  });
}

int ZoHeadlessCad::takePrompts(ZoSequence<ZoString>& prompts) {
  const zo::Writing writing(*this);
  if (!writing) return ZoResult::refused;
  ZoArray<ZoString> taken;
  for (const ZoString& text : objects_->prompts) zo::throwIfNoMemory(taken.append(text));
  if (const int code = prompts.copyFrom(taken)) return code;
  objects_->prompts.clear();
  return ZoResult::ok;
}
