#include "dialogs/editor_tree.h"

#include <algorithm>
#include <span>

#include "dialogs/dialog_texts.h"
#include "dialogs/edit_elements.h"

namespace {

bool isContainer(const ZoVariant& value) noexcept { return value.asDict() || value.asSequence(); }

bool hasBranches(const ZoVariant& value) {
  return std::ranges::any_of(value.elements(), [](const auto& element) {
    return isContainer(element.value) && !element.value.isFlagged(ZoFlagInvisible);
  });
}

LRESULT send(HWND control, UINT message, WPARAM w, LPARAM l) noexcept {
  return SendMessageW(control, message, w, l);
}

// While it lives, the control draws nothing: many items at once are quicker so.
class Undrawn {
 public:
  explicit Undrawn(HWND control) noexcept : control_(control) {
    send(control_, WM_SETREDRAW, FALSE, 0);
  }
  ~Undrawn() {
    send(control_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(control_, nullptr, TRUE);
  }
  Undrawn(const Undrawn&) = delete;
  Undrawn& operator=(const Undrawn&) = delete;

 private:
  HWND control_;
};

}  // namespace

void zo::EditorTree::start(HWND control) {
  control_ = control;
  HTREEITEM const root =
      add(TVI_ROOT, {.path = ZoString(), .name = ZoString(dialogText(DialogText::wholeValue))});
  fill(root);
  send(control_, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(root));
  send(control_, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(root));
}

const ZoString* zo::EditorTree::pathOf(HTREEITEM item) const {
  const Node* const node = nodeOf(item);
  return node && node->isContainer ? &node->path : nullptr;
}

HTREEITEM zo::EditorTree::chosen() const noexcept { return next(nullptr, TVGN_CARET); }

void zo::EditorTree::choose(const ZoString& path) {
  HTREEITEM const item = reach(path);
  if (!item) return;
  send(control_, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
  send(control_, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
}

void zo::EditorTree::renew(const ZoString& path) {
  HTREEITEM const item = reach(path);
  if (!item) return;
  std::vector<ZoString> open;
  collectOpen(item, open);
  const Undrawn undrawn(control_);
  isBusy_ = true;
  send(control_, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
  send(control_, TVM_EXPAND, TVE_COLLAPSE | TVE_COLLAPSERESET, reinterpret_cast<LPARAM>(item));
  while (HTREEITEM const child = next(item, TVGN_CHILD))  // one that was closed keeps them
    send(control_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(child));
  isBusy_ = false;
  fill(item);
  TVITEMW request = {};
  request.mask = TVIF_CHILDREN;
  request.hItem = item;
  request.cChildren = I_CHILDRENCALLBACK;
  send(control_, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&request));
  for (const ZoString& each : open)
    if (HTREEITEM const again = reach(each))
      send(control_, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(again));
}

void zo::EditorTree::toggle() {
  HTREEITEM const item = chosen();
  if (Node* const node = nodeOf(item); node && node->isContainer && !node->isFilled) fill(item);
  send(control_, TVM_EXPAND, TVE_TOGGLE, reinterpret_cast<LPARAM>(item));
}

LRESULT zo::EditorTree::onNotice(NMHDR& notice) {
  switch (notice.code) {
    case TVN_GETDISPINFOW:
      show(reinterpret_cast<NMTVDISPINFOW&>(notice));
      break;
    case TVN_ITEMEXPANDINGW: {
      HTREEITEM const item = reinterpret_cast<NMTREEVIEWW&>(notice).itemNew.hItem;
      if (const Node* const node = nodeOf(item); node && node->isContainer && !node->isFilled)
        fill(item);
      break;
    }
    case TVN_DELETEITEMW:
      nodes_.erase(reinterpret_cast<NMTREEVIEWW&>(notice).itemOld.lParam);
      break;
    default:
      break;
  }
  return 0;
}

// The control asks for what it draws.
void zo::EditorTree::show(NMTVDISPINFOW& notice) const {
  TVITEMW& item = notice.item;
  const auto found = nodes_.find(item.lParam);
  if (found == nodes_.end()) return;
  const Node& node = found->second;
  if (item.mask & TVIF_TEXT) item.pszText = const_cast<wchar_t*>(node.name.data());
  if (!(item.mask & TVIF_CHILDREN)) return;
  const ZoVariant* const value = node.isContainer ? edits_.value().find(node.path.view()) : nullptr;
  item.cChildren = value && hasBranches(*value) ? 1 : 0;
}

void zo::EditorTree::fill(HTREEITEM item) {
  Node* const node = nodeOf(item);
  if (!node) return;
  const ZoString path = node->path;
  node->isFilled = true;
  const ZoVariant* const container = edits_.value().find(path.view());
  if (!container) return;
  const std::vector<SeenElement> branches = seenElements(
      *container, [](const SeenElement& element) { return isContainer(*element.value); });
  const size_t shown = std::min<size_t>(branches.size(), kMostInBranch);
  const Undrawn undrawn(control_);
  for (const SeenElement& branch : std::span(branches).first(shown))
    add(item, {.path = branch.path(path), .name = branch.name()});
  if (shown == branches.size()) return;
  const auto left = static_cast<unsigned int>(branches.size() - shown);
  add(item, {.path = path,
             .name = dialogText(DialogText::moreInList, {ZoVariant(left)}),
             .isFilled = true,
             .isContainer = false});
}

HTREEITEM zo::EditorTree::add(HTREEITEM parent, Node node) {
  const LPARAM key = ++last_;
  const bool isContainer = node.isContainer;
  nodes_.emplace(key, std::move(node));
  TVINSERTSTRUCTW request = {};
  request.hParent = parent;
  request.hInsertAfter = TVI_LAST;
  request.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
  request.item.pszText = LPSTR_TEXTCALLBACKW;
  request.item.cChildren = isContainer ? I_CHILDRENCALLBACK : 0;
  request.item.lParam = key;
  auto* const item = reinterpret_cast<HTREEITEM>(
      send(control_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&request)));
  if (!item) nodes_.erase(key);
  return item;
}

const zo::EditorTree::Node* zo::EditorTree::nodeOf(HTREEITEM item) const {
  TVITEMW request = {};
  request.mask = TVIF_PARAM;
  request.hItem = item;
  if (!item || !send(control_, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&request))) return nullptr;
  const auto found = nodes_.find(request.lParam);
  return found == nodes_.end() ? nullptr : &found->second;
}
zo::EditorTree::Node* zo::EditorTree::nodeOf(HTREEITEM item) {
  return const_cast<Node*>(static_cast<const EditorTree&>(*this).nodeOf(item));
}

HTREEITEM zo::EditorTree::next(HTREEITEM item, WPARAM which) const noexcept {
  return reinterpret_cast<HTREEITEM>(
      send(control_, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(item)));
}

HTREEITEM zo::EditorTree::childNamed(HTREEITEM item, const ZoString& path) {
  for (HTREEITEM child = next(item, TVGN_CHILD); child; child = next(child, TVGN_NEXT))
    if (const Node* const node = nodeOf(child); node->isContainer && node->path == path)
      return child;
  return nullptr;
}

HTREEITEM zo::EditorTree::reach(const ZoString& path) {
  const ZoVariant* const found = edits_.value().find(path.view());
  if (!found || (!path.isEmpty() && !isContainer(*found))) return nullptr;
  HTREEITEM item = next(nullptr, TVGN_ROOT);
  const std::wstring_view whole = path.view();
  for (size_t end = 0; end < whole.size();) {
    end = std::min(whole.find(L'/', end + 1), whole.size());
    if (!nodeOf(item)->isFilled) fill(item);
    const ZoString step(whole.substr(0, end));
    HTREEITEM child = childNamed(item, step);
    if (!child) {
      const ZoVariant& outer = *edits_.value().find(outerOf(step.view()));
      child = add(item, {.path = step, .name = stepName(outer, lastStepOf(step.view()))});
    }
    if (!child) return nullptr;
    item = child;
  }
  return item;
}

// Outer ones first.
void zo::EditorTree::collectOpen(HTREEITEM item, std::vector<ZoString>& paths) const {
  const LRESULT state =
      send(control_, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED);
  const Node* const node = nodeOf(item);
  if (!node || !node->isContainer || !(state & TVIS_EXPANDED)) return;
  paths.push_back(node->path);
  for (HTREEITEM child = next(item, TVGN_CHILD); child; child = next(child, TVGN_NEXT))
    collectOpen(child, paths);
}
