// The code page service: 8-bit text to and from UTF-16, code pages by number and by name, and which
// one a text without a label is likely in.
//
// Code pages bear the platform's numbers. kDefault (0) is the service's default, at first the
// system's ANSI code page. Besides the platform's 8-bit and multi-byte code pages there are 1200
// and 1201, UTF-16 with the low or the high byte first.
//
// Errors:  0, or ZoResult::refused as said; ZoResult::timeOut when the guard was not obtained
//          within timeOut(). Out-parameters are then as they were. Texts and bytes of more than
//          2^31 - 2 are refused. Nothing throws but std::bad_alloc.
// Threads: any. Only what asks for the default code page waits for the guard.
// Cost:    linear; kRefuse and kEscape ask the platform about each character that is not ASCII.
#pragma once

#include <zo/system/sys_obj.h>
#include <zo/text/string.h>

#include <string>
#include <string_view>

class ZO_COM_API ZoCodepage : public ZoSysObj {
 public:
  static constexpr unsigned int kDefault = 0;
  static constexpr unsigned int kUtf8 = 65001;
  static constexpr unsigned int kUtf16 = 1200;
  static constexpr unsigned int kUtf16BigEndian = 1201;

  // What is done with what a code page cannot hold. It holds a character that it gives back as it
  // was; a lone surrogate is held by UTF-16 only.
  enum Unfit : int {
    kRefuse,   // the conversion is refused
    kReplace,  // the platform's replacement: a similar character, or a question mark
    kEscape,   // \U+XXXX for each UTF-16 unit, and such escapes are turned back in reading
  };
  // How sure a detection is.
  enum Certainty : int {
    kAssumed,  // nothing speaks against it
    kLikely,   // the bytes have its form, and hardly by chance
    kMarked,   // a byte order mark says it
  };

  [[nodiscard]] virtual int getDefault(unsigned int& codepage) = 0;
  // Refused when the platform does not have the code page. kDefault goes back to the system's.
  [[nodiscard]] virtual int setDefault(unsigned int codepage) = 0;
  // The system's ANSI and OEM code pages.
  [[nodiscard]] virtual unsigned int ansi() = 0;
  [[nodiscard]] virtual unsigned int oem() = 0;
  // Whether texts can be converted to and from it on this machine.
  [[nodiscard]] virtual bool isValid(unsigned int codepage) = 0;

  // The text of bytes; a byte order mark is text like any other. With kRefuse, bytes that the code
  // page does not define are refused, where the platform can tell (not for UTF-7 and the stateful
  // code pages). With kReplace and kEscape they become replacement characters.
  [[nodiscard]] virtual int toText(std::string_view bytes, unsigned int codepage, Unfit unfit,
                                   ZoString& text) = 0;
  // The bytes of a text, without a byte order mark and without a terminator.
  [[nodiscard]] virtual int toBytes(std::wstring_view text, unsigned int codepage, Unfit unfit,
                                    std::string& bytes) = 0;

  // A name as the Internet registers it ("windows-1252", "utf-8", "ibm850"), or "cp" and the
  // number; and what the platform calls it in the user's language, refused where it has no name for
  // it (UTF-16).
  [[nodiscard]] virtual int nameOf(unsigned int codepage, ZoString& name) = 0;
  [[nodiscard]] virtual int describe(unsigned int codepage, ZoString& description) = 0;
  // The code page of a name: those of nameOf and their usual aliases, those that drawings are
  // marked with ("ANSI_1252", "DOS850"), and bare numbers. Case, "-", "_" and blanks do not count.
  // Refused are names that are unknown, and code pages that are not valid.
  [[nodiscard]] virtual int find(const wchar_t* name, unsigned int& codepage) = 0;

  // The likeliest code page of a text or of its beginning, and the length of its byte order mark.
  // UTF-8, UTF-16 and plain ASCII are told by their form; between the 8-bit code pages bytes do not
  // tell, so that all else, ASCII included, is assumed to be in the default code page.
  [[nodiscard]] virtual int detect(std::string_view bytes, unsigned int& codepage,
                                   unsigned int& markLength, Certainty& certainty) = 0;
};

class ZO_COM_API ZoStdCodepage : public ZoCodepage {
 public:
  ZoStdCodepage() = default;
  ZoStdCodepage(const ZoStdCodepage&) = delete;
  ZoStdCodepage& operator=(const ZoStdCodepage&) = delete;

  int release(const wchar_t* module) override;

  int getDefault(unsigned int& codepage) override;
  int setDefault(unsigned int codepage) override;
  unsigned int ansi() override;
  unsigned int oem() override;
  bool isValid(unsigned int codepage) override;
  int toText(std::string_view bytes, unsigned int codepage, Unfit unfit, ZoString& text) override;
  int toBytes(std::wstring_view text, unsigned int codepage, Unfit unfit,
              std::string& bytes) override;
  int nameOf(unsigned int codepage, ZoString& name) override;
  int describe(unsigned int codepage, ZoString& description) override;
  int find(const wchar_t* name, unsigned int& codepage) override;
  int detect(std::string_view bytes, unsigned int& codepage, unsigned int& markLength,
             Certainty& certainty) override;

 private:
  // Makes kDefault the default code page, and refuses what is not valid.
  int resolve(unsigned int& codepage);

  unsigned int default_ = kDefault;  // kDefault: the system's
};
