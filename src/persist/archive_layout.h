// How every type of value lies in an archive, in terms of its components: docs/formats/archive.md.
// Written once for all archives. Over ZoArchive the components go through its virtual functions;
// over the archives of buffered_archive.h, whose functions are final, the compiler sees through
// them.
//
// This file needs no Windows header: it is fuzzed natively.
#pragma once

#include <zo/geometry/co_system.h>
#include <zo/geometry/matrix.h>
#include <zo/geometry/plane.h>
#include <zo/geometry/point.h>
#include <zo/geometry/tol.h>
#include <zo/geometry/vector.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "variant/kinds.h"

namespace zo {

// What the layout asks of an archive beside its own functions; specialised for each that reads:
//   static bool fill(Archive&, void* buffer, unsigned int size, const wchar_t* message)
//                                          false: the data ended, and the buffer is zeros. Archives
//                                          that throw then take the message, and give true
//   static bool cameShort(Archive&)        whether the last thing read met the end of the data
// and for each that reads or writes variants:
//   static bool enter(Archive&)            one container deeper; false: it may not lie so deep
//   static void leave(Archive&)            after each enter that gave true
template <class Archive>
struct ArchiveAccess;

// One container deeper, as long as it lives.
template <class Archive>
class Nesting {
 public:
  explicit Nesting(Archive& archive)
      : archive_(archive), entered_(ArchiveAccess<Archive>::enter(archive)) {}
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;
  ~Nesting() {
    if (entered_) ArchiveAccess<Archive>::leave(archive_);
  }
  explicit operator bool() const noexcept { return entered_; }

