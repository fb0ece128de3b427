#include "platform/item_dialog.h"

#include <shobjidl.h>

#include <memory>

#include "platform/com_apartment.h"
#include "platform/current_folder.h"
#include "platform/error_text.h"

namespace {

using zo::ItemDialogAnswer;
using zo::ItemDialogRequest;

FILEOPENDIALOGOPTIONS optionsOf(ItemDialogRequest::Kind kind) {
  constexpr FILEOPENDIALOGOPTIONS kAll = FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR | FOS_PATHMUSTEXIST;
  switch (kind) {
    case ItemDialogRequest::kOpenSeveral:
      return kAll | FOS_FILEMUSTEXIST | FOS_ALLOWMULTISELECT;
    case ItemDialogRequest::kSave:
      return kAll | FOS_OVERWRITEPROMPT;
    case ItemDialogRequest::kFolder:
      return kAll | FOS_PICKFOLDERS;
    default:
      return kAll | FOS_FILEMUSTEXIST;
  }
}

void setFilters(IFileDialog& dialog, const ItemDialogRequest& request) {
  std::vector<COMDLG_FILTERSPEC> filters;
  filters.reserve(request.filters.size());
  for (const auto& filter : request.filters)
    filters.push_back({filter.name.c_str(), filter.patterns.c_str()});
  if (filters.empty()) return;
  dialog.SetFileTypes(static_cast<UINT>(filters.size()), filters.data());
  dialog.SetFileTypeIndex(request.filter + 1);
}

// A folder that is not there is left out: a drive that was taken away fails no dialog.
void setFolder(IFileDialog& dialog, const std::wstring& folder) {
  if (folder.empty()) return;
  zo::ComPtr<IShellItem> first;
  if (FAILED(SHCreateItemFromParsingName(folder.c_str(), nullptr, __uuidof(IShellItem),
                                         reinterpret_cast<void**>(first.out()))))
    return;
  // Not SetDefaultFolder, which gives way to the folder that was used last.
  dialog.SetFolder(first.get());
}

void prepare(IFileDialog& dialog, const ItemDialogRequest& request) {
  dialog.SetOptions(optionsOf(request.kind));
  if (!request.title.empty()) dialog.SetTitle(request.title.c_str());
  if (!request.extension.empty()) dialog.SetDefaultExtension(request.extension.c_str());
  if (!request.name.empty()) dialog.SetFileName(request.name.c_str());
  // A folder that only is shown would not be taken by OK everywhere.
  if (request.kind == ItemDialogRequest::kFolder && !request.folder.empty())
    dialog.SetFileName(request.folder.c_str());
  setFilters(dialog, request);
  setFolder(dialog, request.folder);
}

HRESULT addName(IShellItem& item, std::vector<std::wstring>& names) {
  PWSTR name = nullptr;
  const HRESULT result = item.GetDisplayName(SIGDN_FILESYSPATH, &name);
  if (FAILED(result)) return result;
  const std::unique_ptr<wchar_t, zo::ComFree> freed(name);
  names.emplace_back(name);
  return result;
}

HRESULT takeOne(IFileDialog& dialog, std::vector<std::wstring>& names) {
  zo::ComPtr<IShellItem> item;
  const HRESULT result = dialog.GetResult(item.out());
  return FAILED(result) ? result : addName(*item.get(), names);
}

HRESULT takeAll(IFileOpenDialog& dialog, std::vector<std::wstring>& names) {
  zo::ComPtr<IShellItemArray> items;
  HRESULT result = dialog.GetResults(items.out());
  if (FAILED(result)) return result;
  DWORD count = 0;
  result = items->GetCount(&count);
  for (DWORD i = 0; SUCCEEDED(result) && i < count; ++i) {
    zo::ComPtr<IShellItem> item;
    result = items->GetItemAt(i, item.out());
    if (SUCCEEDED(result)) result = addName(*item.get(), names);
  }
  return result;
}

template <class Dialog>
ItemDialogAnswer ask(Dialog& dialog, const ItemDialogRequest& request, HWND owner) {
  prepare(dialog, request);
  ItemDialogAnswer answer;
  HRESULT result = dialog.Show(owner);
  if (SUCCEEDED(result)) {
    UINT filter = 0;
    if (SUCCEEDED(dialog.GetFileTypeIndex(&filter)) && filter > 0) answer.filter = filter - 1;
    if constexpr (std::is_same_v<Dialog, IFileOpenDialog>)
      result = takeAll(dialog, answer.names);
    else
      result = takeOne(dialog, answer.names);
  }
  answer.error =
      SUCCEEDED(result) ? ERROR_SUCCESS : zo::systemErrorOf(static_cast<unsigned long>(result));
  return answer;
}

// No file can have such a name, and some platforms' dialogs write past their buffers for it.
void leaveOutTooLong(ItemDialogRequest& request) {
  constexpr std::size_t kLongestName = 255;
  if (request.name.size() > kLongestName) request.name.clear();
  if (request.folder.size() >= MAX_PATH) request.folder.clear();
}

}  // namespace

ItemDialogAnswer zo::askForItems(ItemDialogRequest request, HWND owner) {
  leaveOutTooLong(request);
  const KeptCurrentFolder kept;
  const ComApartment apartment;
  if (apartment) {
    if (request.kind == ItemDialogRequest::kSave) {
      if (const auto dialog = apartment.make<IFileSaveDialog>(__uuidof(FileSaveDialog)))
        return ask(*dialog.get(), request, owner);
    } else if (const auto dialog = apartment.make<IFileOpenDialog>(__uuidof(FileOpenDialog))) {
      return ask(*dialog.get(), request, owner);
    }
  }
  return askForItemsAsBefore(request, owner);
}
