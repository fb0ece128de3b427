#include <zo_com.h>

// clang-format off: the marks stay in their lines
void numbers(unsigned long long size, long double real, ZoTypeFlag flag) {
  ZoVariant a(size);                  // error: static_cast<std::int64_t>
  ZoVariant b = sizeof size;          // error: static_cast<std::int64_t>
  ZoVariant c(real);                  // error: static_cast<double>
  ZoVariant d = flag;                 // error: static_cast<int>
  ZoVariant e = ZoTypeCode::Length;   // error: static_cast<int>
}
void texts(const std::string& narrow) {
  ZoVariant a = 'c';                  // error: ZoString(c)
  ZoVariant b = L'c';                 // error: ZoString(c)
  ZoVariant c = "narrow";             // error: make a ZoString of it
  ZoVariant d(narrow);                // error: make a ZoString of it
  ZoVariant e = nullptr;              // error: ZoVariant() for nothing
}
void values(ZoColor color, ZoPlane plane, ZoMatrix matrix, ZoCoSystem system) {
  ZoVariant a = color;                // error: color.toString()
  ZoVariant b(plane);                 // error: its points and vectors
  ZoVariant c(matrix);                // error: its points and vectors
  ZoVariant d(system);                // error: its points and vectors
}
void colours(double share, ZoColor& color) {
  ZoColor a(share > 0);               // error: a word, or red, green, blue
  ZoColor b(share);                   // error: a word, or red, green, blue
  color = ZoColor('r');               // error: a word, or red, green, blue
}
void pointers(unsigned* u, float* f, bool* b, ZoString* s, const int* i, ZoVariant& v) {
  ZoVariant a(u);                     // error: write *pointer
  ZoVariant c(f);                     // error: write *pointer
  ZoVariant d(b);                     // error: write *pointer
  ZoVariant e(s);                     // error: write *pointer
  ZoVariant g(i);                     // error: write *pointer
  ZoVariant h(v.at(0u));              // error: write *pointer
  ZoVariant j(v.asDict());            // error: write *pointer
  v = v.at(L"key");                   // error: not a variant by itself
  (void)v.set(u);                     // error: not a variant by itself
  for (auto e2 : ZoVariant(v).elements()) {}  // error: deleted
}
void results(ZoVariant& v, int& number, ZoString& text) {
  v.set(5);                           // error: nodiscard
  v.get(number);                      // error: nodiscard
  v.put(L"a/b", 5);                   // error: nodiscard
  v.parse(L"Int 1");                  // error: nodiscard
  v.format(text);                     // error: nodiscard
  v.setCode(ZoTypeCode::Length);      // error: nodiscard
}
