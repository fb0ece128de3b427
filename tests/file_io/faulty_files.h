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
  stop  // the process ends there, as if killed: a write or copy is half done, all else not begun
};

struct FaultPlan {
  Fault fault = Fault::none;
  std::string_view call = {};  // of one function, by its name in FileApi; else of all
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

  void arm(const FaultPlan& plan);
  // Whether the plan met its call.
  [[nodiscard]] bool met() const { return met_; }
  // The names of the calls since the last arm, in order.
  [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }

  HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                DWORD flags) override;
  HANDLE reopen(HANDLE file, DWORD access, DWORD share, DWORD flags) override;
  HANDLE duplicate(HANDLE file) override;
  bool close(HANDLE file) override;
  bool read(HANDLE file, void* buffer, DWORD count, DWORD& done) override;
  bool write(HANDLE file, const void* data, DWORD count, DWORD& done) override;
  bool seek(HANDLE file, std::int64_t offset, DWORD method, std::int64_t& position) override;
  bool setEnd(HANDLE file) override;
  bool lock(HANDLE file, std::uint64_t start, std::uint64_t length) override;
  bool unlock(HANDLE file, std::uint64_t start, std::uint64_t length) override;
  bool flush(HANDLE file) override;
  bool size(HANDLE file, std::int64_t& bytes) override;
  bool information(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) override;
  bool lastWrite(HANDLE file, FILETIME& time) override;
  bool setTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                const FILETIME* written) override;
  bool createFolder(const wchar_t* name) override;
  bool removeFolder(const wchar_t* name) override;
  bool removeFile(const wchar_t* name) override;
  bool copy(const wchar_t* from, const wchar_t* to, bool failIfExists) override;
  bool move(const wchar_t* from, const wchar_t* to, DWORD flags) override;
  DWORD attributes(const wchar_t* name) override;
  bool setAttributes(const wchar_t* name, DWORD attributes) override;
  HANDLE findFirst(const wchar_t* pattern, WIN32_FIND_DATAW& entry) override;
  bool findNext(HANDLE search, WIN32_FIND_DATAW& entry) override;
  bool findClose(HANDLE search) override;
  DWORD currentFolder(DWORD size, wchar_t* buffer) override;
  bool setCurrentFolder(const wchar_t* name) override;
  DWORD tempFolder(DWORD size, wchar_t* buffer) override;
  DWORD fullPath(const wchar_t* name, DWORD size, wchar_t* buffer) override;
  DWORD searchPath(const wchar_t* path, const wchar_t* name, DWORD size, wchar_t* buffer) override;
  DWORD tempName(const wchar_t* folder, const wchar_t* prefix,
                 wchar_t (&buffer)[MAX_PATH]) override;
  bool volume(const wchar_t* root, Volume& volume) override;
  bool space(const wchar_t* root, Space& space) override;
  DWORD driveType(const wchar_t* root) override;
  DWORD drives(DWORD size, wchar_t* buffer) override;
  bool setLabel(const wchar_t* root, const wchar_t* label) override;

 private:
  // What is to happen to this call. Ends the process for stop, unless the call does so itself.
  Fault next(std::string_view call, bool stopsItself = false);
  bool passes(std::string_view call) { return next(call) == Fault::none; }

  FileApi* before_;
  FaultPlan plan_;
  int seen_ = 0;
  bool met_ = false;
  std::vector<std::string> calls_;
};

}  // namespace zo::test
