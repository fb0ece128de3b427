#include "headless/headless_objects.h"

#include <zo/results.h>

#include <cwchar>
#include <new>
#include <utility>
#include <vector>

namespace zo {

HeadlessObjects::Object* HeadlessObjects::find(const ZoHnd& handle, std::wstring_view document,
                                               std::int64_t& id) {
  id = handle.id();
  const bool hasText = handle.isKindOf(ZoHnd::kText), hasId = handle.isKindOf(ZoHnd::kId);
  if (hasText && !hasId) {
    const Document* const place = documents_.at(document);
    const std::int64_t* const byText = place ? place->ids.at(handle.handle()) : nullptr;
    if (!byText) return nullptr;
    id = *byText;
  }
  const auto found = objects_.find(id);
  if (found == objects_.end()) return nullptr;
  return hasText && !equalTexts(found->second.handle, handle.handle()) ? nullptr : &found->second;
}

ZoHnd HeadlessObjects::add(const ZoString& document, ZoVariant value, const ZoString& layer) {
  Document& place = documentOf(document);
  wchar_t text[20];
  std::swprintf(text, std::size(text), L"%llX",
                static_cast<unsigned long long>(place.lastHandle + 1));
  const std::int64_t id = lastId_ + 1;
  const ZoString key(text);
  ZoHnd handle(text);
  handle.setId(id);
  const auto made =
      objects_.emplace(id, Object{std::move(value), layer, document.copy(), key.copy()}).first;
  try {
    if (place.ids.insertAt(key.copy(), id) != ZoResult::ok) throw std::bad_alloc();
    count(layer, 1);
  } catch (...) {
    place.ids.removeAt(key);
    objects_.erase(made);
    throw;
  }
  ++place.lastHandle;
  ++lastId_;
  return handle;
}

void HeadlessObjects::remove(std::int64_t id) {
  const auto found = objects_.find(id);
  if (found == objects_.end()) return;
  count(found->second.layer, -1);
  if (Document* const place = documents_.at(found->second.document))
    place->ids.removeAt(found->second.handle);
  objects_.erase(found);
}

void HeadlessObjects::removeDocument(std::wstring_view document) {
  const Document* const place = documents_.at(document);
  if (!place) return;
  std::vector<std::int64_t> ids;
  for (const auto [handle, id] : place->ids) ids.push_back(id);
  for (const std::int64_t id : ids) remove(id);
  documents_.removeAt(ZoString(document));
}

void HeadlessObjects::setLayer(Object& object, ZoString layer) {
  count(layer, 1);
  count(object.layer, -1);
  object.layer.swap(layer);
}

bool HeadlessObjects::isInUse(std::wstring_view layer) const { return onLayer_.contains(layer); }

void HeadlessObjects::layerRenamed(std::wstring_view from, std::wstring_view to) {
  const unsigned int* const objects = onLayer_.at(from);
  if (!objects) return;
  const ZoString oldName(from), newName(to);
  if (equalTexts(from, to)) return;
  throwIfNoMemory(onLayer_.insertAt(newName.copy(), *objects));
  onLayer_.removeAt(oldName);
  for (auto& [id, object] : objects_)
    if (equalTexts(object.layer, from)) object.layer = newName;
}

HeadlessObjects::Document& HeadlessObjects::documentOf(std::wstring_view name) {
  if (!documents_.contains(name)) throwIfNoMemory(documents_.insertAt(ZoString(name), Document()));
  return *documents_.at(name);
}

void HeadlessObjects::count(std::wstring_view layer, int step) {
  const ZoString key(layer);
  if (unsigned int* const objects = onLayer_.at(key)) {
    *objects += static_cast<unsigned int>(step);
    if (*objects == 0) onLayer_.removeAt(key);
  } else if (step > 0) {
    if (onLayer_.insertAt(key, 1U) != ZoResult::ok) throw std::bad_alloc();
  }
}

}  // namespace zo
