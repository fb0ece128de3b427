// How variants look in a failed assertion, and deep ones are made.
#pragma once

#include <zo/variant/variant.h>

#include <ostream>
#include <utility>

#include "support/printers.h"

inline void PrintTo(const ZoVariant& value, std::ostream* out) {
  *out << (value.isReference() ? "reference: " : "");
  PrintTo(value.format(), out);
}

// The value as the only element of a sequence, without copying it.
inline ZoVariant inSequence(ZoVariant value) {
  ZoArray<ZoVariant> array;
  static_cast<void>(array.append(std::move(value)));
  return ZoVariant(std::move(array));
}
inline ZoVariant inDict(ZoVariant value) {
  ZoHashDict<ZoVariant, ZoString> dict(1);
  static_cast<void>(dict.insertAt(L"k", std::move(value)));
  return ZoVariant(std::move(dict));
}

// The value so many levels deep, in sequences, dictionaries and lists by turns.
inline ZoVariant nested(unsigned int levels, ZoVariant value = ZoVariant(L"innermost")) {
  for (unsigned int level = 0; level < levels; ++level) {
    if (level % 3 == 1) {
      value = inDict(std::move(value));
    } else if (level % 3 == 2) {
      ZoList<ZoVariant> list;
      EXPECT_EQ(list.emplace(1), 0);
      EXPECT_EQ(list.append(std::move(value)), 0);
      value = ZoVariant(std::move(list));
    } else {
      value = inSequence(std::move(value));
    }
  }
  return value;
}
