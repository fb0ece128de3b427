#include <zo/dialogs/variant_edits.h>
#include <zo/results.h>
#include <zo/system/units.h>

#include <algorithm>
#include <string>
#include <utility>

#include "dialogs/edit_paths.h"
#include "dialogs/edit_texts.h"

namespace {

constexpr unsigned int kUnreachable = 0xFFFFFFFF;

bool isValueEditable(const ZoVariant& value) noexcept {
  return !value.isReference() && !value.isTypeOf(ZoVariant::kPointer) &&
         !(value.isTypeOf(ZoVariant::kString) && value.code() == ZoTypeCode::Chunk);
}

bool isContainer(const ZoVariant& value) noexcept { return value.asDict() || value.asSequence(); }

}  // namespace

ZoVariantEdits::ZoVariantEdits(ZoVariant value) : value_(std::move(value)) {}

// The element, when nothing on the way to it is constant, nor itself; else null.
const ZoVariant* ZoVariantEdits::reach(std::wstring_view path) const {
  if (readOnly_) return nullptr;
  if (!path.empty() && value_.isFlagged(ZoFlagConstant)) return nullptr;
  for (size_t slash = path.find(L'/'); slash != std::wstring_view::npos;
       slash = path.find(L'/', slash + 1)) {
    const ZoVariant* const outer = value_.find(path.substr(0, slash));
    if (!outer || outer->isFlagged(ZoFlagConstant)) return nullptr;
  }
  const ZoVariant* const found = value_.find(path);
  return found && !found->isFlagged(ZoFlagConstant) ? found : nullptr;
}

bool ZoVariantEdits::isEditable(zo::TextParameter path) const {
  const ZoVariant* const found = reach(path);
  return found && isValueEditable(*found);
}

// ---- Edits ----

int ZoVariantEdits::replace(std::wstring_view path, ZoVariant value) {
  const unsigned int depth = zo::depthOf(path);
  if (depth > ZoVariant::kMaxDepth || value.isTooDeep(depth)) return ZoResult::refused;
  return run({Step::kSwap, ZoString(path), {}, {}, 0, 0, std::move(value)});
}

int ZoVariantEdits::setText(zo::TextParameter path, zo::TextParameter text) {
  const ZoVariant* const old = reach(path);
  if (!old || !isValueEditable(*old) || isContainer(*old)) return ZoResult::refused;
  ZoString shown;  // a bare number for want of units is none that was typed
  const bool isPrinted = zo::printText(*old, shown) == ZoResult::ok;
  if (!old->isEmpty() && isPrinted && shown == text) return ZoResult::ok;
  ZoVariant value(*old);
  if (const int code = zo::readText(text, value)) return code;
  if (value == *old) return ZoResult::ok;
  return replace(path, std::move(value));
}

int ZoVariantEdits::setValue(zo::TextParameter path, ZoVariant value) {
  return isEditable(path) ? replace(path, std::move(value)) : ZoResult::refused;
}

int ZoVariantEdits::setCode(zo::TextParameter path, ZoTypeCode code) {
  if (!isEditable(path)) return ZoResult::refused;
  ZoVariant value(*value_.find(path));
  if (value.setCode(code) != ZoResult::ok) return ZoResult::refused;
  return replace(path, std::move(value));
}

int ZoVariantEdits::setFlags(zo::TextParameter path, zo::NotNegative<unsigned int> flags) {
  if (!isEditable(path)) return ZoResult::refused;
  ZoVariant value(*value_.find(path));
  value.setFlags(flags);
  return replace(path, std::move(value));
}

int ZoVariantEdits::add(zo::TextParameter path, zo::TextParameter key, ZoVariant value) {
  const ZoVariant* const container = reach(path);
  if (!container || key.empty()) return ZoResult::refused;
  const unsigned int depth = zo::depthOf(path) + 1;
  if (depth > ZoVariant::kMaxDepth || value.isTooDeep(depth)) return ZoResult::refused;
  if (container->isEmpty()) {
    ZoVariant dict(ZoVariant::kDict, ZoTypeCode::Dict, container->flags());
    if (const int code = dict.asDict()->insertAt(ZoString(key), std::move(value))) return code;
    return replace(path, std::move(dict));
  }
  if (!container->asDict() || container->at(key)) return ZoResult::refused;
  return run({Step::kAdd, ZoString(path), ZoString(key), {}, 0, 0, std::move(value)});
}

int ZoVariantEdits::insert(zo::TextParameter path, zo::NotNegative<unsigned int> position,
                           ZoVariant value) {
  const ZoVariant* const container = reach(path);
  if (!container || !container->asSequence() || position > container->entries())
    return ZoResult::refused;
  const unsigned int depth = zo::depthOf(path) + 1;
  if (depth > ZoVariant::kMaxDepth || value.isTooDeep(depth)) return ZoResult::refused;
  return run({Step::kAdd, ZoString(path), {}, {}, position, 0, std::move(value)});
}

int ZoVariantEdits::remove(zo::TextParameter path) {
  if (path.empty() || !reach(path)) return ZoResult::refused;
  const zo::LastStep last(value_, path);
  return run({Step::kTake, last.outer, last.key, {}, last.position, 0, {}});
}

