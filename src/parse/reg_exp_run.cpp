#include "parse/reg_exp_run.h"

#include <algorithm>
#include <new>
#include <utility>

#include "parse/reg_exp_units.h"
#include "platform/clock.h"

namespace zo {
namespace {

constexpr std::size_t kSmallStack = std::size_t{32} * 1024;
// Enough for most texts; with these the stretches can be long.
constexpr unsigned kFewSteps = 10'000;
constexpr std::uint64_t kFast = 8;  // ms for a stretch
constexpr std::uint64_t kFirstStretch = std::uint64_t{1} << 29;
constexpr std::uint64_t kLastStretch = std::uint64_t{1} << 33;

}  // namespace

// A copy in which U+FFFD stands for each surrogate that stands alone, as in UTF-8 made of the text.
// (PCRE2's own mode for such texts reads before their begin, and its two engines differ in it.)
bool RegExpRun::repairText() noexcept {
  std::size_t lone = loneSurrogate(text_);
  if (lone == text_.size()) return true;
  repaired_.reset(new (std::nothrow) char16_t[text_.size()]);
  if (!repaired_) return false;
  text_.copy(repaired_.get(), text_.size());
  for (; lone < text_.size(); lone = loneSurrogate(text_, lone + 1)) repaired_[lone] = u'\xFFFD';
  text_ = {repaired_.get(), text_.size()};
  return true;
}

bool RegExpRun::prepare() noexcept {
  if (scratch_) return true;
  if (code_.seesPairs() && !repairText()) return false;
  scratch_ = code_.takeScratch();
  if (!scratch_) return false;
  pcre2_match_context* const context = scratch_->context.get();
  pcre2_set_depth_limit(context, limits_.depth);
  pcre2_set_heap_limit(context, limits_.heapKiB);
  setSteps(std::min(limits_.steps, kFewSteps));
  ovector_ = pcre2_get_ovector_pointer(scratch_->data.get());
  return true;
}

void RegExpRun::setSteps(unsigned steps) noexcept {
  steps_ = steps;
  pcre2_set_match_limit(scratch_->context.get(), steps);
  stretch_ = placesIn(kFirstStretch);
  hasLast_ = false;
}

// So many places may be tried in about `nanoseconds`, if each costs all its steps, or the walk of a
// loop that is not counted.
std::size_t RegExpRun::placesIn(std::uint64_t nanoseconds) const noexcept {
  const std::uint64_t most = std::max<std::uint64_t>(text_.size(), steps_) + 1;
  return static_cast<std::size_t>(nanoseconds / (machineCode_ ? most : 8 * most) + 1);
}

// Sets the last place to try before the clock is looked at: not one in the middle of what a search
// steps over as one.
void RegExpRun::setLastPlace(std::size_t from) noexcept {
  const std::size_t places = stretch_ > spent_ ? stretch_ - spent_ : 1;
  last_ = text_.size();
  if (code_.canPause() && places <= text_.size() - from) {
    last_ = from + places - 1;
    while (last_ + 1 < text_.size() && isOneStep(text_[last_], text_[last_ + 1])) ++last_;
  }
  pcre2_set_offset_limit(scratch_->context.get(), last_ < text_.size() ? last_ : PCRE2_UNSET);
  hasLast_ = true;
}

bool RegExpRun::hasTime(std::size_t places) noexcept {
  spent_ += places;
  if (spent_ < stretch_) return true;
  spent_ = 0;
  const std::uint64_t now = millisecondsNow();
  if (!std::exchange(hasStarted_, true)) {
    started_ = lastLook_ = now;
    return true;
  }
  if (now - std::exchange(lastLook_, now) < kFast) {
    stretch_ = std::min(4 * stretch_, placesIn(kLastStretch));
  }
  return now - started_ < limits_.milliseconds;
}

int RegExpRun::find(std::size_t from, bool notEmpty) noexcept {
  if (from > text_.size()) return ZoResult::refused;
  if (!scratch_) machineCode_ = code_.machineCode(text_.size());
  if (!prepare()) return ZoResult::outOfMemory;
  if (!keepsTime_) hasStarted_ = false, spent_ = 0;
  for (;;) {
    if (!hasLast_ || from > last_) setLastPlace(from);
    const int code = tryFrom(from, notEmpty ? PCRE2_NOTEMPTY_ATSTART : 0);
    if (code == ZoResult::gaveUp && steps_ < limits_.steps) {
      setSteps(limits_.steps);
      continue;
    }
    const bool isFound = code == ZoResult::ok;
    const bool isWhole = isFound && (length() != 0 || !isInPair(text_, begin()));
    if (isWhole && !keepsTime_) return code;
    if (!isFound && (code != ZoResult::refused || last_ >= text_.size())) return code;
    const std::size_t reached = isFound ? std::max(from, begin()) : last_;
    if (!hasTime(reached - from + 1) && (keepsTime_ || !isFound)) return ZoResult::gaveUp;
    if (isWhole) return code;
    from = isFound ? reached : last_ + 1;
    notEmpty = isFound;
  }
}

int RegExpRun::matchWhole() noexcept {
  if (!prepare()) return ZoResult::outOfMemory;
  setSteps(limits_.steps);
  pcre2_set_offset_limit(scratch_->context.get(), PCRE2_UNSET);
  return interpret(0, PCRE2_ANCHORED | PCRE2_ENDANCHORED);
}

namespace {
int resultOf(int found) noexcept {
  if (found >= 0) return ZoResult::ok;
  if (found == PCRE2_ERROR_NOMATCH) return ZoResult::refused;
  return found == PCRE2_ERROR_NOMEMORY ? ZoResult::outOfMemory : ZoResult::gaveUp;
}
}  // namespace

// Machine code begins on 32 KiB of the thread's own stack, and is given a larger one when these
// have not been enough.
int RegExpRun::tryFrom(std::size_t from, std::uint32_t flags) noexcept {
  if (!machineCode_) return interpret(from, flags);
  pcre2_match_context* const context = scratch_->context.get();
  const auto run = [&] {
    return pcre2_jit_match(machineCode_, units(text_), text_.size(), from, flags,
                           scratch_->data.get(), context);
  };
  const int found = run();
  if (found != PCRE2_ERROR_JIT_STACKLIMIT || scratch_->stack) return resultOf(found);
  const std::size_t most = std::size_t{limits_.heapKiB} * 1024;
  if (most <= kSmallStack) return ZoResult::gaveUp;
  scratch_->stack.reset(pcre2_jit_stack_create(kSmallStack, most, nullptr));
  if (!scratch_->stack) return ZoResult::outOfMemory;
  pcre2_jit_stack_assign(context, nullptr, scratch_->stack.get());
  return resultOf(run());
}

int RegExpRun::interpret(std::size_t from, std::uint32_t flags) noexcept {
  isInterpreted_ = true;
  return resultOf(pcre2_match(code_.get(), units(text_), text_.size(), from,
                              flags | PCRE2_NO_JIT | PCRE2_NO_UTF_CHECK, scratch_->data.get(),
                              scratch_->context.get()));
}

}  // namespace zo
