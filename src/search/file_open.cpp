// What a file open service means by itself, over the operation that each must give.
#include <zo/files/file.h>
#include <zo/system/file_open.h>
#include <zo/system/file_search.h>

#include "system/service_or_null.h"

int ZoFileOpen::openFile(const ZoFileName& name, ZoFile& file, int access, int share) {
  auto* const search = zo::serviceOrNull<ZoFileSearch>();
  return search ? search->openFile(name, file, access, share) : ZoResult::refused;
}

int ZoFileOpen::checkMedia(const ZoFileName&, ZoMediaReport*, const ZoMediaWatcher&) {
  return ZoResult::refused;
}
int ZoFileOpen::writeManifest(const ZoFileName&, const ZoString&, const ZoMediaWatcher&) {
  return ZoResult::refused;
}
int ZoFileOpen::requestMedia(const ZoString&, ZoFileName&) { return ZoResult::refused; }
int ZoFileOpen::setMediaKey(const void*, std::size_t) { return ZoResult::refused; }
int ZoFileOpen::setMediaPrompt(ZoMediaPrompt) { return ZoResult::refused; }

int ZoFileOpen::open(const ZoFileName& name, ZoFile& file) {
  return openFile(name, file, ZoFile::kRead, ZoFile::kShareRead);
}
int ZoFileOpen::open(const ZoFileName& name, ZoFile& file, int access) {
  return openFile(name, file, access, ZoFile::kShareRead);
}
