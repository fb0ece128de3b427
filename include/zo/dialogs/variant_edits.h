// Edits of a variant, as a user makes them one after the other: what the editor's window
// (ZoVariantDialog) stands on, and what a program may use without one.
//
//   ZoVariantEdits edits(part);
//   if (edits.setText(L"bolts/0/length", L"2 in") == 0) edits.undo();
//
// It works on a copy; value() is that copy as it is now. A path leads to an element as in
// ZoVariant::find; to an entry of the variant itself whose key is empty no path leads. A null
// pointer is an empty text.
//
// Not to be edited: what is flagged ZoFlagConstant, with all that it holds; references, pointers
// and texts of code Chunk; everything, once setReadOnly(true). What holds such a value can still be
// removed or moved as a whole. What is flagged ZoFlagInvisible is left out of elements() and
// find(), with all that it holds.
//
// Errors:  0; ZoResult::refused: no such path, not to be edited, or no such value, key or place;
//          containers would lie more than ZoVariant::kMaxDepth deep; nothing to undo.
//          ZoResult::timeOut from setText(): the units service was held elsewhere. Nothing has
//          changed then, as when std::bad_alloc is thrown, and nothing else is.
// Threads: one thread at a time.
// Cost:    an edit costs its path and what it replaces; a place in a sequence of n elements what
//          the sequence takes to insert there; undo and redo the same. Dictionaries are put in
//          order for each elements().
#pragma once

#include <zo/config.h>
#include <zo/names/no_truth_value.h>
#include <zo/parse/reg_exp.h>
#include <zo/text/not_negative.h>
#include <zo/text/string.h>
#include <zo/text/text_parameter.h>
#include <zo/variant/variant.h>
#include <zo/variant/variant_report.h>

#include <string_view>
#include <utility>
#include <vector>

class ZO_COM_API ZoVariantEdits {
 public:
  explicit ZoVariantEdits(ZoVariant value = {});

  [[nodiscard]] const ZoVariant& value() const& noexcept { return value_; }
  [[nodiscard]] ZoVariant value() && noexcept { return std::move(value_); }
  // Edits are refused; undo and redo, too.
  void setReadOnly(bool readOnly) noexcept { readOnly_ = readOnly; }
  template <zo::NoTruthValue T>
  void setReadOnly(T) = delete;  // true or false
  [[nodiscard]] bool isReadOnly() const noexcept { return readOnly_; }

  // ---- Edits: each can be undone ----
  // The value from a text as the user types it, into the kind and code that are there: by the units
  // service where the code is physical; "true" and "false" or a number for Bool; a whole GUID,
  // point or vector as ZoVariant reads it. An empty variant becomes a text. A container is refused.
  // What textOf() gives for the present value changes nothing, however it was rounded.
  [[nodiscard]] int setText(zo::TextParameter path, zo::TextParameter text);
  // Any value in the place of what is there; flags are the new value's.
  [[nodiscard]] int setValue(zo::TextParameter path, ZoVariant value);
  // Refused when the code does not fit the kind.
  [[nodiscard]] int setCode(zo::TextParameter path, ZoTypeCode code);
  // May set ZoFlagConstant; taking it back is undo().
  [[nodiscard]] int setFlags(zo::TextParameter path, zo::NotNegative<unsigned int> flags);
  [[nodiscard]] int setFlags(zo::TextParameter path, ZoTypeFlag flag) {
    return setFlags(path, static_cast<unsigned int>(flag));
  }
  // A new entry of a dictionary, or of an empty variant, which becomes one. Refused when the key is
  // empty or there.
  [[nodiscard]] int add(zo::TextParameter path, zo::TextParameter key, ZoVariant value);
  // A new element of a sequence, in front of the one at that position; its entries() is the end.
  [[nodiscard]] int insert(zo::TextParameter path, zo::NotNegative<unsigned int> position,
                           ZoVariant value);
  [[nodiscard]] int remove(zo::TextParameter path);
  // Another key for an entry, also the same one in other case; its own key changes nothing. Refused
  // when the key is empty or another entry has it.
  [[nodiscard]] int rename(zo::TextParameter path, zo::TextParameter key);
  // An element of a sequence to another position, counted without it; its own changes nothing.
  [[nodiscard]] int move(zo::TextParameter path, zo::NotNegative<unsigned int> position);

  [[nodiscard]] int undo();
  [[nodiscard]] int redo();
  [[nodiscard]] unsigned int undoCount() const noexcept;
  [[nodiscard]] unsigned int redoCount() const noexcept;
  // Where the last edit, undo or redo was: what it put, or the container that it took from.
  [[nodiscard]] const ZoString& place() const& noexcept { return place_; }
  [[nodiscard]] ZoString place() && noexcept { return std::move(place_); }
  // Whether it is another value than that of the last markSaved(), at first the one given: by the
  // edits in between, not by comparing.
  [[nodiscard]] bool isChanged() const noexcept { return undoCount() != saved_; }
  void markSaved() noexcept { saved_ = undoCount(); }

  // ---- What a user sees ----
  struct Element {
    ZoString path;
    ZoString name;  // the key, or "[3]"
    const ZoVariant* value;
  };
  // Of a container, dictionaries by the code units of their keys. Valid until the next edit. None
  // for what is no container.
  [[nodiscard]] std::vector<Element> elements(zo::TextParameter path) const&;
  [[nodiscard]] std::vector<Element> elements(zo::TextParameter) const&& = delete;  // keep edits
  // The value as setText takes it; empty for containers and empty variants. While the units service
  // is held elsewhere a bare number, after one wait in all for the values of a second.
  [[nodiscard]] static ZoString textOf(const ZoVariant& value);
  [[nodiscard]] bool isEditable(zo::TextParameter path) const;

  enum Where : unsigned int { kInNames = 1, kInValues = 2, kInNamesAndValues = 3 };
  // The paths of all elements whose name (the key) or text matches, in the order in which they are
  // seen, at most `most` of them. One in which the expression gives up does not match.
  [[nodiscard]] std::vector<ZoString> find(const ZoRegExp& expression,
                                           Where where = kInNamesAndValues,
                                           zo::NotNegative<unsigned int> most = 0xFFFFFFFF) const;
  // From another variant to this one.
  [[nodiscard]] ZoVariantReport differencesFrom(const ZoVariant& other,
                                                const ZoVariantReportOptions& options = {}) const {
    return {other, value_, options};
  }

 private:
  // One step, which performing turns into the step back.
  struct Step {
    enum Kind { kSwap, kAdd, kTake, kRename, kMove };
    Kind kind;
    ZoString path;              // of the element for kSwap, else of the container
    ZoString key;               // of the entry in a dictionary
    ZoString newKey;            // kRename
    unsigned int position = 0;  // in a sequence
    unsigned int target = 0;    // kMove
    ZoVariant value;            // that is not in the tree now
  };
  [[nodiscard]] const ZoVariant* reach(std::wstring_view path) const;
  [[nodiscard]] int replace(std::wstring_view path, ZoVariant value);
  [[nodiscard]] int run(Step step);
  [[nodiscard]] int perform(Step& step);
  [[nodiscard]] int travel(std::vector<Step>& from, std::vector<Step>& to);

  ZoVariant value_;
  std::vector<Step> undo_, redo_;
  ZoString place_;
  unsigned int saved_ = 0;
  bool readOnly_ = false;
};
