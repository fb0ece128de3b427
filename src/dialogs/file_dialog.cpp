#include <windows.h>
#include <zo/dialogs/file_dialog.h>

#include <string>

#include "dialogs/dialog_texts.h"
#include "dialogs/library_step.h"
#include "dialogs/places.h"
#include "names/file_kinds.h"
#include "platform/item_dialog.h"

namespace {

using zo::ItemDialogRequest;

std::wstring_view trimmed(std::wstring_view text) {
  const size_t first = text.find_first_not_of(L' ');
  if (first == std::wstring_view::npos) return {};
  return text.substr(first, text.find_last_not_of(L' ') + 1 - first);
}

// Without blanks round the patterns and without empty ones.
std::wstring cleaned(std::wstring_view patterns) {
  std::wstring clean;
  for (size_t at = 0; at <= patterns.size();) {
    const size_t end = std::min(patterns.find(L';', at), patterns.size());
    const std::wstring_view one = trimmed(patterns.substr(at, end - at));
    if (!one.empty() && !clean.empty()) clean += L';';
    clean += one;
    at = end + 1;
  }
  return clean;
}

// What stands behind the last dot of the first pattern.
std::wstring_view endOf(std::wstring_view patterns) noexcept {
  patterns = patterns.substr(0, patterns.find(L';'));
  const size_t dot = patterns.rfind(L'.');
  return dot == std::wstring_view::npos ? std::wstring_view() : patterns.substr(dot + 1);
}

// "val" of "*.val"; none where a wildcard stands in it.
std::wstring extensionOf(std::wstring_view patterns) {
  const std::wstring_view end = endOf(patterns);
  return std::wstring(end.find_first_of(L"*?") == std::wstring_view::npos ? end : L"");
}

// In front of a pattern whose end has a question mark, which some platforms would give a name to
// save as its extension. It fits no file, and its own end is given to none.
constexpr const wchar_t* kGivesNoExtension = L"|.*;";

ItemDialogRequest::Kind kindOf(ZoFileDialog::Kind kind) {
  switch (kind) {
    case ZoFileDialog::kOpenSeveral:
      return ItemDialogRequest::kOpenSeveral;
    case ZoFileDialog::kSave:
      return ItemDialogRequest::kSave;
    default:
      return ItemDialogRequest::kOpen;
  }
}

ZoFileName folderOf(const ZoFileName& file) {
  ZoFileName folder(file);
  static_cast<void>(folder.setFileNameExt(L""));
  return folder;
}

}  // namespace

int ZoFileDialog::addFilter(zo::TextParameter name, zo::TextParameter patterns) {
  constexpr std::wstring_view kZero(L"", 1);
  const std::wstring clean = cleaned(patterns);
  if (clean.empty() || clean.find(L'\0') != std::wstring::npos ||
      name.find(kZero) != std::wstring_view::npos)
    return ZoResult::refused;
  filters_.push_back({name.empty() ? ZoString(clean) : ZoString(name), ZoString(clean)});
  return ZoResult::ok;
}

void ZoFileDialog::addFilter(ZoFileName::FileKind kind) {
  std::wstring names, patterns;
  for (const wchar_t* const extension : zo::kindExtensions(kind)) {
    if (!names.empty()) names += L", ", patterns += L';';
    for (const wchar_t* c = extension + 1; *c; ++c)
      names += static_cast<wchar_t>(*c >= L'a' && *c <= L'z' ? *c - L'a' + L'A' : *c);
    patterns.append(L"*").append(extension);
  }
  if (patterns.empty())
    filters_.push_back({zo::dialogText(zo::DialogText::allFiles), ZoString(L"*.*")});
  else
    filters_.push_back({zo::dialogText(zo::DialogText::filesOf, {ZoVariant(names)}),
                        ZoString(std::wstring_view(patterns))});
}

int ZoFileDialog::setFilter(zo::NotNegative<unsigned int> index) noexcept {
  if (index >= filters_.size()) return ZoResult::refused;
  filter_ = index;
  return ZoResult::ok;
}

void ZoFileDialog::setFile(const ZoFileName& file) {
  files_.clear();
  if (!file.isEmpty()) files_.push_back(file);
}

int ZoFileDialog::browseLibraries(zo::TextParameter patterns) {
  const std::wstring clean = cleaned(patterns);
  if (clean.find(L'\0') != std::wstring::npos) return ZoResult::refused;
  libraries_ = std::wstring_view(clean);
  return ZoResult::ok;
}

int ZoFileDialog::run(HWND__* owner) {
  zo::ItemDialogRequest request;
  const ZoFileName first = zo::fileOnDisk(file());
  request.kind = kindOf(kind_);
  request.title = title().view();
  for (const Filter& filter : filters_) {
    request.filters.push_back(
        {std::wstring(filter.name.view()), std::wstring(filter.patterns.view())});
    if (kind_ == kSave && endOf(filter.patterns.view()).find(L'?') != std::wstring_view::npos)
      request.filters.back().patterns.insert(0, kGivesNoExtension);
  }
  request.filter = filter_;
  if (!filters_.empty()) request.extension = extensionOf(filters_[filter_].patterns.view());
  request.name = first.fileNameExt();
  request.folder = zo::folderThatIs(folderOf(first));
  if (request.folder.empty()) request.folder = zo::folderThatIs(zo::keptFolder(key_));
  if (request.folder.empty()) request.folder = zo::folderThatIs(folder_);
  std::vector<ZoFileName> files;
  const int code = ask(request, files, owner);
  if (code != ZoResult::ok) return code;
  files_.swap(files);
  if (request.filter < filters_.size()) filter_ = request.filter;
  zo::keepFolder(key_, folderOf(zo::fileOnDisk(file())));
  return ZoResult::ok;
}

// Until the user does not come back from a library to the files.
int ZoFileDialog::ask(zo::ItemDialogRequest& request, std::vector<ZoFileName>& files,
                      HWND__* owner) {
  const bool browses = !libraries_.isEmpty() && kind_ != kSave;
  for (;;) {
    zo::ItemDialogRequest step = request;
    for (auto& filter : step.filters)
      if (browses) filter.patterns = zo::joinedPatterns(filter.patterns, libraries_.view());
    const zo::ItemDialogAnswer answer = zo::askForItems(step, owner);
    if (answer.error != ERROR_SUCCESS) return failed(answer.error);
    request.filter = answer.filter;
    files.assign(answer.names.begin(), answer.names.end());
    if (!browses) return ZoResult::ok;
    zo::LibraryStep libraries{request, libraries_.view(), file()};
    const int button = libraries.ask(files, owner);
    if (button == 0) return failed(libraries.error);
    if (button == IDCANCEL) return ZoResult::cancelled;
    request.filter = libraries.filter;
    if (button == IDOK) return ZoResult::ok;
    request.name = files.front().fileNameExt();
    request.folder = zo::folderThatIs(folderOf(files.front()));
  }
}
