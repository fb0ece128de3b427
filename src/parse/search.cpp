#include <zo/parse/search.h>

#include <new>

#include "parse/reg_exp_run.h"
#include "parse/reg_exp_units.h"
#include "parse/reg_exp_wide.h"

ZoSearch::ZoSearch(const ZoRegExp& what, const ZoString& text, unsigned int start) noexcept
    : what_(what),
      text_(text),
      from_(static_cast<unsigned int>(
          zo::firstPlace(zo::unitsOf(text.view()), start, what.options() & ZoRegExp::kMultiLine))),
      status_(ZoResult::badPattern) {
  if (!what.isValid()) return;
  run_.reset(new (std::nothrow)
                 zo::RegExpRun(*what_.code(), what_.limits(), zo::unitsOf(text_.view())));
  status_ = run_ ? ZoResult::ok : ZoResult::outOfMemory;
}

ZoSearch::~ZoSearch() = default;

bool ZoSearch::next() noexcept {
  if (!run_) return false;
  const int code = run_->find(from_, wasEmpty_);
  if (code == ZoResult::ok) {
    from_ = static_cast<unsigned int>(run_->end());
    wasEmpty_ = run_->length() == 0;
    return true;
  }
  if (code != ZoResult::refused) status_ = code;
  run_.reset();
  return false;
}

unsigned int ZoSearch::start(unsigned int group) const noexcept {
  if (!run_) return npos;
  const std::size_t at = run_->begin(group);
  return at == zo::RegExpRun::kNowhere ? npos : static_cast<unsigned int>(at);
}

unsigned int ZoSearch::length(unsigned int group) const noexcept {
  return run_ ? static_cast<unsigned int>(run_->length(group)) : 0;
}

const ZoSubString ZoSearch::match(unsigned int group) const& noexcept {
  const unsigned int at = start(group);
  return text_(at, length(group));
}

unsigned int ZoSearch::numberOf(std::wstring_view group) const noexcept {
  unsigned int found = npos;
  if (!run_) return found;
  what_.code()->eachName([&](std::u16string_view name, unsigned int number) {
    if (name != zo::unitsOf(group)) return false;
    if (found == npos || start(found) == npos) found = number;
    return start(found) != npos;
  });
  return found;
}

unsigned int ZoSearch::start(std::wstring_view group) const noexcept {
  return start(numberOf(group));
}
unsigned int ZoSearch::length(std::wstring_view group) const noexcept {
  return length(numberOf(group));
}
const ZoSubString ZoSearch::match(std::wstring_view group) const& noexcept {
  return match(numberOf(group));
}
