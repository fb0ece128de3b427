#include "persist/archive_support.h"

#include <type_traits>

namespace zo::test {

ByteVector bytesOf(std::string_view hexadecimal) {
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

ByteVector toBytes(std::span<const std::byte> bytes) {
  const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
  return {first, first + bytes.size()};
}

namespace {

template <class T>
ArchivedValue row(const char* name, T value, std::string_view bytes) {
  const auto write = [](ZoArchive& to, T& what) { to.write(what, L"label"); };
  return {name, bytesOf(bytes),
          [=](ZoArchive& to) {
            T own = value;
            write(to, own);
          },
          [=](ZoArchive& from, bool fresh, ZoArchive& to) {
            if constexpr (std::is_same_v<T, const wchar_t*>) {
              wchar_t* text = nullptr;
              from.read(text);
              to.write(text, L"");
              delete[] text;
            } else {
              T own = fresh ? T{} : value;
              from.read(own);
              write(to, own);
            }
          }};
}

ZoFileName slashed() {
  ZoFileName name(L"a\\b");
  name.setDelimiter(L'/');
  return name;
}
ZoFileName pattern() {
  ZoFileName name;
  name.setFullName(L"*.g", false, false, true);
  return name;
}
ZoVariant list() {
  return ZoVariant(ZoArray<ZoVariant>{ZoVariant(7), ZoVariant(L"x", ZoTypeCode::FName), {}});
}
ZoVariant dict() {
  ZoHashDict<ZoVariant, ZoString> entries;
  entries.insertAt(L"Key", list());
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

std::vector<ArchivedValue> makeValues() {
  constexpr _GUID kGuid = {0x6F9619FF, 0x8B86, 0xD011, {0xB4, 0x2D, 0, 0xC0, 0x4F, 0xC9, 0x64, 1}};
  static double variable = 1;
  static wchar_t letters[] = L"ab", *text = letters;
  const ZoVector oblique(1, 2, 3);
  const ZoMatrix matrix({1, 2, 3, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2});
  return {
      row("true", true, "01"),
      row("false", false, "00"),
      row("signed char", static_cast<signed char>(-2), "FE"),
      row("unsigned char", static_cast<unsigned char>(254), "FE"),
      row("short", static_cast<short>(-2), "FEFF"),
      row("unsigned short", static_cast<unsigned short>(0x1234), "3412"),
      row("int", -2, "FEFFFFFF"),
      row("unsigned int", 0x12345678U, "78563412"),
      row("int64", std::int64_t{-2}, "FEFFFFFFFFFFFFFF"),
      row("uint64", std::uint64_t{0x123456789ABCDEF0}, "F0DEBC9A78563412"),
      row("double", 1.0, ONE),
      row<const wchar_t*>("null text", nullptr, "00000000"),
      row<const wchar_t*>("text", L"Z\x20AC", "02000000 5A00 AC20"),
      row("empty string", ZoString(), "00000000"),
      row("string", ZoString(L"A\0B", 3), "03000000 4100 0000 4200"),
      row("color", ZoColor(1, 2, 3), "01020366"),
      row("GUID", kGuid, "FF19966F 868B 11D0 B42D00C04FC96401"),
      row("name", ZoFileName(L"C:\\a.b"), "5C 0600 4300 3A00 5C00 6100 2E00 6200"),
      row("name without", ZoFileName(), "5C 0000"),
      row("name with its delimiter", slashed(), "2F 0300 6100 5C00 6200"),
      row("name with wildcards", pattern(), "5C 0300 2A00 2E00 6700"),
      row("point", ZoPoint(1, 2, 3), ONE TWO THREE),
      row("vector", oblique, "00" ONE TWO THREE),
      row("+X", ZoVector::s_xAxis, "01"),
      row("+Y", ZoVector::s_yAxis, "02"),
      row("+Z", ZoVector(0, 0, 1 + 1e-11), "03"),
      row("-X", ZoVector::s_negXAxis, "FF"),
      row("-Y", ZoVector::s_negYAxis, "FE"),
      row("-Z", ZoVector::s_negZAxis, "FD"),
      row("nearly +Z", ZoVector(0, 0, 1.001), "00" ZERO ZERO "6ABC749318 04F03F"),
      row("plane", ZoPlane(ZoPoint(1, 2, 3), ZoVector(0, 0, 2)),
          "00" ZERO ZERO ONE "00000000000008C0"),
      row("plane Z", ZoPlane(ZoPoint(5, 6, 1e-11), ZoVector(0, 0, 9)), "01"),
      row("plane X", ZoPlane::s_normalX, "02"),
      row("plane Y", ZoPlane::s_normalY, "03"),
      row("plane -Z", ZoPlane::s_normalNegZ, "FF"),
      row("plane -X", ZoPlane::s_normalNegX, "FE"),
      row("plane -Y", ZoPlane::s_normalNegY, "FD"),
      row("matrix", matrix,
          ONE TWO THREE ZERO ZERO ONE ZERO ZERO ZERO ZERO ONE ZERO ZERO ZERO ZERO TWO),
      row("system", ZoCoSystem(ZoPoint(1, 2, 3), ZoVector::s_yAxis, ZoVector::s_zAxis),
          ONE TWO THREE "02 03"),
      row("oblique system", ZoCoSystem(ZoPoint(), ZoVector(3, 4, 0), ZoVector::s_zAxis),
          ZERO ZERO ZERO "00 333333333333E33F 9A9999999999E93F" ZERO "03"),
      row("tolerance", ZoTol(1, 2), ONE TWO),
      row("no handle", ZoHnd(), "00000000"),
      row("handle", ZoHnd(L"1F"), "01000000 02000000 3100 4600"),
      row("variant", ZoVariant(), "00200000 00000000"),
      row("variant int", ZoVariant(-2, ZoTypeCode::Bool, ZoFlagVisible),
          "03210000 81000000 FEFFFFFF"),
      row("variant int64", ZoVariant(std::int64_t{-2}), "00220000 02000000 FEFFFFFFFFFFFFFF"),
      row("variant real", ZoVariant(1.0, ZoTypeCode::Length), "01230000 03000000" ONE),
      row("variant text", ZoVariant(L"ab"), "00240000 04000000 02000000 6100 6200"),
      row("variant pointer", ZoVariant(reinterpret_cast<void*>(0x123456789A)),
          "00290000 05000000 9A78563412000000"),
      row("variant point", ZoVariant(ZoPoint(1, 2, 3)), "00250000 06000000" ONE TWO THREE),
      row("variant vector", ZoVariant(ZoVector::s_yAxis), "00260000 07000000 02"),
      row("variant GUID", ZoVariant(kGuid),
          "FF220000 0A000000 FF19966F 868B 11D0 B42D00C04FC96401"),
      row("variant of no fitting code", ZoVariant(1, ZoTypeCode::Length),
          "00000000 01000000 01000000"),
      row("reference", ZoVariant(&variable), "00230000 03000000" ONE),
      row("reference to text", ZoVariant(&text), "00240000 04000000 02000000 6100 6200"),
      row("list", list(), LIST),
      row("dictionary", dict(), "05280000 08010000 01000000 03000000 4B00 6500 7900" LIST),
      row("empty list", ZoVariant(ZoVariant::kSequence, ZoTypeCode::List),
          "02270000 09000000 00000000"),
  };
}

}  // namespace

const std::vector<ArchivedValue>& archivedValues() {
  static const std::vector<ArchivedValue> values = makeValues();
  return values;
}

}  // namespace zo::test
