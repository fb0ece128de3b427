#include <zo/system/err_log.h>

#include <cstdarg>
#include <iostream>
#include <string_view>

#include "system/report_text.h"
#include "system/service_scope.h"

namespace {

// One report on its way: holds the service's guard, and writes characters only, so that neither
// flags, width nor locale of the stream can change them.
class Report {
 public:
  Report(ZoSysObj& service, std::wostream* stream)
      : writing_(service), stream_(stream ? *stream : std::wcerr) {}

  explicit operator bool() const noexcept { return static_cast<bool>(writing_); }
  Report& operator<<(std::wstring_view text) {
    stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
    return *this;
  }
  Report& operator<<(const zo::ReportText& text) { return *this << text.view(); }

  // A line of its own, when there is a text.
  Report& line(std::wstring_view label, const wchar_t* text) {
    return text ? *this << label << text << L"\n" : *this;
  }
  Report& position(int number) {
    return *this << L"position: " << zo::ReportText().add(number) << L"\n";
  }
  // Flushes; the result of the report.
  int finish() {
    stream_.flush();
    const bool good = !stream_.fail();
    if (!good && &stream_ == &std::wcerr) stream_.clear();
    return good ? ZoResult::ok : ZoResult::refused;
  }

 private:
  zo::Writing writing_;
  std::wostream& stream_;
};

int writeTrace(ZoSysObj& service, std::wostream* stream, const wchar_t* format, va_list arguments) {
  if (!format) return ZoResult::refused;
  Report report(service, stream);
  if (!report) return ZoResult::refused;
  report << zo::ReportText().addFormatted(format, arguments) << L"\n";
  return report.finish();
}

}  // namespace

int ZoErrLog::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

int ZoErrLog::error(const wchar_t* fileName, const wchar_t* funcName, int position,
                    const wchar_t* text) {
  Report report(*this, stream_);
  if (!report) return ZoResult::refused;
  report << L"\n\n*** Error: ";
  report.line(L"", text).line(L"filename: ", fileName).line(L"function: ", funcName);
  return report.position(position).finish();
}

int ZoErrLog::warning(const wchar_t* fileName, int position, const wchar_t* format, ...) {
  Report report(*this, stream_);
  if (!report) return ZoResult::refused;
  va_list arguments;
  va_start(arguments, format);
  report << L"\n\n*** Warning: " << zo::ReportText().addFormatted(format, arguments) << L"\n";
  va_end(arguments);
  return report.line(L"filename: ", fileName).position(position).finish();
}

int ZoErrLog::trace(const wchar_t* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int result = writeTrace(*this, stream_, format, arguments);
  va_end(arguments);
  return result;
}

int ZoErrLog::prompt(const wchar_t* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int result = writeTrace(*this, stream_, format, arguments);
  va_end(arguments);
  return result;
}

int ZoErrLog::taskDialog(const wchar_t*, HWND__*, const KeyValue*, int) { return 2; }
