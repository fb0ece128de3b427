// The library's exception value: what failed, where, and whether the user is to hear of it.
//
//   throw-side:  zoThrow(L"No such part");  // with this file, function and line; or
//                zoThrow(ZoComException(ZO_FILE, L"load", text.data(), __LINE__, true));
//   catch-side:  catch (const ZoComException& e) { e.report(); }
//                catch (const std::exception& e) { log(e.what()); }
//
// What zoThrow throws is caught by either handler: it is the exception given and a std::exception
// at once, so that this class keeps its plain shape, without a base. A plain `throw` works too, but
// then only handlers of ZoComException catch it. The library throws by zoThrow alone.
//
// Errors:  nothing here throws but zoThrow, and report() what the error service throws.
// Threads: one at a time per object. A thrown one may be handed to another thread
//          (std::exception_ptr).
// Owned:   nothing. A copy copies the pointers; the texts must live as long as the copies, as
//          literals do. But what zoThrow throws keeps copies of the texts that are no literals, for
//          as long as it lives itself: a ZoComException that a handler copies out of it, and keeps
//          longer, points to what is gone (keep a std::exception_ptr instead).
#pragma once

#include <zo/config.h>
#include <zo/system/source_place.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <source_location>
#include <type_traits>

class ZO_COM_API ZoComException {
 public:
  // Values of errCode(); others are free.
  enum Code : int { kNoError = 0, kInternalError = 1, kOutOfMemory = 2, kInvalidArgument = 3 };

  ZoComException() noexcept = default;
  // The message is that of the code.
  ZoComException(const wchar_t* fileName, const wchar_t* funcName, int code, int position,
                 bool asError) noexcept
      : errCode_(code),
        fileName_(fileName),
        funcName_(funcName),
        position_(position),
        asError_(asError) {}
  // With kInternalError.
  ZoComException(const wchar_t* fileName, const wchar_t* funcName, const wchar_t* text,
                 int position, bool asError) noexcept
      : fileName_(fileName),
        funcName_(funcName),
        text_(text),
        position_(position),
        asError_(asError) {}
  ZoComException(const ZoComException&) noexcept = default;
  ZoComException& operator=(const ZoComException&) noexcept = default;

  // The order of the virtual functions is part of the interface; the destructor is the last.
  //
  // The text, or where that is null a fixed one for the code: "" for none, "Out of Memory",
  // "Invalid Argument", and "Internal Error" for all others.
  [[nodiscard]] virtual const wchar_t* message() const;
  // Hands the particulars to the error service if asError(), and returns errCode(). With kNoError
  // nothing is reported and 1 returned. Where no error service is in force, nothing is reported.
  virtual int report() const;  // NOLINT(modernize-use-nodiscard): called for what it does
  virtual ~ZoComException();

  [[nodiscard]] int errCode() const noexcept { return errCode_; }
  [[nodiscard]] const wchar_t* fileName() const noexcept { return fileName_; }
  [[nodiscard]] const wchar_t* funcName() const noexcept { return funcName_; }
  [[nodiscard]] int position() const noexcept { return position_; }
  // Whether report() passes the exception on to the error service.
  [[nodiscard]] bool asError() const noexcept { return asError_; }

  void setErrCode(int code) noexcept { errCode_ = code; }
  void setFileName(const wchar_t* fileName) noexcept { fileName_ = fileName; }
  void setFuncName(const wchar_t* funcName) noexcept { funcName_ = funcName; }
  void setPosition(int position) noexcept { position_ = position; }
  void setAsError(bool asError) noexcept { asError_ = asError; }

 protected:
  // Points each text that is no constant of a program at a copy, and gives the copies. Without
  // memory for them such texts become null: message() is then that of the code.
  [[nodiscard]] std::shared_ptr<const wchar_t[]> keepTexts() noexcept;

 private:
  int errCode_ = kInternalError;
  const wchar_t* fileName_ = nullptr;  // of the place that threw
  const wchar_t* funcName_ = nullptr;
  const wchar_t* text_ = nullptr;
  int position_ = 0;  // line, or position in what was read
  bool asError_ = true;
};

static_assert(sizeof(ZoComException) == 48);

namespace zo {

inline constexpr std::size_t kWhatSize = 256;

// The text in the ANSI code page, zero-terminated; what does not fit is cut off.
ZO_COM_API void copyWhat(char (&what)[kWhatSize], const wchar_t* message) noexcept;

// What zoThrow throws. Its copies share the texts.
template <class Exception>
class Thrown final : public Exception, public std::exception {
 public:
  explicit Thrown(const Exception& value) : Exception(value), texts_(this->keepTexts()) {
    copyWhat(what_, value.message());
  }
  // The message as it was when it was thrown.
  [[nodiscard]] const char* what() const noexcept override { return what_; }

 private:
  std::shared_ptr<const wchar_t[]> texts_;
  char what_[kWhatSize];
};

[[noreturn]] ZO_COM_API void throwAt(int code, const wchar_t* text, bool asError,
                                     const std::source_location& place);

}  // namespace zo

// Throws a ZoComException, or a class derived from it, for handlers of its own type and of
// std::exception.
template <class Exception>
  requires std::is_base_of_v<ZoComException, Exception>
[[noreturn]] void zoThrow(const Exception& exception) {
  throw zo::Thrown<Exception>(exception);
}

// Throw a ZoComException of this place of the program: its file without folders, function and line.
// The text may be a local one. The first has the code kInternalError, the second the code's
// message.
[[noreturn]] inline void zoThrow(
    const wchar_t* text, bool asError = true,
    const std::source_location& place = std::source_location::current()) {
  zo::throwAt(ZoComException::kInternalError, text, asError, place);
}
[[noreturn]] inline void zoThrow(
    ZoComException::Code code, bool asError = true,
    const std::source_location& place = std::source_location::current()) {
  zo::throwAt(code, nullptr, asError, place);
}
template <class T>
  requires(std::is_arithmetic_v<T> || std::is_null_pointer_v<T>)
void zoThrow(T, bool = true) = delete;  // a text, or a ZoComException::Code
