// The host application's service: its documents, objects and window, and what modules keep for each
// drawing.
//
// A document is known by its name: that of its file, or the title under which the host shows it;
// case does not count. The empty name is the drawing that is there while no document is open.
//
// Globals: what a module keeps for a drawing, registered once and found by name from then on. They
//          end with their drawing.
// Notices: "ZoDocumentOpened", "ZoDocumentActivated", "ZoDocumentClosed" with the name as
//          "Document", when it has happened and the service's guard is free. A document that was
//          closed has no globals any more.
// Errors:  0 success; 1 refused: no host that could do it, the guard was not obtained within
//          timeOut(), null, a name that is taken or not there; 2 out of memory. Nothing has changed
//          then. Only std::bad_alloc, what the globals throw, and what reactors throw at a notice
//          is thrown; after the latter it has happened all the same.
// Threads: any.
#pragma once

#include <zo/platform_types.h>
#include <zo/system/sys_obj.h>
#include <zo/text/string.h>
#include <zo/variant/color.h>

#include <atomic>
#include <memory>

class ZoHnd;
template <class T>
class ZoSequence;

namespace zo {
class CadDocuments;
}

class ZO_COM_API ZoDwgGlobals {
 public:
  virtual ~ZoDwgGlobals();
  // Case does not count. It must not change while registered.
  [[nodiscard]] virtual ZoString name() = 0;
  // A module goes away: globals that belong to it destroy themselves and return 0, and are dropped;
  // any other answer means that they stay.
  virtual int release(const wchar_t* module) = 0;

 protected:
  ZoDwgGlobals() = default;
  ZoDwgGlobals(const ZoDwgGlobals&) = default;
  ZoDwgGlobals& operator=(const ZoDwgGlobals&) = default;
};

class ZO_COM_API ZoCad : public ZoSysObj {
 public:
  // ---- The order of the virtual functions is part of the interface ----
  // Whether a host application is there.
  [[nodiscard]] virtual bool isPresent() = 0;

  // All three are about the current document. Hands the globals to the service, which destroys what
  // is still registered when the document, or the service, ends.
  [[nodiscard]] virtual int registerGlobals(ZoDwgGlobals* globals) = 0;
  // Null when there are none of that name. Valid until they are unregistered.
  [[nodiscard]] virtual ZoDwgGlobals* dwgGlobals(const ZoString& name) = 0;
  // Hands the globals back to the caller.
  [[nodiscard]] virtual int unregisterGlobals(const ZoString& name) = 0;

  // ---- What follows is refused, false or null here, but for paletteColor ----
  // The current document; empty without one.
  [[nodiscard]] virtual int getDocument(ZoString& name);
  // Those that are open, the current one first, then by how recently they were. They replace what
  // the sequence has.
  [[nodiscard]] virtual int getDocuments(ZoSequence<ZoString>& names);
  // Opens a document, which becomes the current one.
  [[nodiscard]] virtual int openDocument(const ZoString& name);
  [[nodiscard]] virtual int activateDocument(const ZoString& name);
  // Without asking about changes. The document that was current before becomes it again.
  [[nodiscard]] virtual int closeDocument(const ZoString& name);

  // The owner for dialogs; null when there is none.
  [[nodiscard]] virtual HWND__* mainWindow();
  // A program without a host has a window of its own; null takes it back.
  virtual int setMainWindow(HWND__* window);
  // What a palette colour looks like on the screen, red in the low byte. Here: ZoColor::rgb().
  // Refused for kTrueColor.
  [[nodiscard]] virtual int paletteColor(ZoColor::Type type, unsigned int& rgb);
  // Whether there is such an object: a text is looked for in the current document, an id in all of
  // them; a handle with both is looked for by its id, and the object must have that text.
  [[nodiscard]] virtual bool exists(const ZoHnd& object);
  // Writes a line where the user types commands.
  virtual int prompt(const ZoString& text);

  // For the layer service: whether objects of any document lie on a layer; and that it has another
  // name now.
  [[nodiscard]] virtual bool isLayerInUse(const ZoString& layer);
  virtual void layerRenamed(const ZoString& from, const ZoString& to);
};

// No host: isPresent() is false. There is the drawing without a name, which is never closed, and
// whatever documents the program tells of by the three calls below; a service for a real host
// derives from this class and makes them as its host tells it.
//
// poolRelease(module) asks the globals of all documents to go and drops those that do; null asks
// none.
class ZO_COM_API ZoStdCad : public ZoCad {
 public:
  ZoStdCad();
  ZoStdCad(const ZoStdCad&) = delete;  // it owns its globals
  ZoStdCad& operator=(const ZoStdCad&) = delete;
  ~ZoStdCad() override;

  // Releases the globals of the module first.
  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  [[nodiscard]] bool isPresent() override;
  int registerGlobals(ZoDwgGlobals* globals) override;
  [[nodiscard]] ZoDwgGlobals* dwgGlobals(const ZoString& name) override;
  int unregisterGlobals(const ZoString& name) override;
  int getDocument(ZoString& name) override;
  int getDocuments(ZoSequence<ZoString>& names) override;
  [[nodiscard]] HWND__* mainWindow() override;
  int setMainWindow(HWND__* window) override;

  // The name is not empty, and no document has it. It does not become the current one by this.
  [[nodiscard]] int documentOpened(const ZoString& name);
  // The empty name: no document is active.
  [[nodiscard]] int documentActivated(const ZoString& name);
  // Ends its globals, and sends a second notice when another document becomes the current one.
  [[nodiscard]] int documentClosed(const ZoString& name);

 protected:
  // A document is about to go, its globals have ended: for who keeps more of it. The guard is held.
  virtual void documentEnds(const ZoString& name);

 private:
  std::unique_ptr<zo::CadDocuments> documents_;
  std::atomic<HWND__*> mainWindow_ = nullptr;
};
