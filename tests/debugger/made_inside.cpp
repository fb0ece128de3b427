// Values whose containers and members are the library's own: this program describes none of them.
// tests/debugger/check.py stops it in lookAtThem.
#include <zo/names/file_name.h>
#include <zo/text/containers/array.h>
#include <zo/variant/variant.h>

const void* const* volatile looked = nullptr;  // what keeps the values alive

void lookAtThem(const void* const* values) { looked = values; }

int main() {
  ZoVariant part, array(ZoVariant::kSequence), list;
  if (part.put(L"width", 2.5) || array.put(L"0", 7) || array.put(L"1", L"M8")) return 1;
  if (list.parse(L"List [Real 0.5]")) return 1;
  const ZoFileName file(L"m8.dwg");
  const ZoArray<int> numbers{7};
  const void* const values[] = {&part, &array, &list, &file, &numbers};
  lookAtThem(values);
  return 0;
}
