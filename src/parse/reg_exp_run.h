// Matches of one expression in one text, within limits. Without the platform, as its code.
//
// PCRE2 counts its tries anew at each place of a text, and some loops not at all: a million places
// with a million tries each would take hours. So a search looks at a stretch of places at a time
// and at the clock in between. A stretch is so long that even if each of its
// places costs all its steps, or a walk over the whole rest of the text, it ends within some
// seconds; stretches that turn out to be fast become longer. A search begins with few steps for a
// place, which most texts need, and goes on with all that it may take once a place needs more.
#pragma once

#include <zo/parse/reg_exp.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "parse/reg_exp_code.h"

namespace zo {

class RegExpRun {
 public:
  // The code and the text outlive the run.
  RegExpRun(const RegExpCode& code, const ZoRegExp::Limits& limits,
            std::u16string_view text) noexcept
      : code_(code), limits_(limits), text_(text) {}
  RegExpRun(const RegExpRun&) = delete;
  RegExpRun& operator=(const RegExpRun&) = delete;
  // What has grown is not kept: a stack, and the interpreter's memory, which the data hold.
  ~RegExpRun() {
    if (scratch_ && !scratch_->stack && !isInterpreted_) code_.keep(std::move(scratch_));
  }

  // The first match from a place on: ok; refused: there is none; gaveUp; outOfMemory. `notEmpty`
  // refuses an empty match at that very place.
  [[nodiscard]] int find(std::size_t from, bool notEmpty) noexcept;
  // Whether the expression matches just the whole text.
  [[nodiscard]] int matchWhole() noexcept;
  // The time limit is for all following calls together, instead of for each.
  void keepTime() noexcept { keepsTime_ = true; }

  // Of the last match; nowhere before the first.
  [[nodiscard]] std::size_t begin(unsigned group = 0) const noexcept {
    return ovector_ && group <= code_.groups() ? ovector_[std::size_t{2} * group] : kNowhere;
  }
  [[nodiscard]] std::size_t end(unsigned group = 0) const noexcept {
    return ovector_[std::size_t{2} * group + 1];
  }
  [[nodiscard]] std::size_t length(unsigned group = 0) const noexcept {
    const std::size_t from = begin(group);
    return from == kNowhere || end(group) < from ? 0 : end(group) - from;
  }
  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

 private:
  [[nodiscard]] bool prepare() noexcept;
  [[nodiscard]] bool repairText() noexcept;
  [[nodiscard]] int tryFrom(std::size_t from, std::uint32_t flags) noexcept;
  [[nodiscard]] int interpret(std::size_t from, std::uint32_t flags) noexcept;
  [[nodiscard]] std::size_t placesIn(std::uint64_t nanoseconds) const noexcept;
  void setSteps(unsigned steps) noexcept;
  void setLastPlace(std::size_t from) noexcept;
  [[nodiscard]] bool hasTime(std::size_t places) noexcept;

  const RegExpCode& code_;
  const ZoRegExp::Limits limits_;
  std::u16string_view text_;
  std::unique_ptr<char16_t[]> repaired_;
  std::unique_ptr<RegExpScratch> scratch_;
  const std::size_t* ovector_ = nullptr;
  const pcre2_code* machineCode_ = nullptr;  // null: it is interpreted
  bool isInterpreted_ = false;
  bool keepsTime_ = false;
  bool hasStarted_ = false;
  std::uint64_t started_ = 0, lastLook_ = 0;
  unsigned steps_ = 0;  // for each place, as long as they are enough
  bool hasLast_ = false;
  std::size_t last_ = 0;                 // to be tried before the clock is looked at
  std::size_t spent_ = 0, stretch_ = 1;  // places: since the clock was looked at, and until it is
};

}  // namespace zo
