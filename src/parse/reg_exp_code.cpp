#include "parse/reg_exp_code.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <new>
#include <thread>

#include "parse/reg_exp_units.h"
#include "parse/unitwise.h"

namespace zo {
namespace {

// For what makes and frees machine code, some 50 microseconds at a time. A std::mutex would need
// memory for its first lock, which here might be while something is destroyed.
std::atomic_flag s_machineCode;

class MachineCodeLock {
 public:
  MachineCodeLock() noexcept {
    while (s_machineCode.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  MachineCodeLock(const MachineCodeLock&) = delete;
  MachineCodeLock& operator=(const MachineCodeLock&) = delete;
  ~MachineCodeLock() { s_machineCode.clear(std::memory_order_release); }
};

constexpr std::uint32_t kNone = 0;

// Machine code takes as long to make as the interpreter needs for some thousand units.
constexpr std::size_t kWorthMachineCode = 3000, kUnitsOfSearch = 50;

// \C would match half a pair, and \K in look-around a match that ends before it begins: PCRE2
// refuses both as it is asked here.
std::uint32_t flagsOf(ZoRegExp::Option options) noexcept {
  const auto has = [options](ZoRegExp::Option option) { return (options & option) != 0; };
  const bool isAscii = has(ZoRegExp::kIgnoreAsciiCase) && !has(ZoRegExp::kIgnoreCase);
  const bool isPlain = has(ZoRegExp::kLiteral) && !has(ZoRegExp::kWildcard);
  std::uint32_t flags = isAscii ? 0 : PCRE2_UTF;
  if (isAscii || has(ZoRegExp::kIgnoreCase)) flags |= PCRE2_CASELESS;
  if (isPlain) return flags | PCRE2_LITERAL;
  flags |= PCRE2_NEVER_BACKSLASH_C;
  flags |= isAscii ? PCRE2_NEVER_UTF | PCRE2_NEVER_UCP : PCRE2_UCP;
  if (has(ZoRegExp::kWildcard)) return flags | PCRE2_DOTALL;
  return flags | (has(ZoRegExp::kMultiLine) ? PCRE2_MULTILINE : kNone) |
         (has(ZoRegExp::kDotAll) ? PCRE2_DOTALL : kNone) |
         (has(ZoRegExp::kExtended) ? PCRE2_EXTENDED : kNone);
}

// Where the class that begins at a place ends, and how it does: 0 if it holds what could end it
// later than it seems.
std::size_t endOfClass(std::u16string_view pattern, std::size_t at) noexcept {
  const std::size_t first = at + (pattern.substr(at + 1).starts_with(u'^') ? 2 : 1);
  const std::size_t end = pattern.find(u']', first);
  if (end == pattern.npos || end == first) return 0;
  return pattern.substr(first, end - first).find_first_of(u"\\[") == pattern.npos ? end : 0;
}

// Whether a try at one place costs little, or no more than the match that it finds is long: then a
// search takes a time that its text and pattern are worth. So it is with characters and classes, at
// most one of them repeated, at the end, and with one group of such.
bool isOverSoon(std::u16string_view pattern) noexcept {
  constexpr std::size_t kShort = 250;
  unsigned groups = 0;
  if (pattern.size() > kShort) return false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::u16string_view rest = pattern.substr(i);
    if (rest[0] == u'[') {
      const std::size_t end = endOfClass(pattern, i);
      if (end == 0) return false;
      i = end;
    } else if (rest[0] == u'(') {
      if (++groups > 1 || rest.starts_with(u"(*")) return false;
      if (rest.starts_with(u"(?") && !rest.starts_with(u"(?:")) return false;
      if (rest.starts_with(u"(?:")) i += 2;
    } else if (rest[0] == u'*' || rest[0] == u'+') {
      if (rest.size() > 1 || pattern[i - (i > 0)] == u')') return false;
    } else if (rest[0] == u'?' || rest[0] == u'{' || rest[0] == u'\\') {
      return false;
    }
  }
  return true;
}

// A wildcard as a pattern: at most two units for one. Stars side by side are one star, which else
// would be tried in all ways to share a text among them.
std::size_t translateWildcard(std::u16string_view wildcard, char16_t* to) noexcept {
  constexpr std::u16string_view kSigns = u"\\^$.[|()*+?{";
  char16_t* const begin = to;
  char16_t before = 0;
  for (const char16_t c : wildcard) {
    if (c == u'*') {
      if (before != u'*') *to++ = u'.', *to++ = u'*';
    } else if (c == u'?') {
      *to++ = u'.';
    } else {
      if (kSigns.find(c) != kSigns.npos) *to++ = u'\\';
      *to++ = c;
    }
    before = c;
  }
  return static_cast<std::size_t>(to - begin);
}

template <class T>
T info(const pcre2_code* code, std::uint32_t what) noexcept {
  T value{};
  pcre2_pattern_info(code, what, &value);
  return value;
}

// Where lines matter, they end in CR, LF or both. PCRE2 then begins no match between CR and LF, and
// would not find \sx behind them: so only where lines matter.
Pcre2<pcre2_code> compiled(std::u16string_view pattern, std::uint32_t flags,
                           RegExpError& error) noexcept {
  Pcre2<pcre2_compile_context> context;
  if ((flags & PCRE2_MULTILINE) != 0) {
    context.reset(pcre2_compile_context_create(nullptr));
    if (!context) return error.code = RegExpCode::kNoMemory, nullptr;
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_ANYCRLF);
  }
  return Pcre2<pcre2_code>(pcre2_compile(units(pattern), pattern.size(), flags, &error.code,
                                         &error.position, context.get()));
}

}  // namespace

void Pcre2Free::operator()(pcre2_code* code) const noexcept {
  const MachineCodeLock lock;
  pcre2_code_free(code);
}

void makeMachineCode(pcre2_code* code) noexcept {
  const MachineCodeLock lock;
  pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);  // where it fails, there is none
}

