// The service of the drawing's layers: names under which objects of a drawing are shown, hidden and
// coloured together.
//
//   if (const int code = ZoSystem::layer().ensure({.name = L"Bolts", .color = ZoColor::kCyan}))
//     return code;
//   ZoSystem::layer().change(L"Aux*", {.on = false}, ZoLayerData::kOn);
//
// Names have 1 to 255 characters, none of <>/\":;?*|,=`, no control character and no half of a
// surrogate pair, and no blank at either end; case does not count. Layer "0" is always there.
//
// A layer that is off is not shown; one that is frozen is not worked with at all, either; one that
// is locked is shown and cannot be edited. They are three things, and each holds by itself.
//
// Notice:  "ZoLayersChanged", one for each operation, or for each batch, that changed something:
//          "Added", "Changed" and "Removed" are sequences of names, "Renamed" one of dictionaries
//          with "From" and "To", "Current" the new current layer, "States" true when saved states
//          changed; what did not happen is not there. It is sent when the change is done and no
//          lock is held, but for those that the caller holds.
// Errors:  0 success. ZoResult::refused: no such layer or state, no drawing, or the guard was not
//          obtained within timeOut(). ZoResult::invalid: a value that no layer has. The codes below
//          as said. What was to be filled stays as it was, and nothing has changed, but for
//          layersLeftOut. Nothing throws but std::bad_alloc, and what reactors throw at the notice:
//          the change stands then.
// Threads: any. The standard service's questions (getCurrent to get, names, states) never wait for
//          the guard.
// Cost:    the standard service's look-ups are O(1).
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/text/string.h>
#include <zo/variant/color.h>

#include <compare>

class ZoVariant;
template <class T>
class ZoSequence;

namespace ZoResult {
inline constexpr int layerExists = 30;    // there is a layer of that name already
inline constexpr int layerKept = 31;      // layer "0", the current one, or one with objects on it
inline constexpr int layerFrozen = 32;    // a frozen layer cannot be the current one
inline constexpr int layersLeftOut = 33;  // done, but for some layers
}  // namespace ZoResult

// What a layer is. A new one is as it stands here.
struct ZoLayerData {
  // What an operation on many layers changes; one or more of them by `|`.
  enum Fields : unsigned int {
    kColor = 0x1,
    kLineType = 0x2,
    kLineWeight = 0x4,
    kOn = 0x8,
    kFrozen = 0x10,
    kLocked = 0x20,
    kPlotted = 0x40,
    kDescription = 0x80,
    kAllFields = 0xFF
  };
  friend constexpr Fields operator|(Fields a, Fields b) noexcept {
    return static_cast<Fields>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
  }
  // Of line weights, which are hundredths of a millimetre from 0 to kMaxWeight: the drawing's.
  static constexpr int kDefaultWeight = -1;
  static constexpr int kMaxWeight = 1000;

  ZoString name = {};
  ZoColor color = ZoColor::kForeground;
  ZoString lineType = L"Continuous";  // as a name; an empty one stands for this one
  int lineWeight = kDefaultWeight;
  bool on = true;
  bool frozen = false;
  bool locked = false;
  bool plotted = true;
  ZoString description = {};  // 65,535 characters at most

  friend bool operator==(const ZoLayerData&, const ZoLayerData&) = default;
};

class ZO_COM_API ZoLayer : public ZoSysObj {
 public:
  // ---- The order of the virtual functions is part of the interface ----
  // The layer on which new objects of the current drawing lie.
  [[nodiscard]] virtual int getCurrent(ZoString& name) = 0;
  // ZoResult::layerFrozen as said.
  [[nodiscard]] virtual int setCurrent(const ZoString& name) = 0;
  [[nodiscard]] virtual bool exists(const ZoString& name) = 0;

  // Here all that follows is refused, but for what is put together from the rest: ensure, and the
  // batches, which do nothing.

