// clang-format off
#include <zo/parse.h>
#include <zo/strings.h>

void takesExpression(const ZoRegExp&);

void expressions(const ZoString& text, ZoRegExp expression, const ZoRegExp& constant) {
  text.index(expression);                           // error: nodiscard
  ZoRegExp implicit = L"a";                         // error: conversion from
  takesExpression(L"a");                            // error: invalid initialization of reference
  takesExpression(text);                            // error: invalid initialization of reference
  ZoRegExp number(5);                               // error: write a pattern
  ZoRegExp truth(true);                             // error: write a pattern
  ZoRegExp narrow("a");                             // error: write a pattern
  ZoRegExp options(L"a", 1);                        // error: kIgnoreCase or another option
  ZoRegExp flag(L"a", true);                        // error: kIgnoreCase or another option
  ZoRegExp folded(L"a", ZoString::ignoreCase);      // error: kIgnoreCase or another option
  (void)expression.set(L"a", 1);                    // error: no matching function
  expression.set(L"a");                             // error: nodiscard
  if (expression) return;                           // error: isValid()
  (void)text.index(expression, true);               // error: deleted
  (void)text.index(expression, 1.5);                // error: no matching function
  (void)text.index(expression, ZoString::exact);    // error: options of the expression
  (void)text.contains(expression, ZoString::exact); // error: options of the expression
  (void)text.index(L"a", 0, expression);            // error: no matching function
  ZoSearch search(constant, text);
  ZoSearch copy(search);                            // error: deleted
  (void)search.match(true);                         // error: a number or a name
  (void)search.match("name");                       // error: a number or a name
  (void)search.start(true);                         // error: a number or a name
  (void)search.match(L'c');                         // error: a number or a name
  (void)ZoSearch(constant, text).match();           // error: must outlive
  (void)text(expression, true);                     // error: write a position
  (void)expression.groupName(true);                 // error: write a number
  ZoSearch::replaceAll(text, constant, L"");        // error: nodiscard
  (void)ZoSearch::replaceAll(text, constant, L"");  // error: discards qualifiers
}
