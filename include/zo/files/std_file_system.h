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

  // With what they refuse at compile time.
  using ZoFileSystem::append;
  using ZoFileSystem::copy;
  using ZoFileSystem::getRemote;
  using ZoFileSystem::setVolumeLabel;

  [[nodiscard]] int createDirectory(const ZoFileName& name) override;
  [[nodiscard]] int getCurrentDirectory(ZoFileName& name) override;
  [[nodiscard]] int setCurrentDirectory(const ZoFileName& name) override;
  [[nodiscard]] int getTempPath(ZoFileName& name) override;
  [[nodiscard]] int getAbsolutePath(ZoFileName& name) override;
  [[nodiscard]] int getFullPathName(const ZoFileName& name, ZoFileName& full) override;
  [[nodiscard]] int searchPath(const ZoFileName& file, ZoFileName& found,
                               const ZoFileName& path) override;
  [[nodiscard]] int copy(const ZoFileName& from, const ZoFileName& to,
                         bool failIfExists = false) override;
  [[nodiscard]] int append(const ZoFileName& from, const ZoFileName& to,
                           bool mustExist = false) override;
  [[nodiscard]] int move(const ZoFileName& from, const ZoFileName& to) override;
  [[nodiscard]] int erase(const ZoFileName& name, EraseType type) override;
  [[nodiscard]] int getTempFileName(ZoFileName& name, const ZoFileName& pattern) override;
  [[nodiscard]] unsigned int getAttributes(const ZoFileName& name) override;
  [[nodiscard]] int subSetAttributes(const ZoFileName& name, unsigned int attributes) override;
  [[nodiscard]] int getVolumeInformation(unsigned int& serial, unsigned int& longestComponent,
                                         unsigned int& flags, const ZoFileName& volume,
                                         ZoString& label, ZoString& fileSystem) override;
  [[nodiscard]] int getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB,
                                     const ZoFileName& volume) override;
  [[nodiscard]] DriveType getDriveType(const ZoFileName& volume) override;
  [[nodiscard]] int getLogicalDrivesStrings(ZoSequence<ZoFileName>& drives) override;
  [[nodiscard]] int setVolumeLabel(const wchar_t* label, const ZoFileName& volume) override;
  [[nodiscard]] int getCDRom(ZoSequence<ZoFileName>& drives, ZoSequence<ZoString>& labels) override;
  int errorIO(const wchar_t* operation) override;
  [[nodiscard]] ZoString errorTxt() override;
  [[nodiscard]] int getRemote(const ZoFileName& remote, ZoFileName& local,
                              bool failIfExists = false) override;
  [[nodiscard]] int putRemote(const ZoFileName& local, const ZoFileName& remote) override;
  [[nodiscard]] int isRemote(const ZoFileName& name, ZoFileName& local) override;

 private:
  ZoStdFileSystemImp* imp_;
};
