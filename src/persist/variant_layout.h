// Variants in archives: what archive_layout.h leaves to those who know ZoVariant.
#pragma once

#include <zo/variant/variant.h>

#include <string_view>
#include <utility>

#include "persist/archive_access.h"

namespace zo {

static_assert(ZoVariant::kGuid == static_cast<unsigned int>(VariantKind::Guid));

inline bool isContainer(const ZoVariant& value) noexcept {
  return value.isTypeOf(ZoVariant::kDict) || value.isTypeOf(ZoVariant::kSequence);
}

// ---- Writing ----

template <class Archive>
void writeSequence(Archive& archive, const ZoVariant::Sequence& sequence) {
  archive.pushScope(L"List");
  archive.write(sequence.entries(), L"Entries");
  for (const ZoVariant& element : sequence) archive.write(element, L"");
  archive.popScope();
}

// Entries lie all over memory: some are fetched together, so that the waits for them overlap.
template <class Archive>
void writeDict(Archive& archive, const ZoVariant::Dict& dict) {
  constexpr unsigned int kTogether = 16;
  archive.pushScope(L"HashDictionary");
  archive.write(dict.entries(), L"Entries");
  DictCursor cursors[kTogether];
  unsigned int count = kTogether;
  for (DictCursor at; count == kTogether;) {
    for (count = 0; count < kTogether; ++count) {
      dict.walk(at);
      if (!at.node) break;
      cursors[count] = at;
      prefetch(static_cast<const ZoString*>(at.key)->data());
    }
    for (unsigned int i = 0; i < count; ++i) {
      archive.write(*static_cast<const ZoString*>(cursors[i].key), L"Key");
      archive.write(*static_cast<const ZoVariant*>(cursors[i].value), L"");
    }
  }
  archive.popScope();
}

// The value part alone; pointers in 4 bytes when `shortPointers`.
template <class Archive>
void writeVariantValue(Archive& archive, const ZoVariant& value, const wchar_t* name,
                       bool shortPointers) {
  switch (value.type()) {
    case ZoVariant::kInt:
      return archive.write(value.asInt(), name);
    case ZoVariant::kBigInt:
      return archive.write(value.asBigInt(), name);
    case ZoVariant::kReal:
      return archive.write(value.asReal(), name);
    case ZoVariant::kString: {
      const ZoString text = value.asString();
      // A client's archive is called with a pointer, which ends at the first zero. The bytes of the
      // two forms are the same, so an archive of our own need not look for one.
      if constexpr (std::is_same_v<Archive, ZoArchive>) {
        if (!text.contains(L'\0')) return archive.write(text.data(), name);
      }
      return archive.write(text, name);
    }
    case ZoVariant::kPointer: {
      const auto word = reinterpret_cast<std::uintptr_t>(value.asPointer());
      if (shortPointers) return archive.write(static_cast<unsigned int>(word), name);
      return archive.write(static_cast<std::uint64_t>(word), name);
    }
    case ZoVariant::kPoint:
      return archive.write(value.asPoint(), name);
    case ZoVariant::kVector:
      return archive.write(value.asVector(), name);
    case ZoVariant::kGuid:
      return archive.write(value.asGuid(), name);
    case ZoVariant::kDict:
      return writeDict(archive, *value.asDict());
    case ZoVariant::kSequence:
      return writeSequence(archive, *value.asSequence());
    default:
      return;
  }
}

template <class Archive>
void writeVariant(Archive& archive, const ZoVariant& value, bool shortPointers = false) {
  archive.write(static_cast<unsigned int>(value.code()), L"");
  archive.write(value.typeWord() & ~kReferenceBit, L"");
  writeVariantValue(archive, value, L"", shortPointers);
}

// ---- Reading ----

// The builder of readVariant.
struct VariantBuilder {
  static ZoTypeCode code(const VariantHead& head) { return static_cast<ZoTypeCode>(head.code); }
  static unsigned int flags(const VariantHead& head) { return head.typeWord >> 6; }

  template <class Payload>
  static void make(ZoVariant& value, const VariantHead& head, const Payload& payload) {
    if constexpr (std::is_unsigned_v<Payload>) {
      value = ZoVariant(reinterpret_cast<void*>(static_cast<std::uintptr_t>(payload)), code(head),
                        flags(head));
    } else {
      value = ZoVariant(payload, code(head), flags(head));
    }
  }
  static void makeEmpty(ZoVariant& value, const VariantHead& head) {
    const unsigned int kind = head.typeWord & kKindBits;
    const bool known = kind == ZoVariant::kDict || kind == ZoVariant::kSequence;
    value = ZoVariant(known ? static_cast<ZoVariant::Type>(kind) : ZoVariant::kEmpty, code(head),
                      flags(head));
  }
  static void readText(ZoVariant& value, const VariantHead& head, ZoArchive& archive) {
    ZoString text;
    archive.read(text);
    value = ZoVariant(std::move(text), code(head), flags(head));
  }
  // The same without the text in between.
  static void readText(ZoVariant& value, const VariantHead& head, ReadArchive& archive) {
    unsigned int count = 0;
    archive.read(count);
    zo::readText(archive, count, [&](std::wstring_view text) {
      value = ZoVariant(ArchiveAccess<ReadArchive>::sharedText(archive, text.data(), text.size()),
                        code(head), flags(head));
    });
  }
  template <class Archive>
  static void readGuid(ZoVariant& value, const VariantHead& head, Archive& archive) {
    _GUID guid{};
    archive.read(guid);
    value = ZoVariant(guid, code(head), flags(head));
  }

  static void readKey(ZoArchive& archive, ZoString& key) { archive.read(key); }
  static void readKey(ReadArchive& archive, ZoString& key) {
    unsigned int count = 0;
    archive.read(count);
    zo::readText(archive, count, [&](std::wstring_view text) {
      key = ArchiveAccess<ReadArchive>::sharedText(archive, text.data(), text.size());
    });
  }

  template <class Archive>
  static void readElement(ZoVariant& list, Archive& archive) {
    ZoVariant element;
    archive.read(element);
    if (ArchiveAccess<Archive>::cameShort(archive)) return;
    throwIfNoMemory(list.asSequence()->append(std::move(element)));
  }
  template <class Archive>
  static void readEntry(ZoVariant& dict, Archive& archive) {
    ZoString key;
    ZoVariant value;
    readKey(archive, key);
    archive.read(value);
    if (ArchiveAccess<Archive>::cameShort(archive)) return;
    // A key that is there already refuses the second value.
    throwIfNoMemory(dict.asDict()->insertAt(std::move(key), std::move(value)));
  }
};

template <class Archive>
void readVariant(Archive& archive, ZoVariant& value, bool shortPointers = false) {
  value.clear();
  VariantBuilder builder;
  readVariant(archive, builder, value, shortPointers);
}

}  // namespace zo
