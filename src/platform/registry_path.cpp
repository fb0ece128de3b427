#include "platform/registry_path.h"

namespace zo {

std::wstring withoutEmptyLevels(std::wstring_view path) {
  std::wstring result;
  result.reserve(path.size());
  for (const wchar_t c : path)
    if (c != L'\\' || (!result.empty() && result.back() != L'\\')) result += c;
  if (!result.empty() && result.back() == L'\\') result.pop_back();
  return result;
}

}  // namespace zo
