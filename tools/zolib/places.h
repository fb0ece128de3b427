// Which names the members of a library leave for others: where one is a file, another cannot have
// it as a folder, or only one of the two comes out of the library.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

#include "session.h"

namespace zolib {

class Places {
 public:
  // Nothing yet.
  Places() = default;
  // What a library holds, but for members that are about to leave their names; folded() ones.
  explicit Places(Session& session, const std::unordered_set<std::wstring>& leaving = {});

  // Takes a name that fits. Else what of it is a file or folder already, and not what the name
  // takes it for: "f" of a name "f/x" beside a member f, or beside members in f.
  [[nodiscard]] std::wstring takeIfFree(std::wstring_view name);
  // Whether a member has the name itself.
  [[nodiscard]] bool hasFile(std::wstring_view name) const;

 private:
  [[nodiscard]] std::wstring takenOf(std::wstring_view name) const;
  void take(std::wstring_view name);

  std::unordered_set<std::wstring> files_, folders_;  // folded
};

}  // namespace zolib
