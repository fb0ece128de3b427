// The standard message service: reads message files.
//
// A file that the file search service does not find is looked for where the library's own lie: in
// the folder "messages" beside the library's file, and in "share\zo_com\messages" beside the folder
// that it lies in. These are zotype, zoflag, zoresult and zodialog, and those of the tools, zolib
// and zoval, in English and German.
//
// Errors, Threads, Cost: as in zo/system/message.h. A message file has 64 MiB at most. A state of
//          the service is freed as soon as no look-up that began in it is left.
#pragma once

#include <zo/system/message.h>

#include <memory>

namespace zo {
class MessageStore;
}

class ZO_COM_API ZoStdMessage : public ZoMessage {
 public:
  ZoStdMessage();
  ~ZoStdMessage() override;
  ZoStdMessage(const ZoStdMessage&) = delete;
  ZoStdMessage& operator=(const ZoStdMessage&) = delete;

  int release(const wchar_t* module) override;
  void poolRelease(const wchar_t* module) override;

  int getText(const ZoString& file, int number, ZoString& text) override;
  int formatWith(const ZoString& file, int number, std::span<const ZoVariant> arguments,
                 ZoString& text) override;
  int load(const ZoFileName& file, const wchar_t* module) override;
  int setLanguages(const ZoSequence<ZoString>& languages) override;
  int getLanguages(ZoSequence<ZoString>& languages) override;
  int reload() override;

 private:
  std::unique_ptr<zo::MessageStore> store_;
};
