// The standard file-system service, on the platform's file API.
//
// Errors, Threads: as in zo/system/file_system.h.
#pragma once

#include <zo/system/file_system.h>

class ZoStdFileSystemImp;

class ZO_COM_API ZoStdFileSystem : public ZoFileSystem {
 public:
  ZoStdFileSystem();
  ZoStdFileSystem(const ZoStdFileSystem&) = delete;
  ZoStdFileSystem& operator=(const ZoStdFileSystem&) = delete;
  ~ZoStdFileSystem() override;
  int release(const wchar_t* module) override;

  int createDirectory(const ZoFileName& name) override;
  int getCurrentDirectory(ZoFileName& name) override;
  int setCurrentDirectory(const ZoFileName& name) override;
  int getTempPath(ZoFileName& name) override;
  int getAbsolutePath(ZoFileName& name) override;
  int getFullPathName(const ZoFileName& name, ZoFileName& full) override;
  int searchPath(const ZoFileName& file, ZoFileName& found, const ZoFileName& path) override;
  int copy(const ZoFileName& from, const ZoFileName& to, bool failIfExists = false) override;
  int append(const ZoFileName& from, const ZoFileName& to, bool mustExist = false) override;
  int move(const ZoFileName& from, const ZoFileName& to) override;
  int erase(const ZoFileName& name, EraseType type) override;
  int getTempFileName(ZoFileName& name, const ZoFileName& pattern) override;
  [[nodiscard]] unsigned int getAttributes(const ZoFileName& name) override;
  int subSetAttributes(const ZoFileName& name, unsigned int attributes) override;
  int getVolumeInformation(unsigned int& serial, unsigned int& longestComponent,
                           unsigned int& flags, const ZoFileName& volume, ZoString& label,
                           ZoString& fileSystem) override;
  int getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB,
                       const ZoFileName& volume) override;
  [[nodiscard]] DriveType getDriveType(const ZoFileName& volume) override;
  int getLogicalDrivesStrings(ZoSequence<ZoFileName>& drives) override;
  int setVolumeLabel(const wchar_t* label, const ZoFileName& volume) override;
  int getCDRom(ZoSequence<ZoFileName>& drives, ZoSequence<ZoString>& labels) override;
  int errorIO(const wchar_t* operation) override;
  [[nodiscard]] ZoString errorTxt() override;
  int getRemote(const ZoFileName& remote, ZoFileName& local, bool failIfExists = false) override;
  int putRemote(const ZoFileName& local, const ZoFileName& remote) override;
  int isRemote(const ZoFileName& name, ZoFileName& local) override;

 private:
  ZoStdFileSystemImp* imp_;
};