 private:
  Archive& archive_;
  bool entered_;
};

// Do not change: part of the format.
inline constexpr unsigned int kKindBits = 0x1F;
inline constexpr unsigned int kReferenceBit = 0x20;

// The predefined vectors and planes by their codes.
struct AxisCode {
  signed char code;
  const ZoVector& vector;
};
inline constexpr AxisCode kVectorCodes[] = {{1, ZoVector::s_xAxis},     {2, ZoVector::s_yAxis},
                                            {3, ZoVector::s_zAxis},     {-1, ZoVector::s_negXAxis},
                                            {-2, ZoVector::s_negYAxis}, {-3, ZoVector::s_negZAxis}};
struct PlaneCode {
  signed char code;
  const ZoPlane& plane;
};
inline constexpr PlaneCode kPlaneCodes[] = {
    {1, ZoPlane::s_normalZ},     {2, ZoPlane::s_normalX},     {3, ZoPlane::s_normalY},
    {-1, ZoPlane::s_normalNegZ}, {-2, ZoPlane::s_normalNegX}, {-3, ZoPlane::s_normalNegY}};

// ---- Geometry ----

template <class Archive>
void writePoint(Archive& archive, const ZoPoint& value) {
  archive.write(value.x, L"");
  archive.write(value.y, L"");
  archive.write(value.z, L"");
}
template <class Archive>
void readPoint(Archive& archive, ZoPoint& value) {
  double x = 0, y = 0, z = 0;
  archive.read(x);
  archive.read(y);
  archive.read(z);
  value = ZoPoint(x, y, z);
}

template <class Archive>
void writeVector(Archive& archive, const ZoVector& value, const wchar_t* name) {
  for (const AxisCode& axis : kVectorCodes) {
    if (value.isEqualTo(axis.vector)) return archive.write(axis.code, name);
  }
  archive.write(static_cast<signed char>(0), L"");
  archive.write(value.x, L"");
  archive.write(value.y, L"");
  archive.write(value.z, L"");
}
template <class Archive>
void readVector(Archive& archive, ZoVector& value) {
  signed char code = 0;
  archive.read(code);
  for (const AxisCode& axis : kVectorCodes) {
    if (axis.code == code) {
      value = axis.vector;
      return;
    }
  }
  double x = 0, y = 0, z = 0;
  archive.read(x);
  archive.read(y);
  archive.read(z);
  value = ZoVector(x, y, z);
}

template <class Archive>
void writePlane(Archive& archive, const ZoPlane& value) {
  for (const PlaneCode& plane : kPlaneCodes) {
    if (value.isEqualTo(plane.plane)) return archive.write(plane.code, L"");
  }
  archive.write(static_cast<signed char>(0), L"");
  ZoVector unit;
  static_cast<void>(value.normal().normal(unit));  // a plane without a normal has a code
  const double numbers[] = {unit.x, unit.y, unit.z, value.signedDistanceTo(ZoPoint())};
  archive.writeBin(numbers, sizeof numbers, L"");
}
template <class Archive>
void readPlane(Archive& archive, ZoPlane& value) {
  signed char code = 0;
  archive.read(code);
  for (const PlaneCode& plane : kPlaneCodes) {
    if (plane.code == code) {
      value = plane.plane;
      return;
    }
  }
  double numbers[4];  // zeros where the data ended
  ArchiveAccess<Archive>::fill(archive, numbers, sizeof numbers,
                               L"The archive ends within a plane");
  const ZoVector normal(numbers[0], numbers[1], numbers[2]);
  value = ZoPlane(ZoPoint() - normal * numbers[3], normal);
}

template <class Archive>
void writeMatrix(Archive& archive, const ZoMatrix& value) {
  for (int i = 0; i < 16; ++i) archive.write(value.asDblArray()[i], L"");
}
template <class Archive>
void readMatrix(Archive& archive, ZoMatrix& value) {
  double numbers[16] = {};
  for (double& number : numbers) archive.read(number);
  std::copy_n(numbers, 16, value.asDblArray());
}

template <class Archive>
void writeCoSystem(Archive& archive, const ZoCoSystem& value) {
  archive.write(value.origin(), L"");
  archive.write(value.xAxis(), L"");
  archive.write(value.yAxis(), L"");
}
template <class Archive>
void readCoSystem(Archive& archive, ZoCoSystem& value) {
  ZoPoint origin;
  ZoVector x, y;
  archive.read(origin);
  archive.read(x);
  archive.read(y);
  value = ZoCoSystem::fromAxes(origin, x, y);
}

template <class Archive>
void writeTol(Archive& archive, const ZoTol& value) {
  archive.write(value.getPntTol(), L"");
  archive.write(value.getVecTol(), L"");
}
template <class Archive>
void readTol(Archive& archive, ZoTol& value) {
  double point = 0, vector = 0;
  archive.read(point);
  archive.read(vector);
  value = ZoTol(point, vector);
}

// ---- Texts ----

// As many characters as the archive really holds, up to count: the piece that is asked for is never
// larger than what has arrived. Unit is a type of two bytes, or one for 8-bit text. False, and an
// empty text, when the data ended before.
template <class Archive, class Unit>
bool readUnits(Archive& archive, std::uint32_t count, std::basic_string<Unit>& out) {
  constexpr std::size_t kFirstPiece = 4096;
  out.clear();
  while (out.size() < count) {
    const std::size_t have = out.size();
    const std::size_t piece = std::min<std::size_t>(count - have, std::max(have, kFirstPiece));
    out.resize(have + piece);
    if (!ArchiveAccess<Archive>::fill(archive, out.data() + have,
                                      static_cast<unsigned int>(piece * sizeof(Unit)),
                                      L"The archive ends within a text")) {
      out.clear();
      return false;
    }
  }
  return true;
}

// ---- Variants ----

// The two words in front of every variant, as they stand.
struct VariantHead {
  unsigned int code = 0;
  unsigned int typeWord = 0;
};

template <class Payload, class Archive, class Builder, class Value>
void readPayload(Archive& archive, Builder& builder, Value& value, const VariantHead& head) {
  Payload payload{};
  archive.read(payload);
  builder.make(value, head, payload);
}

// Builder makes the values, of a type of its own:
//   void make(Value&, head, payload)       int, int64, double, pointer (uint32 or uint64), ZoPoint,
//                                          ZoVector
//   void readText(Value&, head, Archive&)
//   void readGuid(Value&, head, Archive&)
//   void makeEmpty(Value&, head)           an empty value or container
//   void readEntry(Value& dict, Archive&)  reads a key and a value, and adds them when they are
//                                          whole; likewise
//   void readElement(Value& list, Archive&)
// Pointers take 4 bytes when `shortPointers`.
template <class Archive, class Builder, class Value>
void readVariant(Archive& archive, Builder& builder, Value& value, bool shortPointers) {
  using Access = ArchiveAccess<Archive>;
  VariantHead head;
  archive.read(head.code);
  archive.read(head.typeWord);
  const auto kind = static_cast<VariantKind>(head.typeWord & kKindBits);
  switch (kind) {
    case VariantKind::Int:
      return readPayload<int>(archive, builder, value, head);
    case VariantKind::BigInt:
      return readPayload<std::int64_t>(archive, builder, value, head);
    case VariantKind::Real:
      return readPayload<double>(archive, builder, value, head);
    case VariantKind::String:
      return builder.readText(value, head, archive);
    case VariantKind::Pointer:
      if (shortPointers) return readPayload<unsigned int>(archive, builder, value, head);
      return readPayload<std::uint64_t>(archive, builder, value, head);
    case VariantKind::Point:
      return readPayload<ZoPoint>(archive, builder, value, head);
    case VariantKind::Vector:
      return readPayload<ZoVector>(archive, builder, value, head);
    case VariantKind::Guid:
      return builder.readGuid(value, head, archive);
    case VariantKind::Dict:
    case VariantKind::Sequence:
      break;
    default:
      return builder.makeEmpty(value, head);
  }
  builder.makeEmpty(value, head);
  const Nesting<Archive> deeper(archive);
  if (!deeper) return;
  unsigned int entries = 0;
  for (archive.read(entries); entries > 0; --entries) {
    if (kind == VariantKind::Dict) {
      builder.readEntry(value, archive);
    } else {
      builder.readElement(value, archive);
    }
    if (Access::cameShort(archive)) return;
  }
}

}  // namespace zo
