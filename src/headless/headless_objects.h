// The objects of documents in memory, under the service's guard.
#pragma once

#include <zo/names/handle.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/text_keys.h>
#include <zo/variant/variant.h>

#include <cstdint>
#include <deque>
#include <map>
#include <string_view>
#include <unordered_map>

namespace zo {

class HeadlessObjects {
 public:
  struct Object {
    ZoVariant value;
    ZoString layer;
    ZoString document;
    ZoString handle;
  };

  // Null without one.
  [[nodiscard]] Object* find(const ZoHnd& handle, std::wstring_view document, std::int64_t& id);
  // Takes over a value and a layer that nobody shares.
  [[nodiscard]] ZoHnd add(const ZoString& document, ZoVariant value, const ZoString& layer);
  void remove(std::int64_t id);
  void removeDocument(std::wstring_view document);
  void setLayer(Object& object, ZoString layer);

  [[nodiscard]] const std::map<std::int64_t, Object>& all() const noexcept { return objects_; }
  [[nodiscard]] bool isInUse(std::wstring_view layer) const;
  void layerRenamed(std::wstring_view from, std::wstring_view to);

  std::deque<ZoString> prompts;

 private:
  struct Document {
    std::int64_t lastHandle = 0;
    ZoHashDict<std::int64_t, ZoString> ids;  // by handle
  };

  Document& documentOf(std::wstring_view name);
  void count(std::wstring_view layer, int step);

  std::map<std::int64_t, Object> objects_;  // by id, and so in the order of making
  ZoHashDict<Document, ZoString> documents_;
  ZoHashDict<unsigned int, ZoString> onLayer_;  // how many
  std::int64_t lastId_ = 0;
};

}  // namespace zo
