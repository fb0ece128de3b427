#include "search/manifest.h"

#include <algorithm>

#include "names/name_compare.h"
#include "search/text_lines.h"
#include "text/utf8.h"

namespace zo {
namespace {

constexpr std::string_view kHead = "zo media 1\n";
constexpr std::size_t kSumLine = 4 + 64 + 1;

std::string narrow(std::wstring_view text) {
  std::string bytes(utf8Size(text), '\0');
  utf16ToUtf8(text, bytes.data());
  return bytes;
}

std::wstring widen(std::string_view bytes) {
  std::wstring text(utf16Size(bytes), L'\0');
  utf8ToUtf16(bytes, text.data());
  return text;
}

// One spelling a file: without empty components and dots, and not the manifest itself.
bool isPlainName(std::wstring_view name) {
  if (equalNames(name, kManifestName)) return false;
  for (std::size_t i = 0, end = 0; i <= name.size(); i = end + 1) {
    end = std::min(name.find(L'\\', i), name.size());
    const std::wstring_view part = name.substr(i, end - i);
    if (part.empty() || part == L"." || part == L"..") return false;
  }
  return true;
}

// Nothing twice, and no more bytes than can be counted.
bool areFiles(const std::vector<ManifestFile>& files) {
  std::vector<std::wstring_view> names;
  std::uint64_t left = UINT64_MAX;
  for (const ManifestFile& file : files) {
    if (file.size > left) return false;
    left -= file.size;
    names.emplace_back(file.name);
  }
  std::ranges::sort(names, [](auto a, auto b) { return orderNames(a, b) < 0; });
  return std::ranges::adjacent_find(names, equalNames) == names.end();
}

bool parseFile(std::string_view line, ManifestFile& file) {
  std::string_view size, sum;
  if (!takeWord(line, size) || !takeWord(line, sum)) return false;
  if (!parseNumber(size, file.size) || !parseSum(sum, file.sum)) return false;
  file.name = widen(line);
  if (file.name.empty() || line.find('\\') != std::string_view::npos) return false;
  std::ranges::replace(file.name, L'/', L'\\');
  return isPlainName(file.name);
}

}  // namespace

bool canBeLabel(std::wstring_view label) noexcept {
  return !label.empty() &&
         std::ranges::all_of(label, [](wchar_t c) { return c >= L' ' && c != L'/' && c != L'\\'; });
}

std::string printManifest(const Manifest& manifest) {
  std::string text(kHead);
  addLine(text, "label", narrow(manifest.label));
  for (const ManifestFile& file : manifest.files) {
    std::string name = narrow(file.name);
    std::ranges::replace(name, '\\', '/');
    addLine(text, "file", std::to_string(file.size) + ' ' + hexOf(file.sum) + ' ' + name);
  }
  return text;
}

std::string withSum(std::string text, const Sha256Sum& sum) {
  addLine(text, "sum", hexOf(sum));
  return text;
}

bool takeSum(std::string_view& text, Sha256Sum& sum) noexcept {
  if (text.size() < kSumLine) return false;
  std::string_view line = text.substr(text.size() - kSumLine), value;
  const bool isOne = takeLine(line, "sum", value) && line.empty() && parseSum(value, sum);
  if (isOne) text.remove_suffix(kSumLine);
  return isOne;
}

bool parseManifest(std::string_view text, Manifest& manifest) {
  std::string_view label, line;
  if (!text.starts_with(kHead)) return false;
  text.remove_prefix(kHead.size());
  if (!takeLine(text, "label", label)) return false;
  manifest.label = widen(label);
  if (!canBeLabel(manifest.label)) return false;
  manifest.files.clear();
  while (takeLine(text, "file", line)) {
    if (!parseFile(line, manifest.files.emplace_back())) return false;
  }
  return text.empty() && areFiles(manifest.files);
}

}  // namespace zo
