// A compiled pattern and what every match of it has to know. Nothing of the platform's is asked
// here, so that fuzz/ can build it; its units are char16_t therefore.
#pragma once

#include <zo/parse/reg_exp.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "parse/pcre2.h"

namespace zo {

// What one match at a time needs besides the code; the last one that was used waits for the next.
struct RegExpScratch {
  Pcre2<pcre2_match_data> data;
  Pcre2<pcre2_match_context> context;
  Pcre2<pcre2_jit_stack> stack;  // where that of the machine is too small
};

struct RegExpError {
  int code = 0;  // PCRE2's, or one of its own
  std::size_t position = 0;
};

// Immutable but for what it makes and keeps for itself: all threads share it.
class RegExpCode {
 public:
  static constexpr int kTooLong = 1, kNoMemory = 2;  // numbers that PCRE2 does not use

  // Null on failure. The first is the one reference.
  [[nodiscard]] static const RegExpCode* make(std::u16string_view pattern, ZoRegExp::Option options,
                                              RegExpError& error) noexcept;
  void addReference() const noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  void release() const noexcept {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

  [[nodiscard]] std::u16string_view pattern() const noexcept { return {pattern_.get(), length_}; }
  [[nodiscard]] ZoRegExp::Option options() const noexcept { return options_; }
  // Makes the machine code if there is none yet. False where there can be none, and as long as
  // another thread is making it.
  [[nodiscard]] bool hasMachineCode() const noexcept { return machineCode_.load() || make(); }
  [[nodiscard]] unsigned groups() const noexcept { return groups_; }
  // Calls use(name, number) for each named group, by name and then by number, until that is true.
  template <class Use>
  bool eachName(Use use) const {
    const char16_t* entry = names_;
    for (unsigned i = 0; i < nameCount_; ++i, entry += nameEntrySize_)
      if (use(std::u16string_view(entry + 1), unsigned{entry[0]})) return true;
    return false;
  }

  // For a search through so many units: null until the searches so far have been worth the time
  // that making it takes. It is a copy of get(), and takes the same texts.
  [[nodiscard]] const pcre2_code* machineCode(std::size_t units) const noexcept;
  // For the interpreter. Where it sees pairs, it takes texts alone in which no surrogate stands
  // alone.
  [[nodiscard]] const pcre2_code* get() const noexcept { return code_.get(); }
  // Whether a surrogate pair is one character to it.
  [[nodiscard]] bool seesPairs() const noexcept { return seesPairs_; }
  // Whether a search should look at the clock at times, and can: looking from one place and then
  // from a later one finds the same as in one go, but not with \G, (*COMMIT) and (*SKIP).
  [[nodiscard]] bool canPause() const noexcept { return canPause_; }

  [[nodiscard]] std::unique_ptr<RegExpScratch> takeScratch() const noexcept;  // null: no memory
  void keep(std::unique_ptr<RegExpScratch> scratch) const noexcept;

 private:
  RegExpCode() = default;
  ~RegExpCode();
  bool make() const noexcept;
  [[nodiscard]] bool compile(std::u16string_view pattern, RegExpError& error) noexcept;
  void learn() noexcept;

  mutable std::atomic<unsigned> references_{1};
  mutable std::atomic<RegExpScratch*> spare_{nullptr};
  mutable std::atomic<pcre2_code*> machineCode_{nullptr};
  mutable std::atomic<std::size_t> searched_{0};  // units
  mutable std::atomic<bool> isTried_{false};
  std::unique_ptr<char16_t[]> pattern_;
  std::size_t length_ = 0;
  ZoRegExp::Option options_ = ZoRegExp::kDefault;
  Pcre2<pcre2_code> code_;
  unsigned groups_ = 0;
  const char16_t* names_ = nullptr;  // in the code
  unsigned nameCount_ = 0, nameEntrySize_ = 0;
  bool seesPairs_ = true, canPause_ = true;
};

}  // namespace zo
