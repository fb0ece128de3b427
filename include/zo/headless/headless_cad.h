// A host in memory: documents, objects and handles without any application, so that modules can be
// developed, tested and shown on any machine.
//
//   ZoSystem::setCad(new ZoHeadlessCad);
//   if (const int code = ZoSystem::cad().openDocument(L"plate.dwg")) return code;
//
// An object is any variant, which lies on a layer. Its handle has both parts: a text that is unique
// in its document, and an id that is unique in the service; neither is ever used again. The object
// operations are about the current document where they take no handle. Handles are looked for as
// exists() does.
//
// A new object lies on the current layer of the layer service, or one that is named; the layer must
// be there. What lies on a locked layer can be neither changed nor removed.
//
// Errors, Threads: as in zo/system/cad.h. Objects go in and out as copies.
// Cost:    look-ups are O(1); isLayerInUse reads a counter.
#pragma once

#include <zo/system/cad.h>

#include <memory>

class ZoVariant;

namespace zo {
class HeadlessObjects;
}

class ZO_COM_API ZoHeadlessCad : public ZoStdCad {
 public:
  ZoHeadlessCad();
  ~ZoHeadlessCad() override;

  [[nodiscard]] bool isPresent() override;  // true
  // A document that is empty.
  int openDocument(const ZoString& name) override;
  int activateDocument(const ZoString& name) override;
  // Its objects end with it.
  int closeDocument(const ZoString& name) override;
  [[nodiscard]] bool exists(const ZoHnd& object) override;
  // Kept for takePrompts; of more than kMostPrompts the first ones go.
  int prompt(const ZoString& text) override;
  [[nodiscard]] bool isLayerInUse(const ZoString& layer) override;
  void layerRenamed(const ZoString& from, const ZoString& to) override;

  // Of prompts that are kept.
  static constexpr unsigned int kMostPrompts = 10000;

  [[nodiscard]] int addObject(const ZoVariant& object, ZoHnd& handle);
  [[nodiscard]] int addObject(const ZoVariant& object, const ZoString& layer, ZoHnd& handle);
  [[nodiscard]] int getObject(const ZoHnd& handle, ZoVariant& object);
  [[nodiscard]] int setObject(const ZoHnd& handle, const ZoVariant& object);
  [[nodiscard]] int removeObject(const ZoHnd& handle);
  // In the order in which they were made; they replace what the sequence has.
  [[nodiscard]] int getObjects(ZoSequence<ZoHnd>& handles);
  // The whole handle for one of its parts.
  [[nodiscard]] int getHandle(const ZoHnd& part, ZoHnd& handle);
  [[nodiscard]] int getObjectLayer(const ZoHnd& handle, ZoString& layer);
  [[nodiscard]] int setObjectLayer(const ZoHnd& handle, const ZoString& layer);
  // What was prompted since the last time.
  [[nodiscard]] int takePrompts(ZoSequence<ZoString>& prompts);

 protected:
  void documentEnds(const ZoString& name) override;

 private:
  std::unique_ptr<zo::HeadlessObjects> objects_;
};
