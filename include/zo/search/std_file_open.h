// The standard file open service: through the file search, with discs and media as
// zo/system/file_open.h says.
//
// Without a host there is nothing that a drawing could be opened in: openDocument refuses every
// file. (ZoExecute opens a document in whatever program the platform has for it.)
//
// Errors, Threads: as in zo/system/file_open.h.
// Cost:    a disc is read whole when a file of it is opened first.
#pragma once

#include <zo/system/file_open.h>

#include <memory>

class ZO_COM_API ZoStdFileOpen : public ZoFileOpen {
 public:
  ZoStdFileOpen();
  ZoStdFileOpen(const ZoStdFileOpen&) = delete;
  ZoStdFileOpen& operator=(const ZoStdFileOpen&) = delete;
  ~ZoStdFileOpen() override;

  int release(const wchar_t* module) override;

  int openDocument(const ZoFileName& file) override;
  int openFile(const ZoFileName& name, ZoFile& file, int access, int share) override;
  int checkMedia(const ZoFileName& root, ZoMediaReport* report,
                 const ZoMediaWatcher& watcher) override;
  int writeManifest(const ZoFileName& root, const ZoString& label,
                    const ZoMediaWatcher& watcher) override;
  int requestMedia(const ZoString& label, ZoFileName& root) override;
  int setMediaKey(const void* key, std::size_t size) override;
  int setMediaPrompt(ZoMediaPrompt prompt) override;

 private:
  struct Imp;
  int checkOnce(const ZoFileName& root);
  int place(ZoFileName& root);

  std::unique_ptr<Imp> imp_;
};
