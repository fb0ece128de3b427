#include <windows.h>
#include <zo/files/std_file_system.h>

#include <string>

#include "files/ftp.h"
#include "files/std_file_system_imp.h"
#include "platform/error_text.h"
#include "system/service_scope.h"

namespace {

// What the platform has no message for still has words, which end like its messages.
ZoString messageOf(DWORD error) {
  std::wstring text = zo::serverWords(error);
  if (text.empty()) {
    text = zo::errorText(error);
    if (!text.empty()) return ZoString(std::wstring_view(text));
    text = zo::internetMessage(error);
  }
  if (text.empty()) text = L"Error " + std::to_wstring(error) + L'.';
  return ZoString(std::wstring_view(text += L"\r\n"));
}

}  // namespace

ZoStdFileSystem::ZoStdFileSystem() : imp_(new ZoStdFileSystemImp(*this)) {}
ZoStdFileSystem::~ZoStdFileSystem() { delete imp_; }
int ZoStdFileSystem::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoStdFileSystem::errorIO(const wchar_t*) {
  zo::keptError = GetLastError();
  return ZoResult::ok;
}

ZoString ZoStdFileSystem::errorTxt() { return messageOf(zo::keptError); }

int ZoStdFileSystem::createDirectory(const ZoFileName& name) { return imp_->createDirectory(name); }
int ZoStdFileSystem::getCurrentDirectory(ZoFileName& name) {
  return imp_->getCurrentDirectory(name);
}
int ZoStdFileSystem::setCurrentDirectory(const ZoFileName& name) {
  return imp_->setCurrentDirectory(name);
}
int ZoStdFileSystem::getTempPath(ZoFileName& name) { return imp_->getTempPath(name); }
int ZoStdFileSystem::getAbsolutePath(ZoFileName& name) { return imp_->getAbsolutePath(name); }
int ZoStdFileSystem::getFullPathName(const ZoFileName& name, ZoFileName& full) {
  return imp_->getFullPathName(name, full);
}
int ZoStdFileSystem::searchPath(const ZoFileName& file, ZoFileName& found, const ZoFileName& path) {
  return imp_->searchPath(file, found, path);
}
int ZoStdFileSystem::copy(const ZoFileName& from, const ZoFileName& to, bool failIfExists) {
  return imp_->copy(from, to, failIfExists);
}
int ZoStdFileSystem::append(const ZoFileName& from, const ZoFileName& to, bool mustExist) {
  return imp_->append(from, to, mustExist);
}
int ZoStdFileSystem::move(const ZoFileName& from, const ZoFileName& to) {
  return imp_->move(from, to);
}
int ZoStdFileSystem::erase(const ZoFileName& name, EraseType type) {
  return imp_->erase(name, type);
}
int ZoStdFileSystem::getTempFileName(ZoFileName& name, const ZoFileName& pattern) {
  return imp_->getTempFileName(name, pattern);
}
unsigned int ZoStdFileSystem::getAttributes(const ZoFileName& name) {
  return imp_->getAttributes(name);
}
int ZoStdFileSystem::subSetAttributes(const ZoFileName& name, unsigned int attributes) {
  return imp_->subSetAttributes(name, attributes);
}
int ZoStdFileSystem::getVolumeInformation(unsigned int& serial, unsigned int& longestComponent,
                                          unsigned int& flags, const ZoFileName& volume,
                                          ZoString& label, ZoString& fileSystem) {
  return imp_->getVolumeInformation(serial, longestComponent, flags, volume, label, fileSystem);
}
int ZoStdFileSystem::getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB,
                                      const ZoFileName& volume) {
  return imp_->getDiskFreeSpace(freeKiB, totalKiB, volume);
}
ZoFileSystem::DriveType ZoStdFileSystem::getDriveType(const ZoFileName& volume) {
  return imp_->getDriveType(volume);
}
int ZoStdFileSystem::getLogicalDrivesStrings(ZoSequence<ZoFileName>& drives) {
  return imp_->getLogicalDrivesStrings(drives);
}
int ZoStdFileSystem::setVolumeLabel(const wchar_t* label, const ZoFileName& volume) {
  return imp_->setVolumeLabel(label, volume);
}
int ZoStdFileSystem::getCDRom(ZoSequence<ZoFileName>& drives, ZoSequence<ZoString>& labels) {
  return imp_->getCDRom(drives, labels);
}
int ZoStdFileSystem::getRemote(const ZoFileName& remote, ZoFileName& local, bool failIfExists) {
  return imp_->getRemote(remote, local, failIfExists);
}
int ZoStdFileSystem::putRemote(const ZoFileName& local, const ZoFileName& remote) {
  return imp_->putRemote(local, remote);
}
int ZoStdFileSystem::isRemote(const ZoFileName& name, ZoFileName& local) {
  return imp_->isRemote(name, local);
}

int ZoStdFileSystemImp::report(const wchar_t* operation) {
  return zo::keepReason(operation, &service_);
}

int ZoStdFileSystemImp::report(const wchar_t* operation, DWORD error, int code) {
  return zo::keepReason(operation, error, code, &service_);
}

int ZoStdFileSystemImp::noUse(const wchar_t* operation) {
  return report(operation, ERROR_NOT_SUPPORTED, ZoResult::invalid);
}

int ZoStdFileSystemImp::listed(int code, const wchar_t* operation) {
  return code == ZoResult::ok ? code : report(operation, ERROR_NOT_ENOUGH_MEMORY, code);
}

int ZoStdFileSystemImp::result(bool done, const wchar_t* operation) {
  return done ? ZoResult::ok : report(operation);
}
