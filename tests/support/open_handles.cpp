#include "support/open_handles.h"

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace zo::test {

namespace {

// The handles of the system. (GetProcessHandleCount does not count everywhere.)
struct SystemHandles {
  ULONG count;
  struct {
    USHORT process, others[3];
    void* object;
    ULONG access;
  } handles[1];
};

constexpr auto kSystemHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
constexpr NTSTATUS kTooSmall = static_cast<NTSTATUS>(0xC0000004);

}  // namespace

unsigned long openHandles() {
  std::vector<std::byte> buffer(1 << 16);
  NTSTATUS status;
  while ((status = NtQuerySystemInformation(kSystemHandleInformation, buffer.data(),
                                            static_cast<ULONG>(buffer.size()), nullptr)) ==
         kTooSmall) {
    buffer.resize(buffer.size() * 2);
  }
  if (status < 0) throw std::runtime_error("the system does not tell its handles");
  const auto& all = *reinterpret_cast<const SystemHandles*>(buffer.data());
  const auto process = static_cast<USHORT>(GetCurrentProcessId());
  return static_cast<unsigned long>(
      std::count_if(all.handles, all.handles + all.count,
                    [&](const auto& handle) { return handle.process == process; }));
}

}  // namespace zo::test
