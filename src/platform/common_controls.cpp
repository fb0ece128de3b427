#include "platform/common_controls.h"

namespace {

// The manifest in this library, or in the program that holds its objects: common_controls.rc.
constexpr USHORT kManifest = 3;

HANDLE makeContext() noexcept {
  static const char here = 0;
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<const wchar_t*>(&here), &module))
    return INVALID_HANDLE_VALUE;
  ACTCTXW context = {};
  context.cbSize = sizeof context;
  context.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  context.hModule = module;
  context.lpResourceName = MAKEINTRESOURCEW(kManifest);
  return CreateActCtxW(&context);
}

}  // namespace

zo::CommonControls::CommonControls() noexcept {
  static auto* const context = makeContext();  // for as long as the process lives
  active_ = context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie_);
}

void* zo::CommonControls::address(const char* name) noexcept {
  const HMODULE library = LoadLibraryW(L"comctl32.dll");  // the version that the context names
  return library ? reinterpret_cast<void*>(GetProcAddress(library, name)) : nullptr;
}
