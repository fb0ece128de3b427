// What a file search means by itself, over the two operations that each must give.
#include <zo/files/file.h>
#include <zo/results.h>
#include <zo/system/file_search.h>
#include <zo/text/containers/array.h>
#include <zo/text/string.h>

#include <utility>

ZoFoundNames::ZoFoundNames(const ZoSequence<ZoFileName>& names) {
  names_.assign(names.begin(), names.end());
}

int ZoFileSearch::addFolder(const ZoFileName& folder, const wchar_t* module, int priority,
                            bool below) {
  return priority == 0 && !below ? addPath(folder, module) : ZoResult::refused;
}

int ZoFileSearch::addLibrary(const ZoFileName&, const wchar_t*, int) { return ZoResult::refused; }
int ZoFileSearch::addServer(const ZoFileName&, const wchar_t*, int) { return ZoResult::refused; }
int ZoFileSearch::setCacheFolder(const ZoFileName&, std::uint64_t, unsigned int) {
  return ZoResult::refused;
}

int ZoFileSearch::locate(const ZoFileName& name, ZoFound& found) {
  ZoFound result;
  if (const int code = find(name, result.name)) return code;
  result.place = ZoFound::kAsNamed;
  found = std::move(result);
  return ZoResult::ok;
}

int ZoFileSearch::findNames(const ZoFileName&, ZoSequence<ZoFileName>&, unsigned int) {
  return ZoResult::refused;
}

int ZoFileSearch::openFile(const ZoFileName& name, ZoFile& file, int access, int share) {
  ZoFileName found;
  if (const int code = find(name, found)) return code;
  return file.open(found, access, ZoFile::kOpenExisting, share);
}

int ZoFileSearch::toDisk(const ZoFileName& name, ZoFileName& file) { return find(name, file); }
int ZoFileSearch::explain(const ZoFileName&, ZoString&) { return ZoResult::refused; }
int ZoFileSearch::refresh() { return ZoResult::refused; }

ZoFoundNames ZoFileSearch::findAll(const ZoFileName& pattern, unsigned int kinds) {
  ZoArray<ZoFileName> names;
  return findNames(pattern, names, kinds) == ZoResult::ok ? ZoFoundNames(names) : ZoFoundNames();
}

int ZoFileSearch::open(const ZoFileName& name, ZoFile& file) {
  return openFile(name, file, ZoFile::kRead, ZoFile::kShareRead);
}
int ZoFileSearch::open(const ZoFileName& name, ZoFile& file, int access) {
  return openFile(name, file, access, ZoFile::kShareRead);
}
