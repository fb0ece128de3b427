// The editor of variants beside a dialog with a tree that is filled whole: what it takes until the
// window is there, and until a branch is.
#include <benchmark/benchmark.h>
#include <windows.h>

#include <commctrl.h>
#include <zo/containers.h>
#include <zo/dialogs.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

void require(bool isWell) {
  if (!isWell) std::abort();
}

LRESULT send(HWND window, UINT message, WPARAM w = 0, LPARAM l = 0) {
  return SendMessageW(window, message, w, l);
}

// Sees the dialog of this thread when it is complete, and cancels it.
class Opened {
 public:
  explicit Opened(std::function<void(HWND)> act)
      : act_(std::move(act)),
        hook_(SetWindowsHookExW(WH_CALLWNDPROCRET, onDone, nullptr, GetCurrentThreadId())) {
    current = this;
  }
  ~Opened() { UnhookWindowsHookEx(hook_); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

 private:
  static LRESULT CALLBACK onDone(int code, WPARAM w, LPARAM l) {
    const auto& done = *reinterpret_cast<const CWPRETSTRUCT*>(l);
    if (code == HC_ACTION && done.message == WM_INITDIALOG) {
      current->act_(done.hwnd);
      PostMessageW(done.hwnd, WM_COMMAND, IDCANCEL, 0);
    }
    return CallNextHookEx(nullptr, code, w, l);
  }

  static inline Opened* current = nullptr;
  std::function<void(HWND)> act_;
  HHOOK hook_;
};

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

double since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

void openOurs(benchmark::State& state, bool ofDicts) {
  ZoVariantDialog dialog(sequence(static_cast<int>(state.range(0)), ofDicts));
  dialog.remember(L"");
  for (auto _ : state) {
    const auto start = Clock::now();
    const Opened opened([&](HWND) { state.SetIterationTime(since(start)); });
    require(dialog.show() == ZoResult::cancelled);
  }
}

void expandOurs(benchmark::State& state) {
  ZoVariant value;
  require(value.put(L"many", sequence(static_cast<int>(state.range(0)), true)) == 0);
  ZoVariantDialog dialog(std::move(value));
  dialog.remember(L"");
  for (auto _ : state) {
    const Opened opened([&](HWND window) {
      HWND const tree = FindWindowExW(window, nullptr, WC_TREEVIEWW, nullptr);
      const LRESULT root = send(tree, TVM_GETNEXTITEM, TVGN_ROOT);
      const LRESULT many = send(tree, TVM_GETNEXTITEM, TVGN_CHILD, root);
      const auto start = Clock::now();
      send(tree, TVM_EXPAND, TVE_EXPAND, many);
      state.SetIterationTime(since(start));
      require(send(tree, TVM_GETCOUNT) == state.range(0) + 2);
    });
    require(dialog.show() == ZoResult::cancelled);
  }
}

// ---- The peer: a plain dialog with such a tree ----

int wanted = 0;

void fillWhole(HWND tree) {
  TVINSERTSTRUCTW item = {};
  item.hParent = TVI_ROOT;
  item.hInsertAfter = TVI_FIRST;
  item.item.mask = TVIF_TEXT;
  for (int i = 0; i < wanted; ++i) {
    std::wstring text = L"[" + std::to_wstring(i) + L"]";
    item.item.pszText = text.data();
    item.hInsertAfter = reinterpret_cast<HTREEITEM>(
        send(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
  }
}

INT_PTR CALLBACK plain(HWND window, UINT message, WPARAM w, LPARAM) {
  if (message == WM_INITDIALOG)
    fillWhole(CreateWindowExW(0, WC_TREEVIEWW, L"", WS_CHILD | WS_VISIBLE, 0, 0, 300, 300, window,
                              nullptr, nullptr, nullptr));
  if (message == WM_COMMAND && LOWORD(w) == IDCANCEL) EndDialog(window, IDCANCEL);
  return FALSE;
}

void openWhole(benchmark::State& state) {
  struct alignas(4) Form {
    DLGTEMPLATE head;
    WORD menu, windowClass, title;
  };
  const Form form{{WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 300, 200}, 0, 0, 0};
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES};
  InitCommonControlsEx(&classes);
  wanted = static_cast<int>(state.range(0));
  for (auto _ : state) {
    const auto start = Clock::now();
    const Opened opened([&](HWND) { state.SetIterationTime(since(start)); });
    require(DialogBoxIndirectParamW(nullptr, &form.head, nullptr, plain, 0) == IDCANCEL);
  }
}

void numbers(benchmark::State& state) { openOurs(state, false); }
void dictionaries(benchmark::State& state) { openOurs(state, true); }

void name(const char* work, void (*function)(benchmark::State&), int count) {
  benchmark::RegisterBenchmark(work, function)
      ->Arg(count)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

const bool named = [] {
  name("Open100000/numbers/ours", numbers, 100'000);
  name("Open100000/numbers/peer:tree_filled_whole", openWhole, 100'000);
  name("Open100000/dictionaries/ours", dictionaries, 100'000);
  name("Open100000/dictionaries/peer:tree_filled_whole", openWhole, 100'000);
  name("Expand10000/ours", expandOurs, 10'000);
  name("Expand10000/peer:tree_filled_whole", openWhole, 10'000);
  return true;
}();

}  // namespace