int ZoVariantEdits::rename(zo::TextParameter path, zo::TextParameter key) {
  if (path.empty() || key.empty() || !reach(path)) return ZoResult::refused;
  const zo::LastStep last(value_, path);
  const ZoVariant& container = last.container(value_);
  if (!container.asDict()) return ZoResult::refused;
  if (last.key == key) return ZoResult::ok;
  const ZoVariant* const other = container.at(key);
  if (other && other != value_.find(path)) return ZoResult::refused;
  return run({Step::kRename, last.outer, last.key, ZoString(key), 0, 0, {}});
}

int ZoVariantEdits::move(zo::TextParameter path, zo::NotNegative<unsigned int> position) {
  if (path.empty() || !reach(path)) return ZoResult::refused;
  const zo::LastStep last(value_, path);
  const ZoVariant& container = last.container(value_);
  if (!container.asSequence() || position >= container.entries()) return ZoResult::refused;
  if (position == last.position) return ZoResult::ok;
  return run({Step::kMove, last.outer, {}, {}, last.position, position, {}});
}

// ---- Steps ----

namespace {

// The same entries with one key written anew: made aside, so that nothing is lost for want of
// memory.
int rekey(ZoVariant& container, const ZoString& key, const ZoString& newKey) {
  ZoVariant made(ZoVariant::kDict, container.code(), container.flags());
  ZoVariant::Dict& dict = *made.asDict();
  for (const auto [name, position, value] : container.elements())
    if (const int code = dict.insertAt(*name == key ? newKey : *name, ZoVariant())) return code;
  for (const auto [name, position, value] : container.elements())
    dict.at(*name == key ? newKey : *name)->swap(value);
  container.swap(made);
  return ZoResult::ok;
}

int renameKey(ZoVariant& container, const ZoString& key, const ZoString& newKey) {
  ZoVariant::Dict& dict = *container.asDict();
  if (dict.contains(newKey)) return rekey(container, key, newKey);
  if (const int code = dict.insertAt(newKey, ZoVariant())) return code;
  dict.at(newKey)->swap(*dict.at(key));
  return dict.removeAt(key);
}

void moveElement(ZoVariant& container, unsigned int from, unsigned int to) {
  std::vector<ZoVariant*> elements;
  elements.reserve(container.entries());
  for (const auto [key, position, value] : container.elements()) elements.push_back(&value);
  for (unsigned int i = from; i < to; ++i) elements[i]->swap(*elements[i + 1]);
  for (unsigned int i = from; i > to; --i) elements[i]->swap(*elements[i - 1]);
}

}  // namespace

int ZoVariantEdits::perform(Step& step) {
  ZoVariant& at = *value_.find(step.path);
  int code = ZoResult::ok;
  switch (step.kind) {
    case Step::kSwap:
      at.swap(step.value);
      break;
    case Step::kAdd:
      code = at.asDict() ? at.asDict()->insertAt(ZoString(step.key), std::move(step.value))
                         : at.asSequence()->insertAt(step.position, std::move(step.value));
      if (code == ZoResult::ok) step.kind = Step::kTake;
      break;
    case Step::kTake:
      code = at.asDict() ? at.asDict()->removeAt(step.key, step.value)
                         : at.asSequence()->removeAt(step.position, step.value);
      if (code == ZoResult::ok) step.kind = Step::kAdd;
      break;
    case Step::kRename:
      code = renameKey(at, step.key, step.newKey);
      if (code == ZoResult::ok) std::swap(step.key, step.newKey);
      break;
    case Step::kMove:
      moveElement(at, step.position, step.target);
      std::swap(step.position, step.target);
      break;
  }
  return code;
}

namespace {

// So that the next one is put behind them without failing.
template <class Step>
void makeRoom(std::vector<Step>& steps) {
  if (steps.size() == steps.capacity()) steps.reserve(2 * steps.size() + 16);
}

// Where a step will have been.
template <class Step>
ZoString placeOf(const ZoVariant& root, const Step& step) {
  const auto inside = [&](const ZoString& key, unsigned int position) {
    return root.find(step.path)->asDict() ? zo::pathOf(step.path, key)
                                          : zo::pathOf(step.path, position);
  };
  switch (step.kind) {
    case Step::kAdd:
      return inside(step.key, step.position);
    case Step::kRename:
      return inside(step.newKey, 0);
    case Step::kMove:
      return inside({}, step.target);
    default:
      return step.path;
  }
}

}  // namespace

int ZoVariantEdits::run(Step step) {
  makeRoom(undo_);
  ZoString place = placeOf(value_, step);
  if (const int code = perform(step)) return code;
  if (saved_ > undoCount()) saved_ = kUnreachable;
  undo_.push_back(std::move(step));
  redo_.clear();
  place_ = std::move(place);
  return ZoResult::ok;
}

int ZoVariantEdits::travel(std::vector<Step>& from, std::vector<Step>& to) {
  if (readOnly_ || from.empty()) return ZoResult::refused;
  makeRoom(to);
  ZoString place = placeOf(value_, from.back());
  if (const int code = perform(from.back())) return code;
  to.push_back(std::move(from.back()));
  from.pop_back();
  place_ = std::move(place);
  return ZoResult::ok;
}

int ZoVariantEdits::undo() { return travel(undo_, redo_); }
int ZoVariantEdits::redo() { return travel(redo_, undo_); }
unsigned int ZoVariantEdits::undoCount() const noexcept {
  return static_cast<unsigned int>(undo_.size());
}
unsigned int ZoVariantEdits::redoCount() const noexcept {
  return static_cast<unsigned int>(redo_.size());
}
