// A library of the platform that most programs never need: loaded when it is asked for first, and
// kept.
//
//   struct Crypt {
//     SystemLibrary library{L"bcrypt.dll"};
//     ZO_FUNCTION_OF(library, BCryptGenRandom);
//   };
#pragma once

#include <windows.h>

#include <bit>

namespace zo {

class SystemLibrary {
 public:
  explicit SystemLibrary(const wchar_t* file) noexcept
      : module_(LoadLibraryExW(file, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}

  explicit operator bool() const noexcept { return module_ != nullptr; }
  // Null where the library is not there or has no such function.
  template <class Function>
  Function find(const char* name) const noexcept {
    const FARPROC address = module_ ? GetProcAddress(module_, name) : nullptr;
    return std::bit_cast<Function>(address);
  }

 private:
  HMODULE module_;
};

// One function of such a library: null where there is none. The library stays loaded.
//
//   static const auto choose = zo::systemFunction<decltype(ChooseColorW)>(L"comdlg32.dll",
//                                                                         "ChooseColorW");
template <class Function>
[[nodiscard]] Function* systemFunction(const wchar_t* library, const char* name) noexcept {
  return SystemLibrary(library).find<Function*>(name);
}

}  // namespace zo

// A member that holds the function of that name.
// NOLINTBEGIN(bugprone-macro-parentheses): the name of a member cannot stand in them
#define ZO_FUNCTION_OF(library, name) \
  decltype(&::name) name = library.find<decltype(&::name)>(#name)
// NOLINTEND(bugprone-macro-parentheses)