const RegExpCode* RegExpCode::make(std::u16string_view pattern, ZoRegExp::Option options,
                                   RegExpError& error) noexcept {
  if (pattern.size() > ZoRegExp::kMaxPattern) {
    error = {kTooLong, ZoRegExp::kMaxPattern};
    return nullptr;
  }
  std::unique_ptr<RegExpCode, void (*)(RegExpCode*)> made(
      new (std::nothrow) RegExpCode, [](RegExpCode* code) { code->release(); });
  error = {kNoMemory, 0};
  if (!made) return nullptr;
  made->options_ = options;
  made->pattern_.reset(new (std::nothrow) char16_t[pattern.size() + 1]);
  if (!made->pattern_) return nullptr;
  made->length_ = pattern.copy(made->pattern_.get(), pattern.size());
  if ((options & ZoRegExp::kWildcard) == 0) {
    if (!made->compile(made->pattern(), error)) return nullptr;
  } else {
    const std::unique_ptr<char16_t[]> text(new (std::nothrow) char16_t[2 * pattern.size() + 1]);
    if (!text) return nullptr;
    if (!made->compile({text.get(), translateWildcard(pattern, text.get())}, error)) {
      error.position = std::min(error.position, pattern.size());
      return nullptr;
    }
  }
  return made.release();
}

