// PCRE2 for this library: its objects with their owners, and its units.
#pragma once

#include <pcre2.h>

#include <memory>
#include <string_view>

namespace zo {

struct Pcre2Free {
  void operator()(pcre2_code* code) const noexcept;
  void operator()(pcre2_match_data* data) const noexcept { pcre2_match_data_free(data); }
  void operator()(pcre2_match_context* context) const noexcept {
    pcre2_match_context_free(context);
  }
  void operator()(pcre2_compile_context* c) const noexcept { pcre2_compile_context_free(c); }
  void operator()(pcre2_jit_stack* stack) const noexcept { pcre2_jit_stack_free(stack); }
};
template <class T>
using Pcre2 = std::unique_ptr<T, Pcre2Free>;

// Makes machine code of it where that can be done. (PCRE2 keeps such memory in a list of its own
// for the whole process; this and the freeing of code take a lock for it.)
void makeMachineCode(pcre2_code* code) noexcept;

[[nodiscard]] inline PCRE2_SPTR units(std::u16string_view text) noexcept {
  return reinterpret_cast<PCRE2_SPTR>(text.empty() ? u"" : text.data());
}

}  // namespace zo
