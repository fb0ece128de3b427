// One message file: its texts by number, as they are written, without what they refer to.
//
//   ZoMessageMap map;
//   std::vector<ZoMessageFault> faults;
//   if (map.parse(bytes, &faults) == 0) std::wcout << map.find(17);
//
// A map never changes but by parse(). The format: docs/formats/message-file.md.
//
// Errors:  nothing throws but std::bad_alloc, and then the map is as it was.
// Threads: a map is for one thread at a time, while copies may be used by many: they share what was
//          read.
// Cost:    parsing is linear; copying and moving are O(1), find() is O(log n).
#pragma once

#include <zo/config.h>
#include <zo/messages/message_fault.h>
#include <zo/text/string.h>

#include <memory>
#include <string_view>
#include <vector>

namespace zo {
struct MessageData;
}

class ZO_COM_API ZoMessageMap {
 public:
  // Bytes of a file, and units of one text.
  static constexpr unsigned int kMaxBytes = 0x4000000;
  static constexpr unsigned int kMaxLength = 65536;
  // Faults that are listed; what is left out is not listed behind them.
  static constexpr unsigned int kMaxFaults = 1000;

  ZoMessageMap();  // without texts

  // Reads the bytes of a file in the place of what the map had. A faulty line is left out, with its
  // continuations, and named in `faults`, which are replaced, in the order of lines. Returns 0; or
  // ZoResult::refused when it is no message file of this format or too large (the one fault tells):
  // the map stays as it was.
  [[nodiscard]] int parse(std::string_view bytes, std::vector<ZoMessageFault>* faults = nullptr);

  // The text, valid until the map and its copies are parsed anew or end; null when there is none.
  [[nodiscard]] const wchar_t* find(unsigned int number) const noexcept;
  template <std::same_as<bool> T>
  [[nodiscard]] const wchar_t* find(T) const = delete;  // write a number
  [[nodiscard]] bool contains(unsigned int number) const noexcept {
    return find(number) != nullptr;
  }

  // ---- All texts, by ascending numbers. Positions must be less than entries() ----
  [[nodiscard]] unsigned int entries() const noexcept;
  [[nodiscard]] unsigned int number(unsigned int i) const noexcept;
  [[nodiscard]] std::wstring_view text(unsigned int i) const noexcept;
  [[nodiscard]] unsigned int line(unsigned int i) const noexcept;  // where it begins, from 1

  // ---- What the file says of itself; empty when it says nothing ----
  [[nodiscard]] ZoString language() const;
  [[nodiscard]] ZoString fallback() const;
  // The code page that it was read in, numbered as in zo/system/codepage.h.
  [[nodiscard]] unsigned int codepage() const noexcept;
  // How many forms a word has by number in the file's language: docs/messages.md.
  [[nodiscard]] unsigned int pluralForms() const noexcept;

  // A file that is read as this map, line breaks "\n", without the comments of what was parsed.
  // Returns 0.
  int write(ZoString& out) const;

 private:
  std::shared_ptr<const zo::MessageData> data_;
};
