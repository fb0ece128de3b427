// Installation media: making and checking their manifests.
#pragma once

#include <zo/system/file_open.h>

#include <string>

#include "search/manifest.h"

namespace zo {

class Media {
 public:
  // All three stay the caller's.
  Media(const ZoFileName& root, const std::string& key, const ZoMediaWatcher& watcher);

  // As ZoFileOpen has them.
  [[nodiscard]] int check(ZoMediaReport* report);
  [[nodiscard]] int write(const ZoString& label);

  [[nodiscard]] std::wstring manifestName() const { return root_ + std::wstring(kManifestName); }

 private:
  int read(Manifest& manifest) const;
  int collect(const std::wstring& below, unsigned int depth, Manifest& manifest) const;
  int checkFile(const ManifestFile& file, ZoMediaReport& report);
  int sum(const std::wstring& path, std::uint64_t size, Sha256Sum& sum);
  [[nodiscard]] bool goesOn(const std::wstring& path) const;

  std::wstring root_;  // with its final delimiter
  const std::string& key_;
  const ZoMediaWatcher& watcher_;
  unsigned int filesDone_ = 0, files_ = 0;
  std::uint64_t bytesDone_ = 0, bytes_ = 0;
};

}  // namespace zo
