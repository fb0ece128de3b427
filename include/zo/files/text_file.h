// Files of text, read whole and saved whole.
//
// Reading goes by what the bytes say. A byte order mark tells UTF-8 or UTF-16 and is left out of
// the text; without one, what has the form of UTF-8 or UTF-16 (ZoCodepage::detect) is taken as it,
// and all else as text in an 8-bit code page. Line ends stay as they are. What is broken becomes
// U+FFFD; but a surrogate that stands alone in UTF-16 is kept, as strings may hold it.
//
// Errors:  0, or 1 after a failure whose reason the file-system service's errorTxt() gives: also
//          for a text of more than ZoString::maxLength() characters and for a code page that the
//          platform does not have; 3 for saving to a URL. The text, or the file, is then as it was.
//          Nothing throws but std::bad_alloc.
// Threads: any. No service needs to be there.
// Cost:    a file lies in memory twice while it is read; saving takes a block.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/text/not_negative.h>
#include <zo/text/string.h>

#include <string_view>

class ZoFile;

// How a text is saved. Spreadsheets take UTF-8 for an 8-bit code page where it bears no mark.
enum class ZoTextForm : int { utf8Marked, utf8, utf16, utf16BigEndian };  // UTF-16 with a mark

// The code page (zo/system/codepage.h) is for bytes that are not Unicode; 0 is the code page
// service's default or, without services, the system's.
[[nodiscard]] ZO_COM_API int zoReadText(const ZoFileName& name, ZoString& text,
                                        zo::NotNegative<unsigned int> codepage = 0U);
// The same of a file that is open, from its front to its end: of a member of a library, say.
[[nodiscard]] ZO_COM_API int zoReadText(ZoFile& file, ZoString& text,
                                        zo::NotNegative<unsigned int> codepage = 0U);
template <class T>
  requires(!zo::PlainInteger<T>)
int zoReadText(const ZoFileName&, ZoString&, T) = delete;  // a code page by its number
template <class T>
  requires(!zo::PlainInteger<T>)
int zoReadText(ZoFile&, ZoString&, T) = delete;  // a code page by its number

// In one step (zo/files/file_save.h). A surrogate that stands alone becomes U+FFFD in UTF-8.
[[nodiscard]] ZO_COM_API int zoSaveText(const ZoFileName& name, std::wstring_view text,
                                        ZoTextForm form = ZoTextForm::utf8Marked);
template <zo::PointedText Text>
[[nodiscard]] int zoSaveText(const ZoFileName& name, const Text& text,
                             ZoTextForm form = ZoTextForm::utf8Marked) {
  return zoSaveText(name, zo::textOf(text), form);
}
