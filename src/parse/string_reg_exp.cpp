// The members of ZoString that take an expression. They are declared with the others, on a floor
// that knows no expressions, and defined here, on the one that does.
#include <zo/parse/reg_exp.h>
#include <zo/text/string.h>

#include "parse/reg_exp_run.h"
#include "parse/reg_exp_units.h"
#include "parse/reg_exp_wide.h"

unsigned int ZoString::index(const ZoRegExp& what, unsigned int* matchLength,
                             unsigned int start) const noexcept {
  if (matchLength) *matchLength = 0;
  if (!what.isValid()) return npos;
  const std::u16string_view text = zo::unitsOf(view());
  zo::RegExpRun run(*what.code(), what.limits(), text);
  const bool hasLines = what.options() & ZoRegExp::kMultiLine;
  if (run.find(zo::firstPlace(text, start, hasLines), false) != ZoResult::ok) return npos;
  if (matchLength) *matchLength = static_cast<unsigned int>(run.length());
  return static_cast<unsigned int>(run.begin());
}

ZoSubString ZoString::occurrence(const ZoRegExp& what, unsigned int start) const noexcept {
  unsigned int matchLength = 0;
  const unsigned int at = index(what, &matchLength, start);
  return found(at, matchLength);
}

bool ZoString::matches(const ZoRegExp& what) const noexcept {
  if (!what.isValid()) return false;
  zo::RegExpRun run(*what.code(), what.limits(), zo::unitsOf(view()));
  return run.matchWhole() == ZoResult::ok;
}
