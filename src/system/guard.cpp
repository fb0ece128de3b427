#include <windows.h>
#include <zo/system/guard.h>

#include <cwchar>
#include <string_view>

#include "platform/handle.h"

namespace {

static_assert(ZoWait::obtained == WAIT_OBJECT_0 && ZoWait::abandoned == WAIT_ABANDONED &&
              ZoWait::timeOut == WAIT_TIMEOUT && ZoWait::failed == WAIT_FAILED &&
              ZoWait::forever == INFINITE);

// Other programs open the objects by these names: never change them.
constexpr std::wstring_view kMutexPrefix = L"SWMRGMutexNoWriter";
constexpr std::wstring_view kEventPrefix = L"SWMRGEventNoReaders";
constexpr std::wstring_view kSemaphorePrefix = L"SWMRGSemNumReaders";
constexpr std::size_t kNameBuffer = 100;
constexpr LONG kMaxReaders = 0x7FFFFFFF;

// Makes one object: unnamed without a name; none at all where prefix and name do not fit.
template <typename Create>
zo::Handle createNamed(std::wstring_view prefix, const wchar_t* name, Create create) noexcept {
  if (!name) return zo::Handle(create(nullptr));
  const std::size_t length = wcsnlen(name, kNameBuffer);
  if (prefix.size() + length >= kNameBuffer) return {};
  wchar_t full[kNameBuffer];
  prefix.copy(full, prefix.size());
  std::wmemcpy(full + prefix.size(), name, length);
  full[prefix.size() + length] = L'\0';
  return zo::Handle(create(full));
}

unsigned long failNull() noexcept {
  SetLastError(ERROR_INVALID_HANDLE);
  return ZoWait::failed;
}

// Called with the mutex taken over from a thread that ended holding it. While the event says that
// nobody is inside, a count can only be that of a reader that ended after it had counted itself in
// and before it reset the event. Readers after it would take themselves for later ones, leave the
// event signalled, and have writers come in on them: so the count is taken back.
void dropLostReader(const ZoSingleWriterMultiReaderGuard& guard) noexcept {
  if (WaitForSingleObject(guard.eventNoReaders, 0) == WAIT_OBJECT_0)
    WaitForSingleObject(guard.semNumReaders, 0);
}

}  // namespace

int zoSWMRGInitialize(ZoSingleWriterMultiReaderGuard* guard, const wchar_t* name) noexcept {
  if (!guard) return 0;
  zo::Handle mutex = createNamed(
      kMutexPrefix, name, [](const wchar_t* full) { return CreateMutexW(nullptr, FALSE, full); });
  zo::Handle event = createNamed(kEventPrefix, name, [](const wchar_t* full) {
    return CreateEventW(nullptr, TRUE, TRUE, full);
  });
  zo::Handle semaphore = createNamed(kSemaphorePrefix, name, [](const wchar_t* full) {
    return CreateSemaphoreW(nullptr, 0, kMaxReaders, full);
  });
  *guard = {mutex.get(), event.get(), semaphore.get()};
  // On purpose the fields keep the values of handles that are closed here.
  if (!mutex || !event || !semaphore) return 0;
  for (zo::Handle* owned : {&mutex, &event, &semaphore}) static_cast<void>(owned->release());
  return 1;
}

void zoSWMRGDelete(ZoSingleWriterMultiReaderGuard* guard) noexcept {
  if (!guard) return;
  for (HANDLE handle : {guard->mutexNoWriter, guard->eventNoReaders, guard->semNumReaders})
    if (handle) CloseHandle(handle);
}

// A wait for all objects answers 0 or 0x80, whichever of them was abandoned.
unsigned long zoSWMRGWaitToWrite(ZoSingleWriterMultiReaderGuard* guard,
                                 unsigned long timeOut) noexcept {
  if (!guard) return failNull();
  const HANDLE both[] = {guard->mutexNoWriter, guard->eventNoReaders};
  const DWORD result = WaitForMultipleObjects(2, both, TRUE, timeOut);
  if (result == ZoWait::abandoned) dropLostReader(*guard);
  return result;
}

void zoSWMRGDoneWriting(ZoSingleWriterMultiReaderGuard* guard) noexcept {
  if (guard) ReleaseMutex(guard->mutexNoWriter);
}

unsigned long zoSWMRGWaitToRead(ZoSingleWriterMultiReaderGuard* guard,
                                unsigned long timeOut) noexcept {
  if (!guard) return failNull();
  DWORD result = WaitForSingleObject(guard->mutexNoWriter, timeOut);
  if (!ZoWait::holds(result)) return result;
  if (result == ZoWait::abandoned) dropLostReader(*guard);
  LONG before = 0;
  if (!ReleaseSemaphore(guard->semNumReaders, 1, &before))
    result = ZoWait::failed;
  else if (before == 0)
    ResetEvent(guard->eventNoReaders);
  ReleaseMutex(guard->mutexNoWriter);
  return result;
}

void zoSWMRGDoneReading(ZoSingleWriterMultiReaderGuard* guard) noexcept {
  if (!guard) return;
  const HANDLE both[] = {guard->mutexNoWriter, guard->semNumReaders};
  if (!ZoWait::holds(WaitForMultipleObjects(2, both, TRUE, INFINITE))) return;
  const bool othersInside = WaitForSingleObject(guard->semNumReaders, 0) == WAIT_OBJECT_0;
  if (othersInside)
    ReleaseSemaphore(guard->semNumReaders, 1, nullptr);
  else
    SetEvent(guard->eventNoReaders);
  ReleaseMutex(guard->mutexNoWriter);
}
