// What the standard file search does with a name of any form, over the places that names are looked
// for in.
//
// Errors:  as in zo/system/file_search.h.
// Threads: any; what changes the cache under the service's guard.
#pragma once

#include <zo/search/download_cache.h>
#include <zo/system/file_search.h>

#include <cstdint>
#include <memory>
#include <string>

#include "search/file_finder.h"

struct ZoMemberName;
template <class T>
class ZoSequence;

namespace zo {

// Where a file was found, in texts.
struct Located {
  ZoFound::Place place = ZoFound::kNowhere;
  std::wstring file;              // its full name; of a member that of its library; or a URL
  std::wstring member;            // as its library spells it; else empty
  ZoFileName copy;                // of a URL's file on this machine
  std::shared_ptr<FilePlace> at;  // a place that was added, or the current directory

  [[nodiscard]] ZoFileName name() const;
  [[nodiscard]] ZoFound found() const;
};

class FileSearchImp {
 public:
  [[nodiscard]] FileFinder& finder() noexcept { return finder_; }

  [[nodiscard]] int locate(const ZoFileName& name, Located& found, SearchReport* report = nullptr);
  [[nodiscard]] int findNames(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                              unsigned int kinds);
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file, int access, int share);
  [[nodiscard]] int toDisk(const ZoFileName& name, ZoFileName& file);
  [[nodiscard]] int setCache(const ZoFileName& folder, std::uint64_t limit, unsigned int maxAge);

 private:
  [[nodiscard]] int locatePlain(const ZoFileName& name, Located& found, SearchReport* report);
  [[nodiscard]] int locateFile(const ZoFileName& name, Located& found, SearchReport* report);
  [[nodiscard]] int locateAsNamed(const ZoFileName& name, Located& found, SearchReport* report);
  [[nodiscard]] int locateBelow(const ZoFileName& name, Located& found, SearchReport* report);
  [[nodiscard]] int locateOnServers(const std::wstring& name, Located& found, SearchReport* report);
  [[nodiscard]] int locateMember(const ZoFileName& name, Located& found, SearchReport* report);
  [[nodiscard]] int fetch(const ZoFileName& url, Located& found, SearchReport* report);
  [[nodiscard]] int copyOf(const ZoFileName& url, ZoFileName& file, bool asksServer) const;
  [[nodiscard]] int namesOfMembers(const ZoFileName& pattern, ZoSequence<ZoFileName>& names,
                                   unsigned int kinds);
  template <class Use>
  [[nodiscard]] int withLocated(const ZoFileName& name, const Use& use);
  [[nodiscard]] int copyMember(const Located& member, ZoFileName& file);
  [[nodiscard]] std::wstring folderOfCopies() const;

  FileFinder finder_;
  struct Cache {
    ZoDownloadCache downloads;
    std::wstring folder;  // with its final delimiter
  };
  std::atomic<std::shared_ptr<Cache>> cache_;  // null: none
};

// The name of a file as it is to be looked for: its macro, if any, replaced. Refused for an unknown
// one.
[[nodiscard]] int withoutMacro(const ZoFileName& name, ZoFileName& plain);

}  // namespace zo
