// What differs between the variant that is edited and another one, by the paths of the edited one.
#pragma once

#include <zo/variant/variant_report.h>

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zo {

class EditorDifferences {
 public:
  EditorDifferences(const ZoVariant& edited, const ZoVariant& other);

  // Whether the element differs, or something in it, or something that holds it as a whole.
  [[nodiscard]] bool isShown(const ZoString& path) const;
  // Whether the values themselves differ, and not only what is in them.
  [[nodiscard]] bool isWholeChanged() const noexcept { return whole_ != kSame; }
  // What stands in the other one in the element's place; null where nothing does, where the element
  // itself is no difference, and for containers of which only code or flags differ.
  [[nodiscard]] const ZoVariant* other(const ZoString& path) const;
  // What only the other one has in the container.
  [[nodiscard]] const std::vector<const ZoVariantChange*>& missing(const ZoString& container) const;

 private:
  enum Whole { kSame, kOtherHead, kOtherKind };
  [[nodiscard]] bool holdsAll(const std::wstring& outer) const;

  ZoVariantReport report_;
  Whole whole_;
  std::unordered_map<std::wstring, const ZoVariantChange*> changes_;  // but for what is missing
  std::unordered_map<std::wstring, std::vector<const ZoVariantChange*>> missing_;
  std::set<std::wstring, std::less<>> ways_;  // to all of them
};

}  // namespace zo
