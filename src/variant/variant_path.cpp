// ZoVariant: elements by path.
#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <string>

namespace {

// Cuts the first step off a path. There is a step more as long as rest is not at its end.
class PathSteps {
 public:
  explicit PathSteps(std::wstring_view path) noexcept : rest_(path), done_(path.empty()) {}

  [[nodiscard]] bool isDone() const noexcept { return done_; }
  // The next step as a key; valid until the following call.
  std::wstring_view next() {
    const size_t slash = rest_.find(L'/');
    done_ = slash == std::wstring_view::npos;
    const std::wstring_view step = rest_.substr(0, slash);
    if (!done_) rest_.remove_prefix(slash + 1);
    if (step.find(L'~') == std::wstring_view::npos) return step;
    key_.clear();
    for (size_t i = 0; i < step.size(); ++i) {
      const wchar_t following = i + 1 < step.size() ? step[i + 1] : L'\0';
      const bool escape = step[i] == L'~' && (following == L'0' || following == L'1');
      key_ += escape ? (following == L'0' ? L'~' : L'/') : step[i];
      i += escape;
    }
    return key_;
  }

 private:
  std::wstring_view rest_;
  bool done_;
  std::wstring key_;
};

// A position is digits and nothing else; npos for any other step.
unsigned int positionOf(std::wstring_view step) noexcept {
  std::int64_t position = 0;
  unsigned int end = 0;
  if (step.empty() || step[0] < L'0' || step[0] > L'9') return ZoString::npos;
  if (ZoStrToInt(step, position, &end) != ZoResult::ok || end != step.size()) return ZoString::npos;
  return position < ZoString::npos ? static_cast<unsigned int>(position) : ZoString::npos;
}

const ZoVariant* elementOf(const ZoVariant& parent, std::wstring_view step) {
  return parent.isTypeOf(ZoVariant::kSequence) ? parent.at(positionOf(step)) : parent.at(step);
}

// Adds an element to a container that has none for this step yet. Null when it cannot be.
ZoVariant* addElement(ZoVariant& parent, std::wstring_view step) {
  if (ZoVariant::Sequence* const sequence = parent.asSequence()) {
    if (positionOf(step) != sequence->entries()) return nullptr;
    return sequence->append(ZoVariant()) == ZoResult::ok ? sequence->last() : nullptr;
  }
  if (parent.isEmpty()) parent = ZoVariant(ZoVariant::kDict, ZoTypeCode::Dict, parent.flags());
  ZoVariant::Dict* const dict = parent.asDict();
  if (!dict) return nullptr;
  const ZoString key(step);
  return dict->insertAt(key, ZoVariant()) == ZoResult::ok ? dict->at(key) : nullptr;
}

}  // namespace

const ZoVariant* ZoVariant::find(std::wstring_view path) const {
  const ZoVariant* at = this;
  for (PathSteps steps(path); at && !steps.isDone();) at = elementOf(*at, steps.next());
  return at;
}

ZoVariant* ZoVariant::find(std::wstring_view path) {
  return const_cast<ZoVariant*>(std::as_const(*this).find(path));
}

const ZoVariant& ZoVariant::value(std::wstring_view path) const& {
  static const ZoVariant nothing;
  const ZoVariant* const found = find(path);
  return found ? *found : nothing;
}

int ZoVariant::put(std::wstring_view path, ZoVariant value) {
  const auto depth = path.empty() ? 0 : std::count(path.begin(), path.end(), L'/') + 1;
  if (depth > kMaxDepth || value.isTooDeep(static_cast<unsigned int>(depth)))
    return ZoResult::refused;
  ZoVariant* at = this;
  PathSteps steps(path);
  while (!steps.isDone()) {
    const std::wstring_view step = steps.next();
    auto* const next = const_cast<ZoVariant*>(elementOf(*at, step));
    if (next) {
      at = next;
      continue;
    }
    // What is missing is made aside, so that a path that cannot be made leaves no trace.
    const bool canAdd =
        at->isEmpty() || at->asDict() || (at->asSequence() && positionOf(step) == at->entries());
    if (!canAdd) return ZoResult::refused;
    const std::wstring first(step);
    ZoVariant branch;
    ZoVariant* end = &branch;
    while (!steps.isDone()) {
      end = addElement(*end, steps.next());
      if (!end) return ZoResult::outOfMemory;
    }
    *end = std::move(value);
    ZoVariant* const place = addElement(*at, first);
    if (!place) return ZoResult::outOfMemory;
    *place = std::move(branch);
    return ZoResult::ok;
  }
  *at = std::move(value);
  return ZoResult::ok;
}

ZoString ZoVariant::pathStep(std::wstring_view key) {
  std::wstring step;
  for (const wchar_t c : key) {
    if (c == L'~') {
      step += L"~0";
    } else if (c == L'/') {
      step += L"~1";
    } else {
      step += c;
    }
  }
  return ZoString(std::wstring_view(step));
}
