// What a notice about layers tells.
#pragma once

#include <zo/text/containers/array.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/text_keys.h>
#include <zo/variant/variant.h>

#include <string_view>

namespace zo {

class LayerChanges {
 public:
  enum Kind { kAdded, kChanged, kRemoved };

  void note(Kind kind, std::wstring_view name);
  void renamed(std::wstring_view from, std::wstring_view to);
  void current(std::wstring_view name) { current_ = ZoString(name); }
  void states() noexcept { states_ = true; }

  // What happened later.
  void append(const LayerChanges& later);
  [[nodiscard]] bool isEmpty() const noexcept;
  // As zo/system/layer.h says.
  [[nodiscard]] ZoVariant asVariant() const;

 private:
  // Each name once, in the order of what happened.
  struct Names {
    ZoArray<ZoVariant> inOrder;
    ZoHashDict<bool, ZoString> seen;
  };

  Names names_[3];
  ZoArray<ZoVariant> renamed_;
  ZoString current_;
  bool states_ = false;
};

}  // namespace zo
