// How far the work is, with rate and time left: a status line on a terminal, from half a second on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "console.h"

namespace zolib {

// " 42 %   12.3 MB/s   0:05 left   name"; the name's end stays when the line gets too long.
std::string progressLine(std::uint64_t done, std::uint64_t total, double seconds,
                         std::string_view name);

class Progress {
 public:
  Progress(Console& console, bool shown);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  [[nodiscard]] bool isShown() const noexcept { return shown_; }
  // The bytes of the whole work, where they are known; 0 shows nothing.
  void expect(std::uint64_t total) noexcept { total_ = total; }
  // The next part of it: a member and its bytes. What came before counts as done.
  void begin(std::string_view name, std::uint64_t size);
  // Within the part, as the library counts it.
  void at(std::uint64_t done, std::uint64_t total);

 private:
  Console& console_;
  bool shown_;
  std::uint64_t start_, lastShown_;  // in ms
  std::uint64_t total_ = 0, before_ = 0, size_ = 0;
  std::string name_;
};

}  // namespace zolib
