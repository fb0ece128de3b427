// Every type of value with its bytes in an archive and its entry in the dump.
#pragma once

#include <zo/archive.h>
#include <zo/files.h>
#include <zo/geometry.h>
#include <zo/system/exception.h>
#include <zo/variant.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "persist/memory_streams.h"

namespace zo::test {

// Only the byte primitives: everything else is ZoArchive's.
class PlainArchive final : public ZoArchive {
 public:
  explicit PlainArchive(ByteVector stored = {}) : bytes(std::move(stored)) {}
  bool isStoring() override { return false; }
  using ZoArchive::read, ZoArchive::write;
  void readBin(void* buffer, unsigned int size) override {
    const std::size_t got = std::min<std::size_t>(size, bytes.size() - at);
    std::copy_n(bytes.data() + at, got, static_cast<unsigned char*>(buffer));
    at += got;
    if (got < size) cameShort();
  }
  void writeBin(const void* data, unsigned int size, const wchar_t*) override {
    const auto* const first = static_cast<const unsigned char*>(data);
    bytes.insert(bytes.end(), first, first + size);
  }
  bool isdrftfilefiler() const override { return shortPointers; }
  ByteVector bytes;
  std::size_t at = 0;
  bool shortPointers = false;
};

struct ArchivedValue {
  ByteVector bytes;
  std::wstring dump;
  std::function<void(ZoArchive&)> write;
  // Reads a value, in the place of the one at hand or of a fresh one, and writes what was read, or
  // what a throw has left.
  std::function<void(ZoArchive& from, bool fresh, ZoArchive& to)> pass;
};

// Blanks count for nothing.
inline ByteVector bytesOf(std::string_view hexadecimal) {
  ByteVector bytes;
  std::string digits;
  for (const char c : hexadecimal) {
    if (c != ' ') digits += c;
    if (digits.size() < 2) continue;
    bytes.push_back(static_cast<unsigned char>(std::stoul(digits, nullptr, 16)));
    digits.clear();
  }
  return bytes;
}

template <class T>
void readAndWrite(ZoArchive& from, T& value, ZoArchive& to) {
  try {
    from.read(value);
  } catch (const ZoComException&) {
    to.write(value, L"");
    throw;
  }
  to.write(value, L"");
}

template <class T>
ArchivedValue row(T value, std::string_view bytes, const wchar_t* dump) {
  return {bytesOf(bytes), dump,
          [=](ZoArchive& to) {
            T own = value;
            to.write(own, L"");
          },
          [=](ZoArchive& from, bool fresh, ZoArchive& to) {
            if constexpr (std::is_same_v<T, const wchar_t*>) {
              wchar_t* text = fresh ? nullptr : const_cast<wchar_t*>(value);
              readAndWrite(from, text, to);
              if (text != value) delete[] text;
            } else {
              T own = fresh ? T{} : value;
              readAndWrite(from, own, to);
            }
          }};
}

inline ZoFileName slashed() {
  ZoFileName name(L"a\\b");
  name.setDelimiter(L'/');
  return name;
}
inline ZoVariant list() {
  return ZoVariant(ZoArray<ZoVariant>{ZoVariant(7), ZoVariant(L"x", ZoTypeCode::FName), {}});
}
inline ZoVariant dict() {
  ZoHashDict<ZoVariant, ZoString> entries;
  EXPECT_EQ(entries.insertAt(L"Key", list()), 0);
  return ZoVariant(std::move(entries), ZoTypeCode::Part, ZoFlagConstant);
}

#define ONE "000000000000F03F "
#define TWO "0000000000000040 "
#define THREE "0000000000000840 "
#define ZERO "0000000000000000 "
#define LIST                                                                   \
  "00270000 09000000 03000000"      /* code Sequence, kind 9, three entries */ \
  "00210000 01000000 07000000"      /* Int 7 */                                \
  "01240000 04000000 01000000 7800" /* FName, x */                             \
  "00200000 00000000"               /* nothing */

inline const std::vector<ArchivedValue>& archivedValues() {
  constexpr _GUID kGuid = {0x6F9619FF, 0x8B86, 0xD011, {0xB4, 0x2D, 0, 0xC0, 0x4F, 0xC9, 0x64, 1}};
  const wchar_t* const kGuidDump = L"GUID: {6F9619FF-8B86-d011-B42D-00C04FC96401}";
  static double variable = 1;
  const ZoMatrix matrix({1, 2, 3, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2});
  static const std::vector<ArchivedValue> values{
      row(true, "01", L"Bool: true"),
      row(static_cast<signed char>(-2), "FE", L"Int8: -2"),
      row(static_cast<unsigned char>(254), "FE", L"UInt8: 254"),
      row(static_cast<short>(-2), "FEFF", L"Int16: -2"),
      row(static_cast<unsigned short>(0x1234), "3412", L"UInt16: 4660"),
      row(-2, "FEFFFFFF", L"Int32: -2"),
      row(0x12345678U, "78563412", L"UInt32: 305419896"),
      row(std::int64_t{-2}, "FEFFFFFFFFFFFFFF", L"UInt64: 4294967294 (trimmed to 32 bit)"),
      row(std::uint64_t{0x1FFFFFFFE}, "FEFFFFFF01000000", L"Int64: -2 (trimmed to 32 bit)"),
      row(1.0, ONE, L"Real: 1"),
      row<const wchar_t*>(nullptr, "00000000", L"String: \"\""),
      row<const wchar_t*>(L"%s\x20AC", "03000000 2500 7300 AC20", L"String: \"%s\x20AC\""),
      row(ZoString(L"A\0B", 3), "03000000 4100 0000 4200", L"String: \"A\""),
      row(ZoColor(1, 2, 3), "01020366", L"Color: 102 (1 2 3)"),
      row(kGuid, "FF19966F 868B 11D0 B42D00C04FC96401", kGuidDump),
      row(ZoFileName(L"C:\\b"), "5C 0400 4300 3A00 5C00 6200", L"FileName: \"C:\\b\""),
      row(slashed(), "2F 0300 6100 5C00 6200", L"FileName: \"a\\b\""),
      row(ZoPoint(1, 2, 3), ONE TWO THREE, L"Point: (1, 2, 3)"),
      row(ZoVector(1, 2, 3), "00" ONE TWO THREE, L"Vector: (1, 2, 3)"),
      row(ZoVector::s_xAxis, "01", L"Vector: (1, 0, 0)"),
      row(ZoVector::s_yAxis, "02", L"Vector: (0, 1, 0)"),
      row(ZoVector(0, 0, 1 + 1e-11), "03", L"Vector: (0, 0, 1)"),
      row(ZoVector::s_negXAxis, "FF", L"Vector: (-1, 0, 0)"),
      row(ZoVector::s_negYAxis, "FE", L"Vector: (0, -1, 0)"),
      row(ZoVector::s_negZAxis, "FD", L"Vector: (0, 0, -1)"),
      row(ZoPlane(ZoPoint(1, 2, 3), ZoVector(0, 0, 2)), "00" ZERO ZERO ONE "00000000000008C0",
          L"Plane: RefPnt(1, 2, 3) Normal(0, 0, 2)"),
      row(ZoPlane::s_normalZ, "01", L"Plane: RefPnt(0, 0, 0) Normal(0, 0, 1)"),
      row(ZoPlane(ZoPoint(1, 2, 3), ZoVector::s_xAxis, ZoVector::s_xAxis), "01",
          L"Plane: RefPnt(1, 2, 3) Normal(0, 0, 0)"),
      row(ZoPlane::s_normalX, "02", L"Plane: RefPnt(0, 0, 0) Normal(1, 0, 0)"),
      row(ZoPlane::s_normalY, "03", L"Plane: RefPnt(0, 0, 0) Normal(0, 1, 0)"),
      row(ZoPlane::s_normalNegZ, "FF", L"Plane: RefPnt(0, 0, 0) Normal(0, 0, -1)"),
      row(ZoPlane::s_normalNegX, "FE", L"Plane: RefPnt(0, 0, 0) Normal(-1, 0, 0)"),
      row(ZoPlane::s_normalNegY, "FD", L"Plane: RefPnt(0, 0, 0) Normal(0, -1, 0)"),
      row(matrix, ONE TWO THREE ZERO ZERO ONE ZERO ZERO ZERO ZERO ONE ZERO ZERO ZERO ZERO TWO,
          L"Matrix:\n   (1 2 3 0)\n   (0 1 0 0)\n   (0 0 1 0)\n   (0 0 0 2)"),
      row(ZoCoSystem(ZoPoint(1, 2, 3), ZoVector::s_yAxis, ZoVector::s_zAxis), ONE TWO THREE "02 03",
          L"CoordSystem:\n   Origin(1, 2, 3)\n   X-Axis(0, 1, 0)\n   Y-Axis(0, 0, 1)"),
      row(ZoTol(1, 2), ONE TWO, L"Tolerance: 1(Pnt) 2(Vec)"),
      row(ZoHnd(), "00000000", L"Handle: \"\" 0"),
      row(ZoHnd(L"1F"), "01000000 02000000 3100 4600", L"Handle: \"1F\" 0"),
      row(ZoVariant(), "00200000 00000000", L""),
      row(ZoVariant(-2, ZoTypeCode::Bool, ZoFlagVisible), "03210000 81000000 FEFFFFFF",
          L"Int32: -2"),
      row(ZoVariant(std::int64_t{-2}), "00220000 02000000 FEFFFFFFFFFFFFFF",
          L"UInt64: 4294967294 (trimmed to 32 bit)"),
      row(ZoVariant(1.0, ZoTypeCode::Length), "01230000 03000000" ONE, L"Real: 1"),
      row(ZoVariant(L"ab"), "00240000 04000000 02000000 6100 6200", L"String: \"ab\""),
      row(ZoVariant(ZoString(L"a\0b", 3)), "00240000 04000000 03000000 6100 0000 6200",
          L"String: \"a\""),
      row(ZoVariant(reinterpret_cast<void*>(0x123456789A)), "00290000 05000000 9A78563412000000",
          L"Int64: 878082202 (trimmed to 32 bit)"),
      row(ZoVariant(ZoPoint(1, 2, 3)), "00250000 06000000" ONE TWO THREE, L"Point: (1, 2, 3)"),
      row(ZoVariant(ZoVector::s_yAxis), "00260000 07000000 02", L"Vector: (0, 1, 0)"),
      row(ZoVariant(kGuid), "FF220000 0A000000 FF19966F 868B 11D0 B42D00C04FC96401", kGuidDump),
      row(ZoVariant(1, ZoTypeCode::Length), "00000000 01000000 01000000", L"Int32: 1"),
      row(ZoVariant(&variable), "00230000 03000000" ONE, L"Real: 1"),
      row(dict(), "05280000 08010000 01000000 03000000 4B00 6500 7900" LIST,
          L"HashDictionary\n   Entries: 1\n   Key: \"Key\"\n   List\n"
          L"      Entries: 3\n      Int32: 7\n      String: \"x\""),
  };
  return values;
}

inline void writeAll(ZoArchive& to) {
  for (const ArchivedValue& value : archivedValues()) value.write(to);
}

inline ByteVector passed(const ArchivedValue& value, ZoArchive& from, bool fresh = true,
                         ByteVector* left = nullptr) {
  PlainArchive to;
  try {
    value.pass(from, fresh, to);
  } catch (const ZoComException&) {
    if (left) *left = to.bytes;
    throw;
  }
  return to.bytes;
}

inline void expectAll(ZoArchive& from) {
  for (const ArchivedValue& value : archivedValues())
    EXPECT_EQ(passed(value, from), value.bytes) << testing::PrintToString(value.dump);
}

// The exception that `use` throws, as "POSITION MESSAGE"; empty for none.
inline std::wstring thrown(const std::function<void()>& use) {
  try {
    use();
  } catch (const ZoComException& e) {
    return std::to_wstring(e.position()) + L' ' + e.message();
  }
  return {};
}

}  // namespace zo::test
