#include "file_io/faulty_files.h"

namespace zo::test {

namespace {

[[noreturn]] void stop() {
  TerminateProcess(GetCurrentProcess(), kStopped);
  for (;;) Sleep(INFINITE);
}

}  // namespace

void FaultyFiles::arm(const FaultPlan& plan) {
  plan_ = plan;
  seen_ = 0;
  met_ = false;
  calls_.clear();
}

Fault FaultyFiles::next(std::string_view call, bool stopsItself) {
  calls_.emplace_back(call);
  if (plan_.fault == Fault::none || (!plan_.call.empty() && plan_.call != call)) return Fault::none;
  if (++seen_ < plan_.nth || (seen_ > plan_.nth && !plan_.forEver)) return Fault::none;
  met_ = true;
  if (plan_.fault == Fault::stop && !stopsItself) stop();
  SetLastError(plan_.error);
  return plan_.fault;
}

bool FaultyFiles::read(HANDLE file, void* buffer, DWORD count, DWORD& done) {
  const Fault fault = next("read");
  if (fault == Fault::fail) return false;
  return FileApi::read(file, buffer, fault == Fault::shorten ? count / 2 : count, done);
}

bool FaultyFiles::write(HANDLE file, const void* data, DWORD count, DWORD& done) {
  const Fault fault = next("write", true);
  if (fault == Fault::fail) return false;
  const bool result = FileApi::write(file, data, fault == Fault::none ? count : count / 2, done);
  if (fault == Fault::stop) stop();
  return result;
}

bool FaultyFiles::copy(const wchar_t* from, const wchar_t* to, bool failIfExists) {
  const Fault fault = next("copy", true);
  if (fault == Fault::none) return FileApi::copy(from, to, failIfExists);
  if (fault != Fault::stop) return false;
  FileApi::copy(from, to, failIfExists);
  const HANDLE half = FileApi::create(to, GENERIC_WRITE, 0, OPEN_EXISTING, 0);
  std::int64_t bytes = 0;
  FileApi::size(half, bytes);
  FileApi::seek(half, bytes / 2, FILE_BEGIN, bytes);
  FileApi::setEnd(half);
  stop();
}

HANDLE FaultyFiles::create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                           DWORD flags) {
  if (!passes("create")) return INVALID_HANDLE_VALUE;
  return FileApi::create(name, access, share, disposition, flags);
}

HANDLE FaultyFiles::reopen(HANDLE file, DWORD access, DWORD share, DWORD flags) {
  return passes("reopen") ? FileApi::reopen(file, access, share, flags) : INVALID_HANDLE_VALUE;
}

HANDLE FaultyFiles::duplicate(HANDLE file) {
  return passes("duplicate") ? FileApi::duplicate(file) : nullptr;
}

// The platform's close gives the handle back even when it reports a failure.
bool FaultyFiles::close(HANDLE file) {
  const bool passed = passes("close");
  const DWORD error = GetLastError();
  const bool closed = FileApi::close(file);
  if (!passed) SetLastError(error);
  return passed && closed;
}

HANDLE FaultyFiles::findFirst(const wchar_t* pattern, WIN32_FIND_DATAW& entry) {
  return passes("findFirst") ? FileApi::findFirst(pattern, entry) : INVALID_HANDLE_VALUE;
}

bool FaultyFiles::findClose(HANDLE search) {
  const bool passed = passes("findClose");
  return FileApi::findClose(search) && passed;
}

DWORD FaultyFiles::attributes(const wchar_t* name) {
  return passes("attributes") ? FileApi::attributes(name) : INVALID_FILE_ATTRIBUTES;
}

// All others answer false or 0 when they fail.
#define ZO_PASS(Type, name, parameters, arguments) \
  Type FaultyFiles::name parameters { return passes(#name) ? FileApi::name arguments : Type{}; }
ZO_PASS(bool, seek, (HANDLE f, std::int64_t o, DWORD m, std::int64_t& p), (f, o, m, p))
ZO_PASS(bool, setEnd, (HANDLE f), (f))
ZO_PASS(bool, lock, (HANDLE f, std::uint64_t s, std::uint64_t l), (f, s, l))
ZO_PASS(bool, unlock, (HANDLE f, std::uint64_t s, std::uint64_t l), (f, s, l))
ZO_PASS(bool, flush, (HANDLE f), (f))
ZO_PASS(bool, size, (HANDLE f, std::int64_t& b), (f, b))
ZO_PASS(bool, information, (HANDLE f, BY_HANDLE_FILE_INFORMATION& i), (f, i))
ZO_PASS(bool, lastWrite, (HANDLE f, FILETIME& t), (f, t))
ZO_PASS(bool, setTimes, (HANDLE f, const FILETIME* c, const FILETIME* a, const FILETIME* w),
        (f, c, a, w))
ZO_PASS(bool, createFolder, (const wchar_t* n), (n))
ZO_PASS(bool, removeFolder, (const wchar_t* n), (n))
ZO_PASS(bool, removeFile, (const wchar_t* n), (n))
ZO_PASS(bool, move, (const wchar_t* f, const wchar_t* t, DWORD flags), (f, t, flags))
ZO_PASS(bool, setAttributes, (const wchar_t* n, DWORD a), (n, a))
ZO_PASS(bool, findNext, (HANDLE s, WIN32_FIND_DATAW& e), (s, e))
ZO_PASS(DWORD, currentFolder, (DWORD s, wchar_t* b), (s, b))
ZO_PASS(bool, setCurrentFolder, (const wchar_t* n), (n))
ZO_PASS(DWORD, tempFolder, (DWORD s, wchar_t* b), (s, b))
ZO_PASS(DWORD, fullPath, (const wchar_t* n, DWORD s, wchar_t* b), (n, s, b))
ZO_PASS(DWORD, searchPath, (const wchar_t* p, const wchar_t* n, DWORD s, wchar_t* b), (p, n, s, b))
ZO_PASS(DWORD, tempName, (const wchar_t* f, const wchar_t* p, wchar_t (&b)[MAX_PATH]), (f, p, b))
ZO_PASS(bool, volume, (const wchar_t* r, Volume& v), (r, v))
ZO_PASS(bool, space, (const wchar_t* r, Space& s), (r, s))
ZO_PASS(DWORD, driveType, (const wchar_t* r), (r))
ZO_PASS(DWORD, drives, (DWORD s, wchar_t* b), (s, b))
ZO_PASS(bool, setLabel, (const wchar_t* r, const wchar_t* l), (r, l))
#undef ZO_PASS

}  // namespace zo::test
