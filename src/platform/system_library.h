// Functions of system DLLs that few programs need: looked up at their first use, so that no program
// pays for them at its start, and that a system without one refuses a dialog and not the program.
//
//   static const auto choose = zo::systemFunction<decltype(ChooseColorW)>(L"comdlg32.dll",
//                                                                         "ChooseColorW");
//   if (choose && choose(&request)) ...
//
// Errors:  null where there is no such DLL or function.
// Threads: any. A DLL stays loaded.
#pragma once

namespace zo {

[[nodiscard]] void* systemFunctionAddress(const wchar_t* library, const char* name) noexcept;

template <class Function>
[[nodiscard]] Function* systemFunction(const wchar_t* library, const char* name) noexcept {
  return reinterpret_cast<Function*>(systemFunctionAddress(library, name));
}

}  // namespace zo
