// The dialogs that came before the present ones.
#include <windows.h>

#include <shlobj.h>

#include "platform/common_dialog.h"
#include "platform/item_dialog.h"

namespace {

using zo::ItemDialogAnswer;
using zo::ItemDialogRequest;

// Names with their zeros; for several it holds some ten thousand long ones.
constexpr DWORD kRoomForOne = 32768;
constexpr DWORD kRoomForSeveral = 4 * 1024 * 1024;

const wchar_t* orNull(const std::wstring& text) { return text.empty() ? nullptr : text.c_str(); }

std::wstring filterText(const ItemDialogRequest& request) {
  std::wstring text;
  for (const auto& filter : request.filters)
    text.append(filter.name).append(1, L'\0').append(filter.patterns).append(1, L'\0');
  return text;
}

DWORD flagsOf(ItemDialogRequest::Kind kind) {
  constexpr DWORD kAll =
      OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_ENABLEHOOK;
  if (kind == ItemDialogRequest::kSave) return kAll | OFN_OVERWRITEPROMPT;
  return kAll | OFN_FILEMUSTEXIST |
         (kind == ItemDialogRequest::kOpenSeveral ? OFN_ALLOWMULTISELECT : 0);
}

ItemDialogAnswer askForFiles(const ItemDialogRequest& request, HWND owner) {
  const bool isSeveral = request.kind == ItemDialogRequest::kOpenSeveral;
  std::vector<wchar_t> names(isSeveral ? kRoomForSeveral : kRoomForOne);
  if (request.name.size() < kRoomForOne) request.name.copy(names.data(), request.name.size());
  const std::wstring filters = filterText(request);
  const zo::ShownHook hook({});  // it gets a child of the dialog, whose title is set here
  OPENFILENAMEW call = {};
  call.lStructSize = sizeof call;
  call.hwndOwner = owner;
  call.lpstrFilter = orNull(filters);
  call.nFilterIndex = request.filter + 1;
  call.lpstrFile = names.data();
  call.nMaxFile = static_cast<DWORD>(names.size());
  call.lpstrInitialDir = orNull(request.folder);
  call.lpstrTitle = orNull(request.title);
  call.lpstrDefExt = orNull(request.extension);
  call.Flags = flagsOf(request.kind);
  call.lpfnHook = &zo::ShownHook::proc;
  ItemDialogAnswer answer;
  answer.error = request.kind == ItemDialogRequest::kSave
                     ? ZO_COMMON_DIALOG(GetSaveFileNameW, call, hook)
                     : ZO_COMMON_DIALOG(GetOpenFileNameW, call, hook);
  if (answer.error != ERROR_SUCCESS) return answer;
  if (isSeveral)
    answer.names = zo::namesInBuffer(names.data());
  else
    answer.names.emplace_back(names.data());
  if (call.nFilterIndex > 0) answer.filter = call.nFilterIndex - 1;
  return answer;
}

struct FolderCall {
  const ItemDialogRequest& request;
  bool wasShown = false;
};

int CALLBACK onFolderDialog(HWND window, UINT message, LPARAM, LPARAM data) {
  if (message != BFFM_INITIALIZED) return 0;
  auto& call = *reinterpret_cast<FolderCall*>(data);
  call.wasShown = true;
  if (!call.request.title.empty()) SetWindowTextW(window, call.request.title.c_str());
  if (!call.request.folder.empty())
    SendMessageW(window, BFFM_SETSELECTIONW, TRUE,
                 reinterpret_cast<LPARAM>(call.request.folder.c_str()));
  return 0;
}

ItemDialogAnswer askForFolder(const ItemDialogRequest& request, HWND owner) {
  FolderCall data{request};
  BROWSEINFOW call = {};
  wchar_t name[MAX_PATH] = L"";
  call.hwndOwner = owner;
  call.pszDisplayName = name;
  call.ulFlags = BIF_RETURNONLYFSDIRS;
  call.lpfn = onFolderDialog;
  call.lParam = reinterpret_cast<LPARAM>(&data);
  ItemDialogAnswer answer;
  auto* const list = SHBrowseForFolderW(&call);
  if (!list) {
    answer.error = data.wasShown ? ERROR_CANCELLED : ERROR_INVALID_WINDOW_HANDLE;
    return answer;
  }
  wchar_t path[MAX_PATH] = L"";
  if (SHGetPathFromIDListW(list, path))
    answer.names.emplace_back(path);
  else
    answer.error = ERROR_PATH_NOT_FOUND;
  ILFree(list);
  return answer;
}

}  // namespace

std::vector<std::wstring> zo::namesInBuffer(const wchar_t* buffer) {
  std::vector<std::wstring> names;
  std::wstring folder = buffer;
  const wchar_t* next = buffer + folder.size() + 1;
  if (*next == L'\0') return {folder};
  if (!folder.ends_with(L'\\')) folder += L'\\';
  for (; *next != L'\0'; next += wcslen(next) + 1) names.push_back(folder + next);
  return names;
}

ItemDialogAnswer zo::askForItemsAsBefore(const ItemDialogRequest& request, HWND owner) {
  return request.kind == ItemDialogRequest::kFolder ? askForFolder(request, owner)
                                                    : askForFiles(request, owner);
}
