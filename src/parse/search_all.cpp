// All matches at once: replacing and splitting.
#include <zo/parse/search.h>
#include <zo/text/containers/array.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "parse/reg_exp_run.h"
#include "parse/reg_exp_wide.h"
#include "text/code_units.h"
#include "text/text_buffer.h"

namespace {

// Calls use(run) for each match of the text; a code of it that is not ok ends the walk.
template <class Use>
int eachMatch(const ZoRegExp& what, std::wstring_view text, Use use) {
  if (!what.isValid()) return ZoResult::badPattern;
  zo::RegExpRun run(*what.code(), what.limits(), zo::unitsOf(text));
  run.keepTime();
  int code = ZoResult::ok;
  std::size_t from = 0;
  bool wasEmpty = false;
  while ((code = run.find(from, wasEmpty)) == ZoResult::ok) {
    if (const int used = use(run); used != ZoResult::ok) return used;
    from = run.end();
    wasEmpty = run.length() == 0;
  }
  return code == ZoResult::refused ? ZoResult::ok : code;
}

// What stands in the place of a match: texts, and groups between them.
class Replacement {
 public:
  // refused: a group that the expression does not have.
  int set(const ZoRegExp& what, std::wstring_view with);
  void write(std::wstring_view text, const zo::RegExpRun& run, zo::TextBuffer& out) const {
    for (const Piece& piece : pieces_) {
      out << piece.text;
      const auto group = std::ranges::find_if(
          piece.groups, [&](unsigned int number) { return run.begin(number) != run.kNowhere; });
      if (group != piece.groups.end()) out << text.substr(run.begin(*group), run.length(*group));
    }
  }

 private:
  struct Piece {
    std::wstring_view text;
    std::vector<unsigned int> groups;  // behind it the first of these that took part
  };
  struct Reference {
    std::size_t length = 0;            // with the $; 0: it is none
    std::vector<unsigned int> groups;  // of one number or name; none: there is no such group
  };
  static std::vector<unsigned int> groupsOf(const ZoRegExp& what, unsigned int number);
  static Reference referenceAt(const ZoRegExp& what, std::wstring_view with);

  std::vector<Piece> pieces_;
};

unsigned int numberIn(std::wstring_view digits) {
  unsigned int number = 0;
  for (const wchar_t c : digits) {
    if (!zo::isDigit(c) || number > 99'999) return ZoRegExp::npos;
    number = number * 10 + static_cast<unsigned int>(c - L'0');
  }
  return digits.empty() ? ZoRegExp::npos : number;
}

std::vector<unsigned int> Replacement::groupsOf(const ZoRegExp& what, unsigned int number) {
  if (number > what.groups()) return {};
  return {number};
}

// `with` begins with a $.
Replacement::Reference Replacement::referenceAt(const ZoRegExp& what, std::wstring_view with) {
  if (with.size() > 1 && zo::isDigit(with[1])) {
    const unsigned int two = with.size() > 2 ? numberIn(with.substr(1, 2)) : ZoRegExp::npos;
    if (two <= what.groups()) return {3, {two}};
    return {2, groupsOf(what, numberIn(with.substr(1, 1)))};
  }
  const std::size_t close = with.find(L'}');
  if (with.size() < 2 || with[1] != L'{' || close == with.npos) return {};
  const std::wstring_view name = with.substr(2, close - 2);
  const unsigned int number = numberIn(name);
  if (number != ZoRegExp::npos) return {close + 1, groupsOf(what, number)};
  Reference named{close + 1, {}};
  what.code()->eachName([&](std::u16string_view group, unsigned int of) {
    if (group == zo::unitsOf(name)) named.groups.push_back(of);
    return false;
  });
  return named;
}

int Replacement::set(const ZoRegExp& what, std::wstring_view with) {
  std::size_t from = 0;
  for (std::size_t at = 0; (at = with.find(L'$', at)) != with.npos;) {
    const std::wstring_view before = with.substr(from, at - from);
    if (with.substr(at).starts_with(L"$$")) {
      pieces_.push_back({with.substr(from, at - from + 1), {}});
      from = at += 2;
    } else if (Reference reference = referenceAt(what, with.substr(at)); reference.length) {
      if (reference.groups.empty()) return ZoResult::refused;
      pieces_.push_back({before, std::move(reference.groups)});
      from = at += reference.length;
    } else {
      ++at;
    }
  }
  pieces_.push_back({with.substr(from), {}});
  return ZoResult::ok;
}

int replaceEach(ZoString& text, const ZoRegExp& what, std::wstring_view with, unsigned int& count) {
  if (!what.isValid()) return ZoResult::badPattern;
  Replacement replacement;
  if (const int code = replacement.set(what, with)) return code;
  const std::wstring_view old = text.view();
  zo::TextBuffer changed;
  std::size_t from = 0;
  unsigned int found = 0;
  const int code = eachMatch(what, old, [&](const zo::RegExpRun& run) {
    if (run.begin() > from) changed << old.substr(from, run.begin() - from);
    replacement.write(old, run, changed);
    from = run.end();
    ++found;
    const std::size_t length = changed.view().size() + (old.size() - from);
    return length > ZoString::maxLength() ? ZoResult::refused : ZoResult::ok;
  });
  if (code != ZoResult::ok || found == 0) return code;
  changed << old.substr(from);
  text = changed.toString();
  count = found;
  return ZoResult::ok;
}

int splitAt(const ZoString& text, const ZoRegExp& what, ZoSequence<ZoString>& out) {
  if (!what.isValid()) return ZoResult::badPattern;
  const std::wstring_view whole = text.view();
  if (whole.empty()) return ZoResult::ok;
  auto* const array = dynamic_cast<ZoArray<ZoString>*>(&out);
  std::size_t from = 0;
  const auto add = [&](std::wstring_view piece) {
    return array ? array->emplace(piece) : out.append(ZoString(piece));
  };
  const int code = eachMatch(what, whole, [&](const zo::RegExpRun& run) {
    const bool isAtEnd = run.begin() == 0 || run.begin() == whole.size();
    if ((run.length() == 0 && isAtEnd) || run.begin() < from) return ZoResult::ok;
    const int added = add(whole.substr(from, run.begin() - from));
    from = run.end();
    return added;
  });
  return code == ZoResult::ok ? add(whole.substr(from)) : code;
}

// The code of what may throw for want of memory.
template <class Try>
int codeOf(Try once) noexcept {
  try {
    return once();
  } catch (const std::bad_alloc&) {
    return ZoResult::outOfMemory;
  }
}

}  // namespace

int ZoSearch::replaceAll(ZoString& text, const ZoRegExp& what, std::wstring_view with,
                         unsigned int* count) noexcept {
  unsigned int found = 0;
  const int code = codeOf([&] { return replaceEach(text, what, with, found); });
  if (count) *count = found;
  return code;
}

int ZoSearch::split(const ZoString& text, const ZoRegExp& what,
                    ZoSequence<ZoString>& out) noexcept {
  const ZoString whole(text);  // it may be an entry of out
  out.removeAll();
  const int code = codeOf([&] { return splitAt(whole, what, out); });
  if (code != ZoResult::ok) out.removeAll();
  return code;
}
