#include "message_file.h"

#include <zo/files/find_file.h>
#include <zo/system/codepage.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <algorithm>

#include "cancel.h"
#include "paths.h"

namespace zomsg {
namespace {

constexpr std::wstring_view kExtension = L".msg";

constexpr bool isDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
constexpr bool isLetter(wchar_t c) noexcept {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

constexpr unsigned int digitOf(wchar_t c) noexcept {
  if (isDigit(c)) return static_cast<unsigned int>(c - L'0');
  return isLetter(c) && (c | 0x20) <= L'f' ? static_cast<unsigned int>((c | 0x20) - L'a') + 10 : 99;
}

bool readBytes(const std::wstring& path, std::string& bytes) {
  ZoFile file;
  if (file.open(ZoFileName(zolib::shellPath(path)), ZoFile::kRead, ZoFile::kOpenExisting,
                ZoFile::kShareRead | ZoFile::kShareWrite | ZoFile::kShareDelete))
    return false;
  const std::int64_t size = file.size();
  if (size < 0) return false;
  // One byte more than a message file may have is enough to see that it is none.
  constexpr std::int64_t kMost = std::int64_t{ZoMessageMap::kMaxBytes} + 1;
  bytes.resize(static_cast<std::size_t>(std::min(size, kMost)));
  return file.read(bytes.data(), static_cast<unsigned int>(bytes.size())) == bytes.size();
}

Lines linesOf(std::string_view bytes, unsigned int readAs) {
  ZoCodepage& codepages = ZoSystem::codepage();
  unsigned int codepage = 0, mark = 0;
  ZoCodepage::Certainty certainty{};
  if (codepages.detect(bytes, codepage, mark, certainty) == 0) bytes.remove_prefix(mark);
  ZoString text;
  if (codepages.toText(bytes, readAs, ZoCodepage::kReplace, text)) return {};
  return Lines(std::wstring(text.view()));
}

}  // namespace

bool isLanguageTag(std::wstring_view tag) noexcept {
  const std::size_t primary = std::min(tag.find(L'-'), tag.size());
  if (primary < 2 || primary > 3 || tag.size() > 35) return false;
  if (!std::all_of(tag.begin(), tag.begin() + static_cast<std::ptrdiff_t>(primary), isLetter))
    return false;
  std::size_t group = 0;
  for (const wchar_t c : tag) {
    if (c == L'-' ? group == 0 : !isLetter(c) && !isDigit(c)) return false;
    group = c == L'-' ? 0 : group + 1;
    if (group > 8) return false;
  }
  return group > 0;
}

std::optional<int> messageNumber(std::wstring_view text) noexcept {
  const bool isNegative = text.starts_with(L'-');
  if (isNegative) text.remove_prefix(1);
  const bool isHex = !isNegative && (text.starts_with(L"0x") || text.starts_with(L"0X"));
  if (isHex) text.remove_prefix(2);
  if (text.empty()) return std::nullopt;
  const unsigned int base = isHex ? 16 : 10;
  std::uint64_t value = 0;
  for (const wchar_t c : text) {
    if (digitOf(c) >= base) return std::nullopt;
    value = value * base + digitOf(c);
    if (value > (isNegative ? 0x80000000U : 0xFFFFFFFFU)) return std::nullopt;
  }
  const auto bits = static_cast<std::uint32_t>(isNegative ? 0 - value : value);
  return static_cast<int>(bits);
}

std::wstring FileParts::path() const {
  return folder + name + (tag.empty() ? std::wstring() : L'.' + tag) + std::wstring(kExtension);
}

FileParts partsOf(std::wstring_view path) {
  FileParts parts;
  const std::size_t slash = path.find_last_of(L"\\/:");
  if (slash != std::wstring_view::npos) parts.folder = path.substr(0, slash + 1);
  path.remove_prefix(parts.folder.size());
  if (folded(path).ends_with(kExtension)) path.remove_suffix(kExtension.size());
  const std::size_t dot = path.rfind(L'.');
  if (dot != std::wstring_view::npos && dot > 0 && isLanguageTag(path.substr(dot + 1))) {
    parts.tag = path.substr(dot + 1);
    path = path.substr(0, dot);
  }
  parts.name = path;
  return parts;
}

Lines::Lines(std::wstring text) : text_(std::move(text)) {
  for (std::size_t at = 0; at < text_.size();) {
    starts_.push_back(static_cast<unsigned int>(at));
    at = std::min(text_.find_first_of(L"\r\n", at), text_.size());
    at += std::wstring_view(text_).substr(at).starts_with(L"\r\n") ? 2 : 1;
  }
}

std::wstring_view Lines::operator[](std::size_t line) const noexcept {
  if (line == 0 || line > starts_.size()) return {};
  const std::wstring_view rest = std::wstring_view(text_).substr(starts_[line - 1]);
  return rest.substr(0, rest.find_first_of(L"\r\n"));
}

std::wstring_view MessageFile::numberText(unsigned int i) const {
  std::wstring_view line = lines[map.line(i)];
  line.remove_prefix(std::min(line.find_first_not_of(L" \t"), line.size()));
  return line.substr(0, line.find_first_of(L" \t"));
}

std::wstring MessageFile::language() const {
  return parts.tag.empty() ? std::wstring(map.language().view()) : parts.tag;
}

bool readMessageFile(const std::wstring& path, MessageFile& file, Report& report) {
  zolib::forgetReason();
  const ZoFileName name(zolib::shellPath(path));
  const unsigned int attributes = ZoSystem::fileSystem().getAttributes(name);
  if (attributes == 0) {
    report.fail(zolib::kNotFound, "cannot find " + toUtf8(path) + zolib::because());
    return false;
  }
  if (!readBytes(path, file.bytes)) {
    const bool isFolder = (attributes & ZoFindFile::kDirectory) != 0;
    report.fail(zolib::kFailed,
                "cannot read " + toUtf8(path) + (isFolder ? ": it is a folder" : zolib::because()));
    return false;
  }
  file.path = path;
  file.parts = partsOf(path);
  file.isMessageFile = file.map.parse(file.bytes, &file.faults) == 0;
  if (file.isMessageFile) file.lines = linesOf(file.bytes, file.map.codepage());
  return true;
}

void readFolder(const std::wstring& path, MessageFiles& files, Report& report) {
  zolib::forgetReason();
  const std::wstring folder = zolib::shellPath(path);
  if (!(ZoSystem::fileSystem().getAttributes(ZoFileName(folder)) & ZoFindFile::kDirectory)) {
    report.fail(zolib::kNotFound, "cannot find the folder " + toUtf8(path) + zolib::because());
    return;
  }
  std::vector<std::wstring> names;
  ZoFindFile find;
  if (find.open(ZoFileName(zolib::joined(folder, L"*.msg")))) {
    report.fail(zolib::kFailed, "cannot read the folder " + toUtf8(path) + zolib::because());
    return;
  }
  while (find.next()) names.emplace_back(find.fileNameExt());
  std::ranges::sort(names, {}, folded);
  if (names.empty()) report.fail(zolib::kNotFound, toUtf8(path) + " has no message files");
  for (const std::wstring& name : names) {
    if (zolib::isCancelled()) return;
    MessageFile file;
    if (readMessageFile(zolib::joined(path, name), file, report)) files.push_back(std::move(file));
  }
}

std::string counted(std::size_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace zomsg