bool RegExpCode::compile(std::u16string_view pattern, RegExpError& error) noexcept {
  std::uint32_t flags = flagsOf(options_);
  if ((flags & (PCRE2_CASELESS | PCRE2_LITERAL)) == 0 &&
      isUnitwise(pattern, (flags & PCRE2_EXTENDED) != 0)) {
    flags &= ~std::uint32_t{PCRE2_UTF | PCRE2_UCP};
  }
  // As in texts, U+FFFD stands for each surrogate that stands alone.
  std::unique_ptr<char16_t[]> repaired;
  if (std::size_t lone = loneSurrogate(pattern);
      (flags & PCRE2_UTF) != 0 && lone < pattern.size()) {
    repaired.reset(new (std::nothrow) char16_t[pattern.size()]);
    if (!repaired) return false;
    pattern.copy(repaired.get(), pattern.size());
    for (; lone < pattern.size(); lone = loneSurrogate(pattern, lone + 1))
      repaired[lone] = u'\xFFFD';
    pattern = {repaired.get(), pattern.size()};
  }
  canPause_ = (flags & PCRE2_LITERAL) == 0 && !isOverSoon(pattern);
  for (const std::u16string_view sign : {u"\\G", u"(*COMMIT", u"(*SKIP"})
    if (canPause_ && pattern.find(sign) != pattern.npos) canPause_ = false;
  if (canPause_) flags |= PCRE2_USE_OFFSET_LIMIT;
  code_ = compiled(pattern, flags, error);
  if (!code_) {
    if (error.code == PCRE2_ERROR_HEAP_FAILED) error.code = kNoMemory;
    return false;
  }
  isTried_ = (options_ & ZoRegExp::kNoMachineCode) != 0;
  learn();
  return true;
}

void RegExpCode::learn() noexcept {
  const pcre2_code* const code = code_.get();
  const auto flags = info<std::uint32_t>(code, PCRE2_INFO_ALLOPTIONS);
  seesPairs_ = (flags & PCRE2_UTF) != 0;
  if ((flags & PCRE2_ANCHORED) != 0) canPause_ = false;
  groups_ = info<std::uint32_t>(code, PCRE2_INFO_CAPTURECOUNT);
  nameCount_ = info<std::uint32_t>(code, PCRE2_INFO_NAMECOUNT);
  nameEntrySize_ = info<std::uint32_t>(code, PCRE2_INFO_NAMEENTRYSIZE);
  names_ = reinterpret_cast<const char16_t*>(info<PCRE2_SPTR>(code, PCRE2_INFO_NAMETABLE));
}

RegExpCode::~RegExpCode() {
  delete spare_.load(std::memory_order_relaxed);
  Pcre2Free()(machineCode_.load(std::memory_order_relaxed));
}

bool RegExpCode::make() const noexcept {
  if (isTried_.exchange(true)) return false;
  Pcre2<pcre2_code> copy(pcre2_code_copy(code_.get()));
  if (!copy) return isTried_ = false;  // there may be memory later
  makeMachineCode(copy.get());
  if (info<std::size_t>(copy.get(), PCRE2_INFO_JITSIZE) == 0) return false;
  machineCode_.store(copy.release(), std::memory_order_release);
  return true;
}

const pcre2_code* RegExpCode::machineCode(std::size_t units) const noexcept {
  const pcre2_code* made = machineCode_.load(std::memory_order_acquire);
  if (made || isTried_.load(std::memory_order_relaxed)) return made;
  const std::size_t work = units + kUnitsOfSearch;
  if (searched_.fetch_add(work, std::memory_order_relaxed) + work < kWorthMachineCode)
    return nullptr;
  return make() ? machineCode_.load(std::memory_order_acquire) : nullptr;
}

std::unique_ptr<RegExpScratch> RegExpCode::takeScratch() const noexcept {
  if (RegExpScratch* const spare = spare_.exchange(nullptr, std::memory_order_acquire)) {
    return std::unique_ptr<RegExpScratch>(spare);
  }
  std::unique_ptr<RegExpScratch> made(new (std::nothrow) RegExpScratch);
  if (!made) return nullptr;
  made->data.reset(pcre2_match_data_create(groups_ + 1, nullptr));
  made->context.reset(pcre2_match_context_create(nullptr));
  return made->data && made->context ? std::move(made) : nullptr;
}

void RegExpCode::keep(std::unique_ptr<RegExpScratch> scratch) const noexcept {
  delete spare_.exchange(scratch.release(), std::memory_order_acq_rel);
}

}  // namespace zo
