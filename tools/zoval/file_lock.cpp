#include "file_lock.h"

#include <zo/names/file_name.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <cstdint>

#include "paths.h"
#include "text.h"

namespace zoval {
namespace {

constexpr DWORD kMilliseconds = 5000;

// The name has no room for a path: it has its hash (FNV-1a).
std::wstring nameOf(const std::wstring& path) {
  const ZoFileName shell(zolib::shellPath(path));
  ZoFileName full;
  if (ZoSystem::fileSystem().getFullPathName(shell, full) != 0) full = shell;
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const wchar_t c : zolib::folded(full.view())) hash = (hash ^ c) * 0x100000001B3;
  return L"Global\\zoval-" + std::to_wstring(hash);
}

}  // namespace

bool FileLock::take(const std::wstring& path) {
  mutex_.reset(CreateMutexW(nullptr, FALSE, nameOf(path).c_str()));
  if (!mutex_) return false;  // another user's
  const DWORD result = WaitForSingleObject(mutex_.get(), kMilliseconds);
  isHeld_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
  return isHeld_;
}

}  // namespace zoval
