// Names of type codes and type flags, the base of a code, and raw bytes as text.
//
// A code has two names: a fixed one, which stored texts carry (codeToString), and one for users
// (codeToLocString), translated as the texts of flags are (docs/messages.md) and valid for good.
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: any, but for flagsToString(flags), whose result lies in one buffer for the whole
//          process.
#pragma once

#include <zo/config.h>
#include <zo/text/string.h>
#include <zo/variant/type_code.h>

class ZO_COM_API ZoType {
 public:
  ZoType() = delete;

  // ---- Codes ----
  // The group that a code belongs to; ZoTypeCode::NoType for what belongs to none.
  [[nodiscard]] static constexpr ZoTypeCode baseCode(ZoTypeCode code) noexcept;

  // A code without a name of its own has that of its base. Two names are kept as stored texts know
  // them: ZoTypeCode::Guid is "NoType", and XDisplacement is "Vector".
  [[nodiscard]] static const wchar_t* codeToString(ZoTypeCode code) noexcept;
  static ZoString& codeToString(ZoTypeCode code, ZoString& out) { return out = codeToString(code); }
  // The name for users. What belongs to no group is "No Type".
  [[nodiscard]] static const wchar_t* codeToLocString(ZoTypeCode code) noexcept;
  // The first code with this fixed name, else with this name for users, in the order of ZoTypeCode;
  // upper and lower case are the same. ZoTypeCode::NoType for null and unknown names.
  [[nodiscard]] static ZoTypeCode stringToCode(const wchar_t* name) noexcept;
  [[nodiscard]] static ZoTypeCode stringToCode(ZoString& name) noexcept {
    return stringToCode(name.data());
  }

  // ---- Flags ----
  // One letter for each of the bits 0 to 25 that is set, 'A' for bit 0, in ascending order. The
  // pointer form writes to a buffer that the next call, by any thread, overwrites.
  [[nodiscard]] static const wchar_t* flagsToString(unsigned int flags) noexcept;
  static ZoString& flagsToString(unsigned int flags, ZoString& out);
  // The inverse; other characters than 'A' to 'Z' count nothing. Null gives 0.
  [[nodiscard]] static unsigned int stringToFlags(const wchar_t* letters) noexcept;

  // The text of one flag; "No Flag" for anything but a single value of ZoTypeFlag.
  [[nodiscard]] static const wchar_t* flagToMessage(unsigned int flag) noexcept;
  // The flag whose text this is, ignoring case as the runtime's current locale does; 0 for null and
  // for texts of no flag.
  [[nodiscard]] static unsigned int messageToFlag(const wchar_t* text) noexcept;

  [[nodiscard]] static constexpr bool isFlagged(unsigned int flags, unsigned int flag) noexcept {
    return (flags & flag) != 0;
  }
  // The word with the flag set or reset. The word given stays as it is, by contract: callers assign
  // the result.
  [[nodiscard]] static constexpr unsigned int setFlag(const unsigned int& flags,
                                                      unsigned int flag) noexcept {
    return flags | flag;
  }
  [[nodiscard]] static constexpr unsigned int resetFlag(const unsigned int& flags,
                                                        unsigned int flag) noexcept {
    return flags & ~flag;
  }

  // ---- Raw bytes: what a text of code ZoTypeCode::Chunk holds ----
  // Two hexadecimal digits a byte, upper case, nothing between them. Null bytes or more than
  // ZoString::maxLength() / 2 of them give an empty text. Returns the text.
  static ZoString& chunkToString(const void* bytes, unsigned int size, ZoString& text);
  // The inverse, in either case. The caller frees the bytes with delete[]; an empty text gives one
  // unused byte and size 0. Returns 0; or 1 when the text is no such text: then bytes is null and
  // size 0.
  [[nodiscard]] static int stringToChunk(unsigned char*& bytes, unsigned int& size,
                                         const ZoString& text);
};

constexpr ZoTypeCode ZoType::baseCode(ZoTypeCode code) noexcept {
  const auto c = static_cast<unsigned int>(code);
  const auto within = [c](unsigned int first, unsigned int last) {
    return c >= first && c <= last;
  };
  if (within(1070, 1071) || within(0x2100, 0x21FF)) return ZoTypeCode::Int;
  if (within(1040, 1042) || within(0x2300, 0x23FF)) return ZoTypeCode::Real;
  if (c == 1000 || within(1002, 1005) || within(0x2400, 0x24FF)) return ZoTypeCode::String;
  if (within(0x2800, 0x28FF)) return ZoTypeCode::Dict;
  if (within(1010, 1011) || within(0x2500, 0x25FF)) return ZoTypeCode::Point;
  if (within(1012, 1013) || within(0x2600, 0x26FF)) return ZoTypeCode::Vector;
  if (c == 1001 || within(0x2700, 0x27FF)) return ZoTypeCode::Sequence;
  if (within(0x2200, 0x22FE)) return ZoTypeCode::BigInt;
  if (within(0x2900, 0x2A00)) return ZoTypeCode::Pointer;  // 0x2A00 included, on purpose
  if (c == 0x22FF) return ZoTypeCode::Guid;
  return ZoTypeCode::NoType;
}
