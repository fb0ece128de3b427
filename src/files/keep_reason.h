// The reason of a failure, for errorTxt().
#pragma once

#include <windows.h>
#include <zo/results.h>

#include <atomic>

class ZoFileSystem;

namespace zo {

// The platform's error of the last failure in the process; what the standard service keeps.
extern std::atomic<DWORD> keptError;

// Reasons of the library's own, in the part of the codes that the platform leaves to others.
inline constexpr DWORD kOldCopy = 0x2000'0001;

// Has a service, by default the one in force, keep the thread's last error as the reason why an
// operation failed; without any service it is kept here. A failure without an error gets one, so
// that no reason is "Success". The last error stays for the caller. A service that has no memory
// for it throws nothing from here. Returns 1.
int keepReason(const wchar_t* operation, ZoFileSystem* service = nullptr);
// The same for an error that the platform did not give. `code` is returned.
int keepReason(const wchar_t* operation, DWORD error, int code = ZoResult::refused,
               ZoFileSystem* service = nullptr);

}  // namespace zo
