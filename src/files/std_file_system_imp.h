// What ZoStdFileSystem does. The contracts stand in zo/system/file_system.h.
#pragma once

#include <zo/system/file_system.h>

#include <string>
#include <string_view>

#include "files/keep_reason.h"
#include "platform/file_api.h"

class ZoStdFileSystemImp {
 public:
  // Failures are reported to the service.
  explicit ZoStdFileSystemImp(ZoFileSystem& service) : service_(service) {}

  int createDirectory(const ZoFileName& name);
  int getCurrentDirectory(ZoFileName& name);
  int setCurrentDirectory(const ZoFileName& name);
  int getTempPath(ZoFileName& name);
  int getAbsolutePath(ZoFileName& name);
  int getFullPathName(const ZoFileName& name, ZoFileName& full);
  int searchPath(const ZoFileName& file, ZoFileName& found, const ZoFileName& path);
  int copy(const ZoFileName& from, const ZoFileName& to, bool failIfExists);
  int append(const ZoFileName& from, const ZoFileName& to, bool mustExist);
  int move(const ZoFileName& from, const ZoFileName& to);
  int erase(const ZoFileName& name, ZoFileSystem::EraseType type);
  int getTempFileName(ZoFileName& name, const ZoFileName& pattern);
  unsigned int getAttributes(const ZoFileName& name);
  int subSetAttributes(const ZoFileName& name, unsigned int attributes);
  int getVolumeInformation(unsigned int& serial, unsigned int& longestComponent,
                           unsigned int& flags, const ZoFileName& volume, ZoString& label,
                           ZoString& fileSystem);
  int getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB, const ZoFileName& volume);
  ZoFileSystem::DriveType getDriveType(const ZoFileName& volume);
  int getLogicalDrivesStrings(ZoSequence<ZoFileName>& drives);
  int setVolumeLabel(const wchar_t* label, const ZoFileName& volume);
  int getCDRom(ZoSequence<ZoFileName>& drives, ZoSequence<ZoString>& labels);
  int getRemote(const ZoFileName& remote, ZoFileName& local, bool failIfExists);
  int putRemote(const ZoFileName& local, const ZoFileName& remote);
  int isRemote(const ZoFileName& name, ZoFileName& local);

 private:
  // Keeps the platform's last error, or the one that is given. Return 1 or the code.
  int report(const wchar_t* operation);
  int report(const wchar_t* operation, DWORD error, int code = ZoResult::refused);
  // For a URL, where there is no use for one.
  int noUse(const wchar_t* operation);
  // What a list answered that was to be filled, with its reason.
  int listed(int code, const wchar_t* operation);
  // 0 or, after the call failed, 1.
  int result(bool done, const wchar_t* operation);

  int eraseRemote(const ZoFileName& name, ZoFileSystem::EraseType type);

  ZoFileSystem& service_;
};
