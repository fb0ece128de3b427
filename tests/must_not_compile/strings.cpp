// clang-format off
#include <zo/strings.h>

enum Unscoped { kOne = 1 };
void takesFlag(bool);
void takesString(const ZoString&);
void takesAddress(const void*);

void strings(ZoString text, const ZoString& constant, ZoSubString part, std::wistream& in) {
  text.index(L"x");                             // error: nodiscard
  const int* numbers = text;                    // error: cannot convert

  // Numbers, truth values, enumerators and narrow characters for text.
  ZoString number(5);                           // error: ZoIntToStr()
  ZoString zero(0);                             // error: ZoIntToStr()
  ZoString truth(true);                         // error: ZoIntToStr()
  ZoString real(1.5);                           // error: ZoRealToStr()
  ZoString enumerator(kOne);                    // error: ZoIntToStr()
  ZoString narrow('c');                         // error: write L'c'
  ZoString bytes("abc");                        // error: fromUtf8()
  ZoString null = 0;                            // error: conversion from 'int' to non-scalar type
  ZoString character = L'c';                    // error: conversion from 'wchar_t' to non-scalar type
  takesString(0);                               // error: invalid initialization of reference
  text = 0;                                     // error: L"" for an empty text
  text = false;                                 // error: L"" for an empty text
  text = 'c';                                   // error: write L'c'
  text += 1;                                    // error: ZoIntToStr()
  text += 'c';                                  // error: write L'c'
  text += "abc";                                // error: write L'c'
  text.append(5);                               // error: ZoIntToStr()
  text.append(0);                               // error: ZoIntToStr()
  text.append(3, L'c');                         // error: write L'c', then the count
  text.prepend(true);                           // error: ZoIntToStr()
  text.insert(0, 5);                            // error: write L'c', then the count
  text.insert(0, 0);                            // error: write L'c', then the count
  text.insert(0, 3, L'c');                      // error: write L'c', then the count
  text.replace(0, 1, 0);                        // error: remove(), L'c'
  text.remove(L'c');                            // error: takes a position
  text.replaceAll(L"a", 0);                     // error: no matching function
  (void)(text + 1);                             // error: ZoIntToStr()
  (void)(constant + kOne);                      // error: ZoIntToStr()
  (void)(1 + text);                             // error: ZoIntToStr()
  (void)(text + 'c');                           // error: write L'c'
  (void)(text + "abc");                         // error: write L'c'
  (void)(text - 1);                             // error: no match
  part = 0;                                     // error: L"" for an empty text
  part = 'c';                                   // error: write L'c'

  // A pointer, or what C++ makes of one.
  if (text) return;                             // error: isEmpty()
  if (!text) return;                            // error: isEmpty()
  (void)(constant && true);                     // error: isEmpty()
  bool flag = text;                             // error: cannot convert
  takesFlag(text);                              // error: cannot convert
  takesAddress(text);                           // error: cannot convert
  delete text;                                  // error: expected pointer
  (void)*text;                                  // error: no match
  (void)(text - constant);                      // error: no match
  (void)(text == 0);                            // error: isEmpty()
  (void)(text != nullptr);                      // error: isEmpty()
  (void)(nullptr == constant);                  // error: isEmpty()
  (void)(text == 'c');                          // error: L'c' for a character
  (void)(text < 0);                             // error: compareTo() < 0
  (void)(part == 0);                            // error: isEmpty()
  (void)(part == nullptr);                      // error: isEmpty()

  // A number or a truth value where a text, a place or a way to compare is meant.
  (void)text.index(5);                          // error: write L'c'
  (void)text.index(L"x", true);                 // error: exact or ignoreCase
  (void)text.index(L"x", 0, true);              // error: no matching function
  (void)text.indexBack('c');                    // error: write L'c'
  (void)text.contains(0);                       // error: write L'c'
  (void)text.contains(L"x", true);              // error: no matching function
  (void)constant.subString(0);                  // error: no matching function
  (void)constant.subString(L"x", false);        // error: exact or ignoreCase
  (void)text.startsWith(5);                     // error: no matching function
  (void)text.first(0);                          // error: write L'c'
  (void)text.last(5);                           // error: write L'c'
  (void)text.splitNext(0);                      // error: write L'c'
  (void)zoSplitViews(text, ',');                // error: write L'c'
  (void)zoSplitViews(text + L"", L",");         // error: keep the string in a variable
  (void)zoSplitViews(text, ZoString(L","));     // error: keep the string in a variable
  (void)zoSplitViews(constant.copy(), L',');    // error: keep the string in a variable
  (void)text.compareTo(0);                      // error: write L'c'
  (void)text.equals(nullptr, true);             // error: no matching function
  (void)text.collate(0);                        // error: write L'c'
  text.strip(ZoString::both, 0);                // error: no matching function
  (void)text.stripped(ZoString::ignoreCase);    // error: no matching function
  text.readLine(in, L';');                      // error: readToDelim()

  ZoCLib::Zo_strcpy_s(nullptr, 0, L"");         // error: nodiscard
}