  // Makes a layer: 0, layerExists, invalid.
  [[nodiscard]] virtual int add(const ZoLayerData& layer);
  // The everyday call of modules: the layer is there afterwards. One that exists stays as it is,
  // whatever the data say but its name.
  [[nodiscard]] virtual int ensure(const ZoLayerData& layer);
  [[nodiscard]] virtual int get(const ZoString& name, ZoLayerData& layer);
  // The names that fit a pattern, in the user's order; they replace what the sequence has. In a
  // pattern * is any number of any characters and ? is any one; commas stand between several.
  [[nodiscard]] virtual int getNames(ZoSequence<ZoString>& names, const ZoString& pattern);
  // Gives all layers that fit a pattern the values of the fields; what else the data have does not
  // count. Refused when none fits. layersLeftOut: the current layer was not frozen, all else is
  // done.
  [[nodiscard]] virtual int change(const ZoString& pattern, const ZoLayerData& values,
                                   ZoLayerData::Fields fields);
  // Objects, saved states and the current layer go with the name: 0, layerExists, layerKept for
  // layer "0". What saved states have of a removed layer of the new name is forgotten.
  [[nodiscard]] virtual int rename(const ZoString& from, const ZoString& to);
  // layerKept as said. Whether objects lie on a layer, the host's service knows
  // (ZoCad::isLayerInUse).
  [[nodiscard]] virtual int remove(const ZoString& name);

  // ---- Saved states: all layers and the current one as they are, under a name ----
  // Replaces a state of that name, which is made like a layer's.
  [[nodiscard]] virtual int saveState(const ZoString& state);
  // Gives the layers of the state that are still there what the fields were then, and makes its
  // current layer the current one. Layers that are not in the state stay as they are.
  // layersLeftOut: some are no longer there, the current layer would have been frozen, or the
  // state's is, and stays so without kFrozen; the current layer remains the same then.
  [[nodiscard]] virtual int restoreState(const ZoString& state, ZoLayerData::Fields fields);
  [[nodiscard]] virtual int removeState(const ZoString& state);
  [[nodiscard]] virtual int getStates(ZoSequence<ZoString>& states);

  // ---- As a value: docs/host.md ----
  // All layers, the current one and the states.
  [[nodiscard]] virtual int toVariant(ZoVariant& layers);
  // Takes their place. ZoResult::invalid: that is no such value. layerKept: one that would go has
  // objects on it. Keys that are not known are passed over.
  [[nodiscard]] virtual int fromVariant(const ZoVariant& layers);

  // ---- One notice for many operations (ZoLayerBatch does both) ----
  // Holds the guard until endBatch, which the same thread calls as many times. Nothing is taken
  // back. A batch ends with its thread: the next change of another then tells of both.
  [[nodiscard]] virtual int beginBatch();
  virtual int endBatch();

  [[nodiscard]] int getNames(ZoSequence<ZoString>& names) { return getNames(names, L"*"); }
  [[nodiscard]] int restoreState(const ZoString& state) {
    return restoreState(state, ZoLayerData::kAllFields);
  }
};

// The operations of a scope with one notice at its end.
//
//   const ZoLayerBatch batch(ZoSystem::layer());
class ZoLayerBatch {
 public:
  [[nodiscard]] explicit ZoLayerBatch(ZoLayer& layers)
      : layers_(layers.beginBatch() ? nullptr : &layers) {}
  ZoLayerBatch(const ZoLayerBatch&) = delete;
  ZoLayerBatch& operator=(const ZoLayerBatch&) = delete;
  ~ZoLayerBatch() {
    try {
      end();
    } catch (...) {
      return;  // it is a reactor's; who wants it calls end()
    }
  }
  // False when the guard was not obtained: each operation is then on its own.
  [[nodiscard]] bool isOpen() const noexcept { return layers_ != nullptr; }
  void end() {
    if (ZoLayer* const layers = layers_) {
      layers_ = nullptr;
      layers->endBatch();
    }
  }

 private:
  ZoLayer* layers_;
};
