// Any pattern on any text: machine code and the interpreter find the same matches, in order and
// within the text, unless one of them gives up.
#include <chrono>
#include <string>

#include "fuzz.h"
#include "parse/reg_exp_run.h"
#include "platform/clock.h"

using namespace zo;

std::uint64_t zo::millisecondsNow() noexcept {
  using namespace std::chrono;
  return static_cast<std::uint64_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

namespace {

// Bytes of 0x80 and more stand for characters of other alphabets, and for surrogates.
std::u16string unitsFrom(const unsigned char* data, std::size_t size) {
  std::u16string text;
  for (std::size_t i = 0; i < size; ++i)
    text += static_cast<char16_t>(data[i] < 0x80 ? data[i] : data[i] * 0x101);
  return text;
}

struct Expression {
  Expression(std::u16string_view pattern, unsigned options)
      : code(RegExpCode::make(pattern, static_cast<ZoRegExp::Option>(options), error)) {
    ZO_FUZZ_CHECK(code || error.code != 0);
    ZO_FUZZ_CHECK(error.position <= 2 * pattern.size());
  }
  ~Expression() {
    if (code) code->release();
  }
  RegExpError error;
  const RegExpCode* code;
};

struct Walk {
  Walk(const RegExpCode& code, std::u16string_view searched)
      : run(code, {5000, 5000, 256, 1000}, searched), text(searched) {}
  int next() {
    const int result = run.find(from, wasEmpty);
    if (result != ZoResult::ok) return result;
    ZO_FUZZ_CHECK(run.end() > from || !wasEmpty || run.length() != 0);
    for (unsigned group = 0; run.begin(group) != run.kNowhere; ++group)
      ZO_FUZZ_CHECK(run.begin(group) <= text.size() && run.end(group) <= text.size());
    from = run.end();
    wasEmpty = run.length() == 0;
    return result;
  }
  RegExpRun run;
  std::u16string_view text;
  std::size_t from = 0;
  bool wasEmpty = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t length = std::min<std::size_t>(data[1], size - 2);
  const std::u16string pattern = unitsFrom(data + 2, length);
  const std::u16string text = unitsFrom(data + 2 + length, size - 2 - length);
  const unsigned options = data[0] & ~unsigned{ZoRegExp::kNoMachineCode};
  const Expression compiled(pattern, options);
  const Expression plain(pattern, options | ZoRegExp::kNoMachineCode);
  ZO_FUZZ_CHECK(!compiled.code == !plain.code);
  if (!compiled.code) return 0;
  static_cast<void>(compiled.code->hasMachineCode());  // makes it
  Walk one(*compiled.code, text), two(*plain.code, text);
  // The engines do not agree on whether a line, and so a match, may begin between CR and LF.
  const bool hasLines = (options & ZoRegExp::kMultiLine) != 0 || pattern.starts_with(u"(*");
  const bool isAlike = !hasLines || text.find(u"\r\n") == text.npos;
  for (std::size_t count = 0;; ++count) {
    ZO_FUZZ_CHECK(count <= 2 * text.size() + 2);
    const int result = one.next(), other = two.next();
    if (result == ZoResult::gaveUp || other == ZoResult::gaveUp) break;
    if (!isAlike && result != other) break;
    ZO_FUZZ_CHECK(result == other);
    if (result != ZoResult::ok) break;
    const bool isSame = one.run.begin() == two.run.begin() && one.run.end() == two.run.end();
    ZO_FUZZ_CHECK(isSame || !isAlike);
    if (!isSame) break;
  }
  return 0;
}
