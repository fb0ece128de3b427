// A layer in front of the platform's file functions that counts the calls and lets one go wrong:
//
//   FaultyFiles files;
//   files.arm({.fault = Fault::fail, .call = "write", .nth = 2});
//   EXPECT_EQ(save(), 1);
//
// It is in force as long as it lives. A plan is used up by the call that it meets.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/file_api.h"

namespace zo::test {

enum class Fault {
  none,
  fail,     // the call is not made and answers `error`
  shorten,  // read and write move half of the bytes; else as fail
  stop      // the process ends there, as if killed: a write or copy is half done
};

struct FaultPlan {
  Fault fault = Fault::none;
  std::string_view call = {};  // the functions of FileApi that it is about, with blanks; else all
  int nth = 1;
  bool forEver = false;  // that call and all after it
  DWORD error = ERROR_DISK_FULL;
};

inline constexpr int kStopped = 99;  // exit code of a process that stopped

class FaultyFiles : public FileApi {
 public:
  FaultyFiles() : before_(setFileApi(this)) {}
  ~FaultyFiles() override { setFileApi(before_); }
  FaultyFiles(const FaultyFiles&) = delete;
  FaultyFiles& operator=(const FaultyFiles&) = delete;

  void arm(const FaultPlan& plan) {
    plan_ = plan;
    seen_ = 0;
    met_ = false;
    calls_.clear();
  }
  bool met() const { return met_; }                                 // whether the plan met its call
  const std::vector<std::string>& calls() const { return calls_; }  // since the last arm, in order
  DWORD flagsOfCreate() const { return flagsOfCreate_; }            // of its last call

  HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                DWORD flags) override {
    flagsOfCreate_ = flags;
    if (!passes("create")) return INVALID_HANDLE_VALUE;
    return FileApi::create(name, access, share, disposition, flags);
  }
  bool read(HANDLE file, void* buffer, DWORD count, DWORD& done) override {
    const Fault fault = next("read");
    return fault != Fault::fail &&
           FileApi::read(file, buffer, fault == Fault::shorten ? count / 2 : count, done);
  }
  bool write(HANDLE file, const void* data, DWORD count, DWORD& done) override {
    const Fault fault = next("write", true);
    if (fault == Fault::fail) return false;
    const bool result = FileApi::write(file, data, fault == Fault::none ? count : count / 2, done);
    if (fault == Fault::stop) stop();
    return result;
  }
  bool copy(const wchar_t* from, const wchar_t* to, bool failIfExists) override {
    const Fault fault = next("copy", true);
    if (fault == Fault::fail || fault == Fault::shorten) return false;
    const bool result = FileApi::copy(from, to, failIfExists);
    if (fault == Fault::none) return result;
    const HANDLE half = FileApi::create(to, GENERIC_WRITE, 0, OPEN_EXISTING, 0);
    std::int64_t bytes = 0;
    FileApi::size(half, bytes);
    FileApi::seek(half, bytes / 2, FILE_BEGIN, bytes);
    FileApi::setEnd(half);
    stop();
  }
  // The platform gives the handle back even when it reports a failure.
  bool close(HANDLE file) override {
    const bool closed = FileApi::close(file);
    return passes("close") && closed;
  }
  bool findClose(HANDLE search) override {
    const bool closed = FileApi::findClose(search);
    return passes("findClose") && closed;
  }

#define ZO_PASS(Type, failed, name, parameters, arguments) \
  Type name parameters override { return passes(#name) ? FileApi::name arguments : failed; }
  ZO_PASS(HANDLE, INVALID_HANDLE_VALUE, reopen, (HANDLE h, DWORD a, DWORD s, DWORD f), (h, a, s, f))
  ZO_PASS(HANDLE, nullptr, duplicate, (HANDLE h), (h))
  ZO_PASS(bool, false, seek, (HANDLE h, std::int64_t o, DWORD m, std::int64_t& p), (h, o, m, p))
  ZO_PASS(bool, false, setEnd, (HANDLE h), (h))
  ZO_PASS(bool, false, lock, (HANDLE h, std::uint64_t s, std::uint64_t l), (h, s, l))
  ZO_PASS(bool, false, unlock, (HANDLE h, std::uint64_t s, std::uint64_t l), (h, s, l))
  ZO_PASS(bool, false, flush, (HANDLE h), (h))
  ZO_PASS(bool, false, size, (HANDLE h, std::int64_t& b), (h, b))
  ZO_PASS(bool, false, information, (HANDLE h, BY_HANDLE_FILE_INFORMATION& i), (h, i))
  ZO_PASS(bool, false, times, (HANDLE h, FILETIME* c, FILETIME* a, FILETIME* w), (h, c, a, w))
  ZO_PASS(bool, false, setTimes,
          (HANDLE h, const FILETIME* c, const FILETIME* a, const FILETIME* w), (h, c, a, w))
  ZO_PASS(bool, false, rename, (HANDLE h, const wchar_t* t), (h, t))
  ZO_PASS(bool, false, createFolder, (const wchar_t* n), (n))
  ZO_PASS(bool, false, removeFolder, (const wchar_t* n), (n))
  ZO_PASS(bool, false, removeFile, (const wchar_t* n), (n))
  ZO_PASS(bool, false, move, (const wchar_t* f, const wchar_t* t, DWORD flags), (f, t, flags))
  ZO_PASS(DWORD, INVALID_FILE_ATTRIBUTES, attributes, (const wchar_t* n), (n))
  ZO_PASS(bool, false, details, (const wchar_t* n, WIN32_FILE_ATTRIBUTE_DATA& d), (n, d))
  ZO_PASS(bool, false, setAttributes, (const wchar_t* n, DWORD a), (n, a))
  ZO_PASS(HANDLE, INVALID_HANDLE_VALUE, findFirst, (const wchar_t* n, WIN32_FIND_DATAW& e), (n, e))
  ZO_PASS(bool, false, findNext, (HANDLE h, WIN32_FIND_DATAW& e), (h, e))
  ZO_PASS(DWORD, 0, currentFolder, (DWORD s, wchar_t* b), (s, b))
  ZO_PASS(bool, false, setCurrentFolder, (const wchar_t* n), (n))
  ZO_PASS(DWORD, 0, tempFolder, (DWORD s, wchar_t* b), (s, b))
  ZO_PASS(DWORD, 0, fullPath, (const wchar_t* n, DWORD s, wchar_t* b), (n, s, b))
  ZO_PASS(DWORD, 0, searchPath, (const wchar_t* p, const wchar_t* n, DWORD s, wchar_t* b),
          (p, n, s, b))
  using TempName = std::array<wchar_t, MAX_PATH>;
  ZO_PASS(DWORD, 0, tempName, (const wchar_t* f, const wchar_t* p, TempName& m), (f, p, m))
  ZO_PASS(bool, false, volume, (const wchar_t* r, Volume& v), (r, v))
  ZO_PASS(bool, false, space, (const wchar_t* r, Space& s), (r, s))
  ZO_PASS(DWORD, 0, driveType, (const wchar_t* r), (r))
  ZO_PASS(DWORD, 0, drives, (DWORD s, wchar_t* b), (s, b))
  ZO_PASS(bool, false, setLabel, (const wchar_t* r, const wchar_t* l), (r, l))
#undef ZO_PASS

 private:
  [[noreturn]] static void stop() {
    TerminateProcess(GetCurrentProcess(), kStopped);
    for (;;) Sleep(INFINITE);
  }

  // What is to happen to this call. Ends the process for stop, unless the call does so itself.
  Fault next(std::string_view call, bool stopsItself = false) {
    calls_.emplace_back(call);
    if (plan_.fault == Fault::none) return Fault::none;
    const std::string planned = ' ' + std::string(plan_.call) + ' ';
    if (!plan_.call.empty() && planned.find(' ' + calls_.back() + ' ') == std::string::npos)
      return Fault::none;
    if (++seen_ < plan_.nth || (seen_ > plan_.nth && !plan_.forEver)) return Fault::none;
    met_ = true;
    if (plan_.fault == Fault::stop && !stopsItself) stop();
    SetLastError(plan_.error);
    return plan_.fault;
  }
  bool passes(std::string_view call) { return next(call) == Fault::none; }

  FileApi* before_;
  FaultPlan plan_;
  int seen_ = 0;
  bool met_ = false;
  DWORD flagsOfCreate_ = 0;
  std::vector<std::string> calls_;
};

}  // namespace zo::test
