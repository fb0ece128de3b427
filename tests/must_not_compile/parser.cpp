// clang-format off
#include <zo/files.h>
#include <zo/parse.h>

#include <string>

ZoString makeText();
enum Unscoped { kOne = 1 };

void parsing(ZoParser& parser, const ZoToken& token, const ZoString& named, std::int64_t integer) {
  ZoParser named1(named);
  ZoParser ofString(makeText());                  // error: give it a name
  ZoParser ofStd(std::wstring(L"a b"));           // error: give it a name
  ZoParser ofSum(named + L";");                   // error: give it a name
  ZoParser ofNumber(5);                           // error: give it a name
  ZoParser ofNarrow("a b");                       // error: give it a name
  ZoParser ofCharacter(L'a');                     // error: give it a name
  ZoParser copy(parser);                          // error: deleted
  parser.setText(makeText());                     // error: give it a name
  parser.setSigns(5);                             // error: no matching function
  parser.setDecimal(',');                         // error: write L','
  parser.setQuotes(L"'", true);                   // error: no matching function
  (void)token.is(ZoToken::kEnd);                  // error: write kind() ==
  (void)token.is('=');                            // error: takes a text
  (void)parser.take('=');                         // error: no matching function
  (void)parser.expect('=');                       // error: takes a text
  (void)parser.expect(ZoToken::kWord);            // error: a place for the token
  parser.expect(L"=");                            // error: nodiscard
  parser.take(L"=");                              // error: nodiscard
  parser.expectInteger(integer);                  // error: nodiscard
}

void tables(ZoCsvReader& table, ZoCsvWriter& out, const ZoString& named, double real) {
  ZoCsvReader ofString(makeText());               // error: give the text a name
  ZoCsvReader ofTemporary(std::wstring(L"a"));    // error: give the text a name
  ZoCsvReader ofSeparator(named, L';');           // error: no matching function
  ZoCsvReader ofNumber(0);                        // error: give the text a name
  table.next();                                   // error: nodiscard
  table.readHeader();                             // error: nodiscard
  table.real(L"x", real);                         // error: nodiscard
  (void)table.field(true);                        // error: no matching function
  (void)table.field(1.5);                         // error: no matching function
  (void)table.column(5);                          // error: takes a name
  out.add(true);                                  // error: write what stands for it
  out.add('c');                                   // error: write what stands for it
  out.add("narrow");                              // error: write what stands for it
  out.add(kOne);                                  // error: write what stands for it
  out.row(L"a", 5);                               // error: nodiscard
  out.endRow();                                   // error: nodiscard
}

void textFiles(const ZoFileName& name, ZoString text) {
  zoReadText(name, text);                         // error: nodiscard
  (void)zoReadText(name, text, true);             // error: a code page by its number
  (void)zoReadText(name, text, L"utf-8");         // error: a code page by its number
  (void)zoReadText(name, text, -1);               // error: negativeOrTooLarge
  zoSaveText(name, text);                         // error: nodiscard
  (void)zoSaveText(name, text, 1252);             // error: cannot convert
}
