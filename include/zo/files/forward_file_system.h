// A file-system service that passes every operation on to another one: the base of a service that
// changes a single operation, or watches them.
//
//   class Counting : public ZoForwardFileSystem {
//    public:
//     using ZoForwardFileSystem::ZoForwardFileSystem;
//     int erase(const ZoFileName& name, EraseType type) override {
//       ++erased;
//       return ZoForwardFileSystem::erase(name, type);
//     }
//   };
//   Counting counting(ZoSystem::fileSystem());
//
// The other one must outlive it, and keeps reporting to its own errorIO.
//
// Errors, Threads: as the other one.
#pragma once

#include <zo/system/file_system.h>

class ZoForwardFileSystem : public ZoFileSystem {
 public:
  explicit ZoForwardFileSystem(ZoFileSystem& next) noexcept : next_(next) {}

  [[nodiscard]] int createDirectory(const ZoFileName& name) override {
    return next_.createDirectory(name);
  }
  [[nodiscard]] int getCurrentDirectory(ZoFileName& name) override {
    return next_.getCurrentDirectory(name);
  }
  [[nodiscard]] int setCurrentDirectory(const ZoFileName& name) override {
    return next_.setCurrentDirectory(name);
  }
  [[nodiscard]] int getTempPath(ZoFileName& name) override { return next_.getTempPath(name); }
  [[nodiscard]] int getAbsolutePath(ZoFileName& name) override {
    return next_.getAbsolutePath(name);
  }
  [[nodiscard]] int getFullPathName(const ZoFileName& name, ZoFileName& full) override {
    return next_.getFullPathName(name, full);
  }
  [[nodiscard]] int searchPath(const ZoFileName& file, ZoFileName& found,
                               const ZoFileName& path) override {
    return next_.searchPath(file, found, path);
  }
  [[nodiscard]] int copy(const ZoFileName& from, const ZoFileName& to, bool failIfExists) override {
    return next_.copy(from, to, failIfExists);
  }
  [[nodiscard]] int append(const ZoFileName& from, const ZoFileName& to, bool mustExist) override {
    return next_.append(from, to, mustExist);
  }
  [[nodiscard]] int move(const ZoFileName& from, const ZoFileName& to) override {
    return next_.move(from, to);
  }
  [[nodiscard]] int erase(const ZoFileName& name, EraseType type) override {
    return next_.erase(name, type);
  }
  [[nodiscard]] int getTempFileName(ZoFileName& name, const ZoFileName& pattern) override {
    return next_.getTempFileName(name, pattern);
  }
  [[nodiscard]] unsigned int getAttributes(const ZoFileName& name) override {
    return next_.getAttributes(name);
  }
  [[nodiscard]] int subSetAttributes(const ZoFileName& name, unsigned int attributes) override {
    return next_.subSetAttributes(name, attributes);
  }
  [[nodiscard]] int getVolumeInformation(unsigned int& serial, unsigned int& longestComponent,
                                         unsigned int& flags, const ZoFileName& volume,
                                         ZoString& label, ZoString& fileSystem) override {
    return next_.getVolumeInformation(serial, longestComponent, flags, volume, label, fileSystem);
  }
  [[nodiscard]] int getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB,
                                     const ZoFileName& volume) override {
    return next_.getDiskFreeSpace(freeKiB, totalKiB, volume);
  }
  [[nodiscard]] DriveType getDriveType(const ZoFileName& volume) override {
    return next_.getDriveType(volume);
  }
  [[nodiscard]] int getLogicalDrivesStrings(ZoSequence<ZoFileName>& drives) override {
    return next_.getLogicalDrivesStrings(drives);
  }
  [[nodiscard]] int setVolumeLabel(const wchar_t* label, const ZoFileName& volume) override {
    return next_.setVolumeLabel(label, volume);
  }
  [[nodiscard]] int getCDRom(ZoSequence<ZoFileName>& drives,
                             ZoSequence<ZoString>& labels) override {
    return next_.getCDRom(drives, labels);
  }
  int errorIO(const wchar_t* operation) override { return next_.errorIO(operation); }
  [[nodiscard]] ZoString errorTxt() override { return next_.errorTxt(); }
  [[nodiscard]] int getRemote(const ZoFileName& remote, ZoFileName& local,
                              bool failIfExists) override {
    return next_.getRemote(remote, local, failIfExists);
  }
  [[nodiscard]] int putRemote(const ZoFileName& local, const ZoFileName& remote) override {
    return next_.putRemote(local, remote);
  }
  [[nodiscard]] int isRemote(const ZoFileName& name, ZoFileName& local) override {
    return next_.isRemote(name, local);
  }

 protected:
  [[nodiscard]] ZoFileSystem& next() const noexcept { return next_; }

 private:
  ZoFileSystem& next_;
};
