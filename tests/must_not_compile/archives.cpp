// clang-format off
#include <zo/archive.h>
#include <zo/variant.h>

enum Plain { kPlain };
enum class Scoped { kOne };
struct Part { int name; };

void store(ZoArchive& archive, ZoDumpArchive& dump, ZoMemoryWriteArchive& memory, Part* part,
           float real, char c) {
  archive << "narrow";             // error: a pointer or narrow text: write a wide text
  int numbers[3] = {};
  archive << numbers;              // error: or what it points to
  archive << part;                 // error: or what it points to
  archive << nullptr;              // error: not stored: write a double
  archive << real;                 // error: not stored: write a double
  archive << c;                    // error: not stored: write a double
  archive << L'c';                 // error: a wide text instead
  archive << 1.5L;                 // error: not stored: write a double
  archive << kPlain;               // error: write its number
  archive << Scoped::kOne;         // error: write its number
  archive << *part;                // error: no match
  dump.write("x", L"label");       // error: a pointer or narrow text
  dump.write(numbers, L"label");   // error: a pointer or narrow text
  dump.write(&Part::name, L"label");  // error: a pointer or narrow text
  memory.write(real, L"");         // error: not stored: write a double
  memory.write('c', L"");          // error: not stored: write a double
  dump.write(kPlain, L"label");    // error: write its number
}

void load(ZoArchive& archive, Part* part, Plain plain, float real, char c) {
  archive >> part;                 // error: a pointer: read what it points to
  archive >> plain;                // error: read its number
  archive >> real;                 // error: not stored: read a double
  archive >> c;                    // error: not stored: read a double
}
