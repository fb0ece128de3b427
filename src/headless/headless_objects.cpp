#include "headless/headless_objects.h"

#include <zo/results.h>

#include <cwchar>
#include <utility>
#include <vector>

namespace zo {

HeadlessObjects::Object* HeadlessObjects::find(const ZoHnd& handle, std::wstring_view document,
                                               std::int64_t& id) {
  id = handle.id();
  if (handle.isKindOf(ZoHnd::kText)) {
    const Document* const place = documents_.at(document);
    const std::int64_t* const byText = place ? place->ids.at(handle.handle()) : nullptr;
    if (!byText || (handle.isKindOf(ZoHnd::kId) && *byText != id)) return nullptr;
    id = *byText;
  }
  const auto found = objects_.find(id);
  return found == objects_.end() ? nullptr : &found->second;
}

ZoHnd HeadlessObjects::add(const ZoString& document, ZoVariant value, ZoString layer) {
  Document& place = documentOf(document);
  wchar_t text[20];
  std::swprintf(text, std::size(text), L"%llX",
                static_cast<unsigned long long>(place.lastHandle + 1));
  const std::int64_t id = lastId_ + 1;
  ZoHnd handle(text);
  handle.setId(id);
  Object object{std::move(value), layer, document.copy(), ZoString(text)};
  const auto made = objects_.emplace(id, std::move(object)).first;
  try {
    throwIfNoMemory(place.ids.insertAt(ZoString(text), id));
    count(layer, 1);
  } catch (...) {
    place.ids.removeAt(ZoString(text));
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
  const unsigned int number = *objects;
  onLayer_.removeAt(ZoString(from));
  throwIfNoMemory(onLayer_.insertAt(ZoString(to), number));
  for (auto& [id, object] : objects_)
    if (equalTexts(object.layer, from)) object.layer = ZoString(to);
}

HeadlessObjects::Document& HeadlessObjects::documentOf(std::wstring_view name) {
  if (!documents_.contains(name)) throwIfNoMemory(documents_.insertAt(ZoString(name), Document()));
  return *documents_.at(name);
}

void HeadlessObjects::count(std::wstring_view layer, int step) {
  if (unsigned int* const objects = onLayer_.at(layer)) {
    *objects += static_cast<unsigned int>(step);
    if (*objects == 0) onLayer_.removeAt(ZoString(layer));
  } else if (step > 0) {
    throwIfNoMemory(onLayer_.insertAt(ZoString(layer), 1U));
  }
}

}  // namespace zo
