// Makes variants of what a parser reads in one of their written forms: text, XML, JSON.
#pragma once

#include <zo/results.h>
#include <zo/variant/variant.h>

#include <new>
#include <string_view>
#include <utility>

#include "variant/form_head.h"

namespace zo {

static_assert(ZoVariant::kGuid == static_cast<unsigned int>(VariantKind::Guid));

struct FormBuilder {
  using Value = ZoVariant;

  static ZoVariant::Type typeOf(const FormHead& head) noexcept {
    return static_cast<ZoVariant::Type>(head.kind);
  }
  // Code 0 goes with every kind: it is what a code that does not fit was made into.
  static bool head(const FormHead& head) {
    return static_cast<unsigned int>(head.code) == 0 ||
           ZoVariant::isFitting(head.code, typeOf(head));
  }
  static void makeEmpty(ZoVariant& out, const FormHead& head) {
    if (head.kind == VariantKind::Dict) {
      // A text of many small dictionaries must not take many large tables.
      constexpr unsigned int kFirstBuckets = 8;
      out = ZoVariant(ZoHashDict<ZoVariant, ZoString>(kFirstBuckets), head.code, head.flags);
    } else {
      out = ZoVariant(typeOf(head), head.code, head.flags);
    }
  }
  template <class T>
  static void make(ZoVariant& out, const FormHead& head, T payload) {
    out = ZoVariant(payload, head.code, head.flags);
  }
  static void make(ZoVariant& out, const FormHead& head, std::wstring_view text) {
    out = ZoVariant(ZoString(text), head.code, head.flags);
  }
  // Three components, or the weight of a point behind them.
  static void make(ZoVariant& out, const FormHead& head, const double (&c)[4]) {
    ZoPoint point(c[0], c[1], c[2]);
    point.w = c[3];
    if (head.kind == VariantKind::Point) {
      out = ZoVariant(point, head.code, head.flags);
    } else {
      make(out, head, {c[0], c[1], c[2]});
    }
  }
  static void make(ZoVariant& out, const FormHead& head, const double (&c)[3]) {
    out = head.kind == VariantKind::Point
              ? ZoVariant(ZoPoint(c[0], c[1], c[2]), head.code, head.flags)
              : ZoVariant(ZoVector(c[0], c[1], c[2]), head.code, head.flags);
  }
  static bool makeGuid(ZoVariant& out, const FormHead& head, std::wstring_view text) {
    _GUID guid;
    ZoString exact;
    if (ZoString2Guid(ZoString(text), guid) != ZoResult::ok) return false;
    // Short groups and the like are no GUID here: the text must be what would be written.
    ZoGuid2String(guid, exact);
    if (!exact.equals(text, ZoString::ignoreCase)) return false;
    out = ZoVariant(guid, head.code, head.flags);
    return true;
  }
  static ZoString key(std::wstring_view text) { return ZoString(text); }
  static bool addEntry(ZoVariant& dict, ZoString&& key, ZoVariant&& value) {
    const int result = dict.asDict()->insertAt(std::move(key), std::move(value));
    throwIfNoMemory(result);
    return result == ZoResult::ok;
  }
  static void addElement(ZoVariant& sequence, ZoVariant&& value) {
    if (sequence.asSequence()->append(std::move(value)) != ZoResult::ok) throw std::bad_alloc();
  }
};

}  // namespace zo
