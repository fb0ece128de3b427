// What a file search means by itself, over the two operations that each must give.
#include <zo/files/file.h>
#include <zo/results.h>
#include <zo/system/file_search.h>
#include <zo/text/containers/array.h>
#include <zo/text/string.h>

#include <utility>

namespace {

// An iterator together with the list that it walks.
class OwnNames {
 protected:
  ZoArray<ZoFileName> names_;
};

class NameIterator final : OwnNames, public ZoCIterator<ZoFileName> {
 public:
  NameIterator(ZoFileSearch& search, const ZoFileName& pattern, unsigned int kinds) {
    if (search.findNames(pattern, names_, kinds) != ZoResult::ok) names_ = {};
  }

  void reset() override { at_ = 0; }
  bool toFirst() override {
    at_ = 0;
    return isValid();
  }
  [[nodiscard]] bool atFirst() const override { return at_ == 0 && isValid(); }
  [[nodiscard]] bool isValid() const override { return at_ < names_.entries(); }
  bool next() override {
    if (isValid()) ++at_;
    return isValid();
  }

 protected:
  [[nodiscard]] const ZoFileName* element() const override { return names_.at(at_); }

 private:
  unsigned int at_ = 0;
};

}  // namespace

int ZoFileSearch::addFolder(const ZoFileName& folder, const wchar_t* module, int priority,
                            bool below) {
  return priority == 0 && !below ? addPath(folder, module) : ZoResult::refused;
}

int ZoFileSearch::addLibrary(const ZoFileName&, const wchar_t*, int) { return ZoResult::refused; }
int ZoFileSearch::addServer(const ZoFileName&, const wchar_t*, int) { return ZoResult::refused; }
int ZoFileSearch::setCache(const ZoFileName&, std::uint64_t, unsigned int) {
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

std::unique_ptr<ZoCIterator<ZoFileName>> ZoFileSearch::findAll(const ZoFileName& pattern,
                                                               unsigned int kinds) {
  return std::make_unique<NameIterator>(*this, pattern, kinds);
}

int ZoFileSearch::open(const ZoFileName& name, ZoFile& file) {
  return openFile(name, file, ZoFile::kRead, ZoFile::kShareRead);
}
int ZoFileSearch::open(const ZoFileName& name, ZoFile& file, int access) {
  return openFile(name, file, access, ZoFile::kShareRead);
}
