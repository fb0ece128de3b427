// The message service: texts for users by message file and number, in the user's language. A caller
// brings its own text for what is not found.
//
//   ZoString text = name + L" has " + ZoIntToStr(holes) + L" holes";  // filled in by the caller
//   ZoSystem::message().format(L"parts", 17, {name, holes}, text);    // "%1 has %2 holes"
//
// A message file is named by its name without folder, language and extension ("parts" for
// parts.de.msg), in any case. What stands in it, and in which order languages are tried:
// docs/messages.md and docs/formats/message-file.md.
//
// A text may refer to others, which are put in its place: kMaxDepth texts within one another, the
// first one counted; what comes of it has kMaxLength units at most, and is made from no more than
// kMaxRead units of messages.
//
// Errors:  0 success. ZoResult::refused: no such text, file or language, or the guard was not
//          obtained within timeOut(); nothing has changed then, and the text is as it was.
//          ZoResult::incomplete: the text was given, but a reference leads nowhere or in a circle,
//          or a bound was met, or an argument is missing; its place in the text is as it was
//          written. ZoResult::invalid: as said. Nothing throws but std::bad_alloc, and then nothing
//          has changed.
// Threads: any. Looking up never waits for the guard: what is looked up is a whole state of the
//          service, while another thread puts the next one in its place.
// Cost:    a look-up takes well under a microsecond; loading reads files.
#pragma once

#include <zo/config.h>
#include <zo/system/sys_obj.h>

#include <concepts>
#include <initializer_list>
#include <span>
#include <type_traits>

class ZoFileName;
class ZoString;
class ZoVariant;
template <class T>
class ZoSequence;

namespace ZoResult {
inline constexpr int incomplete = 4;  // a message that could not be filled in wholly
}  // namespace ZoResult

class ZO_COM_API ZoMessage : public ZoSysObj {
 public:
  static constexpr unsigned int kMaxDepth = 16;
  static constexpr unsigned int kMaxLength = 65536;
  static constexpr unsigned int kMaxRead = 1048576;

  // ---- What a service of one's own must give; the rest has a meaning already ----
  // The text with what it refers to, for users to read: %% has become %, and places of arguments
  // stay as they are written. A service that asks another one overrides formatWith, too, and passes
  // it on: in a text that was filled in once, %1 may have been %%1.
  [[nodiscard]] virtual int getText(const ZoString& file, int number, ZoString& text) = 0;

  // ---- The order of the virtual functions is part of the interface ----
  // The text with its arguments, %1 being the first of them. What the caller has in `text` for want
  // of one is never filled in: a %1 in it would stay. Numbers of physical type codes are
  // printed by the units service; all else as ZoVariant::asString() has it. Arguments are never
  // looked at for references or places. Here: fills in what getText gives, with the forms for one
  // and many that most languages have.
  [[nodiscard]] virtual int formatWith(const ZoString& file, int number,
                                       std::span<const ZoVariant> arguments, ZoString& text);
  // Takes in a message file, "parts" or "parts.msg" or a full name of that form, in all languages
  // in which it is found, until the module is released. Names are looked for by the file search
  // service, so the files may lie in a library; "app.lib|parts" names one itself. Loading what the
  // module has loaded already reads it anew; of several files that have a name in common, the one
  // loaded last comes first. ZoResult::invalid: what was found are no message files. Here: refused.
  [[nodiscard]] virtual int load(const ZoFileName& file, const wchar_t* module);
  // The languages, the one wanted most first ("de-AT", "fr"), and reads all files anew as reload()
  // does. None: those of the setting "messages@language" (one or several, with blanks, commas or
  // semicolons between), and then the user's; that is how it is at first. "de_AT" is "de-AT". Here:
  // refused.
  [[nodiscard]] virtual int setLanguages(const ZoSequence<ZoString>& languages);
  // The languages in the order in which they are tried. Here: refused.
  [[nodiscard]] virtual int getLanguages(ZoSequence<ZoString>& languages);
  // Reads all files anew. Refused when one of them is no longer found in any language: it then
  // keeps the texts that it had. Here: refused.
  [[nodiscard]] virtual int reload();

  template <std::same_as<bool> T>
  int getText(const ZoString&, T, ZoString&) = delete;  // takes the number of a message

  // formatWith for arguments in braces, {name, holes}, and in a sequence.
  [[nodiscard]] int format(const ZoString& file, int number,
                           std::initializer_list<ZoVariant> arguments, ZoString& text);
  [[nodiscard]] int format(const ZoString& file, int number, const ZoSequence<ZoVariant>& arguments,
                           ZoString& text);
  template <std::same_as<bool> T>
  int format(const ZoString&, T, std::initializer_list<ZoVariant>,
             ZoString&) = delete;  // takes the number of a message

  // The text as getText gives it, or the caller's default, as it is, when that does not succeed or
  // throws. The text stays valid as long as the library is loaded, whatever becomes of file,
  // language and service: one that was given once is kept for good, once in the process. Null for
  // the file is an empty name.
  [[nodiscard]] const wchar_t* lasting(const wchar_t* file, int number,
                                       const wchar_t* byDefault) noexcept;
  template <class Text>
    requires std::is_class_v<Text>
  const wchar_t* lasting(const wchar_t*, int, const Text&) = delete;  // a text that lasts: L"..."
};
