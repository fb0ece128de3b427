// An error service that writes its reports to a stream, for programs without a user before them:
//
//   ZoSystem::setError(new ZoErrLog(&log));
//
// Every report is flushed. A prompt is written like a trace. Numbers are decimal, whatever the
// stream's flags and locale.
//
// Errors, Formats: as in error.h. A stream that fails gives 1 and stays failed, as its owner may
//          want to know; only std::wcerr is cleared, so that a character which it cannot show does
//          not silence it for good.
// Threads: any; a stream that others write to as well is their owner's matter.
#pragma once

#include <zo/system/error.h>

#include <iosfwd>

class ZO_COM_API ZoErrLog : public ZoError {
 public:
  // The stream is not owned. Null means std::wcerr, chosen anew at every call.
  explicit ZoErrLog(std::wostream* stream = nullptr) noexcept : stream_(stream) {}

  int release(const wchar_t* module) override;

  using ZoErrorSlots::prompt;
  using ZoErrorSlots::trace;
  using ZoErrorSlots::warning;
  int error(const wchar_t* fileName, const wchar_t* funcName, int position,
            const wchar_t* text) override;
  int warning(const wchar_t* fileName, int position, const wchar_t* format, ...) override;
  int trace(const wchar_t* format, ...) override;
  int prompt(const wchar_t* format, ...) override;
  int taskDialog(const wchar_t* text, HWND__* parent, const KeyValue* items, int count) override;

 private:
  std::wostream* stream_;
};

static_assert(sizeof(ZoErrLog) == sizeof(ZoSysObj) + sizeof(std::wostream*));
