// Values for a debugger to look at; tests/debugger/check.py stops it in lookAtThem.
#include <zo/containers.h>
#include <zo/strings.h>

const void* const* volatile looked = nullptr;  // what keeps the values alive

void lookAtThem(const void* const* values) { looked = values; }

int main() {
  ZoString text(L"caf\u00E9 \u0416");
  ZoString empty;
  const ZoSubString part = text(1, 3);
  ZoArray<int> numbers{3, 1, 2};
  ZoArray<int> nothing;
  ZoList<ZoString> names{L"first", L"second"};
  ZoHashDict<double, ZoString> sizes{{L"width", 2.5}};
  ZoHashDict<int, short> odd{{static_cast<short>(7), 70}};
  ZoTree<int, ZoString> ages{{L"Zoe", 30}, {L"adam", 20}};
  const void* const values[] = {&text,  &empty, &part, &numbers, &nothing,
                                &names, &sizes, &odd,  &ages};
  lookAtThem(values);
  return 0;
}
