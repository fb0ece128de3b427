// The platform's file functions behind one door, so that a layer can stand between them and the
// library: what fails the n-th call, shortens a write or ends the process there.
//
// Each function is the platform's one with the parameters that the library uses; `bool` is its
// BOOL, and a failure leaves its reason in GetLastError(). Names are passed on as they are:
// SystemPath (platform/system_path.h) comes before.
//
// Threads: any; a layer is put in and taken out while no other thread uses files.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace zo {

class FileApi {
 public:
  virtual ~FileApi() = default;

  // ---- Open files ----
  virtual HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                        DWORD flags);
  // The same file once more, with a position of its own.
  virtual HANDLE reopen(HANDLE file, DWORD access, DWORD share, DWORD flags);
  // The same open file once more: one position, one set of locks. Null when refused.
  virtual HANDLE duplicate(HANDLE file);
  virtual bool close(HANDLE file);
  virtual bool read(HANDLE file, void* buffer, DWORD count, DWORD& done);
  virtual bool write(HANDLE file, const void* data, DWORD count, DWORD& done);
  virtual bool seek(HANDLE file, std::int64_t offset, DWORD method, std::int64_t& position);
  virtual bool setEnd(HANDLE file);
  virtual bool lock(HANDLE file, std::uint64_t start, std::uint64_t length);
  virtual bool unlock(HANDLE file, std::uint64_t start, std::uint64_t length);
  virtual bool flush(HANDLE file);
  virtual bool size(HANDLE file, std::int64_t& bytes);
  virtual bool information(HANDLE file, BY_HANDLE_FILE_INFORMATION& information);
  // Without what information asks of the volume, which can take far longer.
  virtual bool times(HANDLE file, FILETIME* created, FILETIME* accessed, FILETIME* written);
  virtual bool setTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                        const FILETIME* written);
  // Under another name of the same volume, where nothing may be. Of a handle with DELETE.
  virtual bool rename(HANDLE file, const wchar_t* to);

  // ---- Whole files and folders ----
  virtual bool createFolder(const wchar_t* name);
  virtual bool removeFolder(const wchar_t* name);
  virtual bool removeFile(const wchar_t* name);
  virtual bool copy(const wchar_t* from, const wchar_t* to, bool failIfExists);
  virtual bool move(const wchar_t* from, const wchar_t* to, DWORD flags);
  virtual DWORD attributes(const wchar_t* name);
  // Attributes, times and size, without opening the file.
  virtual bool details(const wchar_t* name, WIN32_FILE_ATTRIBUTE_DATA& details);
  virtual bool setAttributes(const wchar_t* name, DWORD attributes);
  virtual HANDLE findFirst(const wchar_t* pattern, WIN32_FIND_DATAW& entry);
  virtual bool findNext(HANDLE search, WIN32_FIND_DATAW& entry);
  virtual bool findClose(HANDLE search);

  // ---- Places: a count of characters, as the platform gives it ----
  virtual DWORD currentFolder(DWORD size, wchar_t* buffer);
  virtual bool setCurrentFolder(const wchar_t* name);
  virtual DWORD tempFolder(DWORD size, wchar_t* buffer);
  virtual DWORD fullPath(const wchar_t* name, DWORD size, wchar_t* buffer);
  virtual DWORD searchPath(const wchar_t* path, const wchar_t* name, DWORD size, wchar_t* buffer);
  // Refuses a folder that is longer than the platform's call takes: some platforms would write past
  // the buffer.
  static constexpr std::size_t kLongestTempFolder = MAX_PATH - 14;
  virtual DWORD tempName(const wchar_t* folder, const wchar_t* prefix,
                         std::array<wchar_t, MAX_PATH>& made);

  // ---- Volumes ----
  struct Volume {
    DWORD serial, longestComponent, flags;
    wchar_t label[MAX_PATH + 1], fileSystem[MAX_PATH + 1];
  };
  struct Space {
    DWORD sectorsPerCluster, bytesPerSector, freeClusters, clusters;
  };
  virtual bool volume(const wchar_t* root, Volume& volume);
  virtual bool space(const wchar_t* root, Space& space);
  virtual DWORD driveType(const wchar_t* root);
  virtual DWORD drives(DWORD size, wchar_t* buffer);
  virtual bool setLabel(const wchar_t* root, const wchar_t* label);
};

// The one in use: the platform's own, or the layer above it.
[[nodiscard]] FileApi& fileApi() noexcept;
// Puts a layer in; null takes it out. Returns what was there, null for the platform's own.
FileApi* setFileApi(FileApi* layer) noexcept;

}  // namespace zo
