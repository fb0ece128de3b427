// Dialogs that are answered without a user, edits of a large variant, and the editor's window until
// it is drawn, beside a plain dialog that is filled whole with a tenth of the elements. The windows
// need a display; without one these are skipped.
#include <benchmark/benchmark.h>
#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <zo/containers.h>
#include <zo/dialogs.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

void require(bool isWell) {
  if (!isWell) std::abort();
}

constexpr int kMany = 100'000, kBranch = 10'000;
constexpr int kInTree = 1'000;  // of a branch; the editor's list has all

LRESULT send(HWND window, UINT message, WPARAM w = 0, const void* l = nullptr) {
  return SendMessageW(window, message, w, reinterpret_cast<LPARAM>(l));
}

// ---- Answered without a user ----

void answerOurs(benchmark::State& state) {
  ZoDialogs::setAnswer([](ZoDialog& dialog) {
    static_cast<ZoFileDialog&>(dialog).setFile(ZoFileName(L"C:\\parts\\bolt.dwg"));
    return ZoResult::ok;
  });
  for (auto _ : state) {
    ZoFileDialog dialog(ZoFileDialog::kOpen);
    dialog.addFilter(ZoFileName::kDwg);
    dialog.setFolder(ZoFileName(L"C:\\parts\\"));
    require(dialog.show() == 0);
    benchmark::DoNotOptimize(dialog.file());
  }
  ZoDialogs::setAnswer({});
}

// What stands in front of the plain call, and what is read behind it.
void answerPlain(benchmark::State& state) {
  for (auto _ : state) {
    std::wstring filter(L"DWG\0*.dwg\0", 10), folder = L"C:\\parts";
    std::vector<wchar_t> name(32768);
    OPENFILENAMEW call = {};
    call.lStructSize = sizeof call;
    call.lpstrFilter = filter.c_str();
    call.nFilterIndex = 1;
    call.lpstrFile = name.data();
    call.nMaxFile = static_cast<DWORD>(name.size());
    call.lpstrInitialDir = folder.c_str();
    benchmark::DoNotOptimize(call);
    wcscpy(call.lpstrFile, L"C:\\parts\\bolt.dwg");
    std::wstring file = call.lpstrFile;
    benchmark::DoNotOptimize(file);
  }
}

// ---- Edits ----

std::wstring keyOf(int i) { return L"key" + std::to_wstring(i); }

ZoVariant dictionary(int count) {
  ZoVariant value(ZoVariant::kDict);
  for (int i = 0; i < count; ++i)
    require(value.asDict()->insertAt(ZoString(keyOf(i)), ZoVariant(i)) == 0);
  return value;
}

// Dictionaries of one number in a sequence, or numbers.
ZoVariant sequence(int count, bool ofDicts) {
  ZoArray<ZoVariant> elements;
  for (int i = 0; i < count; ++i) {
    ZoVariant one(i);
    if (ofDicts) {
      one = ZoVariant(ZoVariant::kDict);
      require(one.put(L"n", ZoVariant(i)) == 0);
    }
    require(elements.append(std::move(one)) == 0);
  }
  return ZoVariant(std::move(elements));
}

void setAndUndo(benchmark::State& state) {
  ZoVariantEdits edits(dictionary(kMany));
  for (auto _ : state) {
    require(edits.setText(L"key50000", L"7") == 0);
    require(edits.undo() == 0);
  }
}

void setAndUndoByHand(benchmark::State& state) {
  nlohmann::json value;
  for (int i = 0; i < kMany; ++i) value["key" + std::to_string(i)] = i;
  for (auto _ : state) {
    auto& place = value[nlohmann::json::json_pointer("/key50000")];
    nlohmann::json before = std::stoi("7");
    std::swap(place, before);
    std::swap(value[nlohmann::json::json_pointer("/key50000")], before);
  }
  require(value["key50000"] == 50000);
}

void removeAndUndo(benchmark::State& state) {
  ZoVariantEdits edits(sequence(kMany, false));
  for (auto _ : state) {
    require(edits.remove(L"50000") == 0);
    require(edits.undo() == 0);
  }
}

