// The standards that are there, by name, edition and module.
//
// Threads: const functions any; the others one at a time, beside readers. What is given out is
//          never changed, and has texts of its own.
#pragma once

#include <zo/names/file_name.h>
#include <zo/system/standard_mgr.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/containers/text_keys.h>
#include <zo/variant/variant.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "headless/standard_name.h"
#include "platform/shared_lock.h"

namespace zo {

struct Standard {
  ZoVariant value;
  std::wstring name, edition, replacedBy, firm, catalog, standardClass;  // texts of the value
  bool isWithdrawn = false;
  std::wstring module, file;
  std::uint64_t order = 0;  // of adding
};
using StandardPtr = std::shared_ptr<const Standard>;

class StandardStore {
 public:
  // Null without one.
  [[nodiscard]] StandardPtr find(std::wstring_view spelling) const;
  // What successor names, or a newer edition of one that was asked for by its edition. Refused,
  // standardCircle.
  [[nodiscard]] int successor(std::wstring_view spelling, std::wstring& name) const;
  [[nodiscard]] std::vector<std::wstring> names(const ZoStandardFilter& filter) const;
  [[nodiscard]] std::vector<std::wstring> editions(std::wstring_view spelling) const;

  // Adds one or a sequence, all or none, and notes the names of those that were not there, or not
  // so: 0, invalid.
  [[nodiscard]] int add(const ZoVariant& standards, std::wstring_view module,
                        std::wstring_view file, std::vector<std::wstring>& names);
  // Of a module, those of that very name; an empty spelling is all.
  void remove(std::wstring_view spelling, std::wstring_view module,
              std::vector<std::wstring>& names);

 private:
  // All standards of one name: the newest edition first, of one edition the last added.
  struct Group {
    std::vector<StandardPtr> standards;
  };
  using Groups = ZoHashDict<Group, ZoString>;

  [[nodiscard]] const Group* groupOf(const StandardName& name) const;
  [[nodiscard]] const StandardPtr* pick(StandardName& name) const;
  // The key of the standards that have that very name, without regard to adopters; else empty.
  [[nodiscard]] std::wstring ownKey(StandardName& name) const;
  void insert(StandardPtr standard, std::wstring_view key, std::wstring_view core);
  // Takes out what its module had of the same edition before. False when that was the same, and
  // nothing had come in front of it since.
  bool replaceOld(const Standard& standard);
  // Needs no memory.
  void removeIf(const std::function<bool(const Standard&)>& isGone);
  void removeEmptyGroups();

  mutable SharedLock lock_;
  Groups groups_;                                      // by the name's key
  ZoHashDict<std::vector<ZoString>, ZoString> cores_;  // the keys that have a core
  std::uint64_t lastOrder_ = 0;
};

}  // namespace zo