void removeAndUndoByHand(benchmark::State& state) {
  nlohmann::json value;
  for (int i = 0; i < kMany; ++i) value.push_back(i);
  for (auto _ : state) {
    nlohmann::json before = std::move(value[50000]);
    value.erase(50000);
    value.insert(value.begin() + 50000, std::move(before));
  }
  require(value.size() == kMany && value[50000] == 50000);
}

// ---- Windows ----

// Sees the dialog of this thread when it is complete and drawn, and cancels it. It comes by the
// dialog's own loop: a hook that saw each message would cost more than what is measured.
class Opened {
 public:
  explicit Opened(std::function<void(HWND)> act)
      : act_(std::move(act)),
        hook_(SetWindowsHookExW(WH_MSGFILTER, onLoop, nullptr, GetCurrentThreadId())) {
    current = this;
    PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
  }
  ~Opened() { UnhookWindowsHookEx(hook_); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

 private:
  static LRESULT CALLBACK onLoop(int code, WPARAM w, LPARAM l) {
    const auto& message = *reinterpret_cast<const MSG*>(l);
    if (code == MSGF_DIALOGBOX && !message.hwnd && message.message == WM_APP)
      EnumThreadWindows(GetCurrentThreadId(), onWindow, 0);
    return CallNextHookEx(nullptr, code, w, l);
  }
  static BOOL CALLBACK onWindow(HWND window, LPARAM) {
    wchar_t name[10] = L"";
    if (!GetClassNameW(window, name, 10) || wcscmp(name, L"#32770") != 0) return TRUE;
    ShowWindow(window, SW_SHOW);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    current->act_(window);
    PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    return FALSE;
  }

  static inline Opened* current = nullptr;
  std::function<void(HWND)> act_;
  HHOOK hook_;
};

double since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// show(): whether there was a window.
template <class Show>
void timeOpening(benchmark::State& state, Show show) {
  for (auto _ : state) {
    const auto start = Clock::now();
    const Opened opened([&](HWND) { state.SetIterationTime(since(start)); });
    if (!show()) return state.SkipWithError("no display");
  }
}

ZoVariantDialog editorOf(ZoVariant value) {
  ZoVariantDialog dialog(std::move(value));
  dialog.remember(L"");
  return dialog;
}

void openOurs(benchmark::State& state, const ZoVariant& value) {
  ZoVariantDialog dialog = editorOf(value);
  timeOpening(state, [&] { return dialog.show() == ZoResult::cancelled; });
}
void openNumbers(benchmark::State& state) { openOurs(state, sequence(kMany, false)); }
void openKeys(benchmark::State& state) { openOurs(state, dictionary(kMany)); }
void openContainers(benchmark::State& state) { openOurs(state, sequence(kMany, true)); }

void openBranch(benchmark::State& state) {
  ZoVariant value;
  require(value.put(L"many", sequence(kBranch, true)) == 0);
  ZoVariantDialog dialog = editorOf(std::move(value));
  for (auto _ : state) {
    const Opened opened([&](HWND window) {
      HWND const tree = FindWindowExW(window, nullptr, WC_TREEVIEWW, nullptr);
      const LRESULT root = send(tree, TVM_GETNEXTITEM, TVGN_ROOT);
      const LRESULT many = SendMessageW(tree, TVM_GETNEXTITEM, TVGN_CHILD, root);
      const auto start = Clock::now();
      SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, many);
      UpdateWindow(tree);
      state.SetIterationTime(since(start));
      require(send(tree, TVM_GETCOUNT) == kInTree + 3);  // root, branch, and how many more
    });
    if (dialog.show() != ZoResult::cancelled) return state.SkipWithError("no display");
  }
}

// ---- The peer: a plain dialog that is filled whole ----

void fillTree(HWND tree, int count) {
  TVINSERTSTRUCTW item = {};
  item.hParent = TVI_ROOT;
  item.hInsertAfter = TVI_FIRST;
  item.item.mask = TVIF_TEXT;
  for (int i = 0; i < count; ++i) {
    std::wstring text = L"[" + std::to_wstring(i) + L"]";
    item.item.pszText = text.data();
    item.hInsertAfter = reinterpret_cast<HTREEITEM>(send(tree, TVM_INSERTITEMW, 0, &item));
  }
}

// Name, type, value and flags of each element.
void fillList(HWND list, int count) {
  LVCOLUMNW column = {};
  column.mask = LVCF_WIDTH;
  column.cx = 70;
  for (WPARAM i = 0; i < 4; ++i) send(list, LVM_INSERTCOLUMNW, i, &column);
  send(list, LVM_SETITEMCOUNT, static_cast<WPARAM>(count));
  for (int i = 0; i < count; ++i) {
    std::wstring cells[] = {keyOf(i), L"Integer", std::to_wstring(i), L""};
    LVITEMW item = {};
    item.mask = LVIF_TEXT;
    item.iItem = i;
    for (; item.iSubItem < 4; ++item.iSubItem) {
      item.pszText = cells[item.iSubItem].data();
      send(list, item.iSubItem == 0 ? LVM_INSERTITEMW : LVM_SETITEMTEXTW, static_cast<WPARAM>(i),
           &item);
    }
  }
}

struct Filling {
  const wchar_t* control;
  DWORD style;
  void (*fill)(HWND, int);
  int count;
};

INT_PTR CALLBACK plain(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    const auto& filling = *reinterpret_cast<const Filling*>(l);
    HWND const control =
        CreateWindowExW(0, filling.control, L"", WS_CHILD | WS_VISIBLE | filling.style, 0, 0, 300,
                        300, window, nullptr, nullptr, nullptr);
    require(control != nullptr);
    send(control, WM_SETREDRAW, FALSE);
    filling.fill(control, filling.count);
    send(control, WM_SETREDRAW, TRUE);
  }
  if (message == WM_COMMAND && LOWORD(w) == IDCANCEL) EndDialog(window, IDCANCEL);
  return FALSE;
}

void openPlain(benchmark::State& state, const Filling& filling) {
  struct alignas(4) Form {
    DLGTEMPLATE head;
    WORD menu, windowClass, title;
  };
  const Form form{{WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 300, 200}, 0, 0, 0};
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&classes);
  timeOpening(state, [&] {
    return DialogBoxIndirectParamW(nullptr, &form.head, nullptr, plain,
                                   reinterpret_cast<LPARAM>(&filling)) == IDCANCEL;
  });
}
void openList(benchmark::State& state) {
  openPlain(state, {WC_LISTVIEWW, LVS_REPORT, fillList, kBranch});
}
void openTree(benchmark::State& state) { openPlain(state, {WC_TREEVIEWW, 0, fillTree, kBranch}); }

BENCHMARK(answerOurs)->Name("Answer/file/ours");
BENCHMARK(answerPlain)->Name("Answer/file/peer:OPENFILENAMEW_alone");
BENCHMARK(setAndUndo)->Name("SetAndUndo/of_100000_keys/ours");
BENCHMARK(setAndUndoByHand)->Name("SetAndUndo/of_100000_keys/peer:nlohmann_by_hand");
BENCHMARK(removeAndUndo)->Name("RemoveAndUndo/of_100000/ours");
BENCHMARK(removeAndUndoByHand)->Name("RemoveAndUndo/of_100000/peer:nlohmann_by_hand");

void window(const char* name, void (*run)(benchmark::State&)) {
  benchmark::RegisterBenchmark(name, run)->UseManualTime()->Unit(benchmark::kMillisecond);
}

const bool named = [] {
  window("Open100000/numbers/ours", openNumbers);
  window("Open100000/numbers/peer:list_of_10000", openList);
  window("Open100000/keys/ours", openKeys);
  window("Open100000/keys/peer:list_of_10000", openList);
  window("Open100000/containers/ours", openContainers);
  window("Open100000/containers/peer:tree_of_10000", openTree);
  window("Expand10000/ours", openBranch);
  window("Expand10000/peer:tree_filled_whole", openTree);
  return true;
}();

}  // namespace
