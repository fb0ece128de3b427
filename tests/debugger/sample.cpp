// Values for a debugger to look at; tests/debugger/check.py stops it in lookAtThem.
#include <windows.h>
#include <zo_com.h>

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
  const ZoFileName file(L"C:\\parts\\caf\u00E9.dwg");
  const ZoColor red(ZoColor::kRed);
  const ZoColor mixed(1, 2, 255);
  const ZoPoint point(1, 2.5, -3);
  const ZoMatrix matrix({1, 0, 0, 7, 0, 1, 0, 8, 0, 0, 1, 9, 0, 0, 0, 1});
  const ZoPlane plane(point, ZoVector(0, 1, 0));
  const ZoCoSystem system(point, ZoVector(0, 1, 0), ZoVector(-1, 0, 0));
  const ZoTol tolerance(0.001, 1e-6);
  const _GUID guid{0x01234567, 0x89AB, 0xCDEF, {0, 1, 2, 3, 4, 5, 6, 7}};
  const ZoTypeCode code = ZoTypeCode::SpringRate;
  int counted = 42;
  const ZoVariant length(12.5, ZoTypeCode::Length, ZoFlagConstant | ZoFlagVisible);
  const ZoVariant nothing_at_all, word(L"M8"), id(guid), where(point), counter(&counted);
  const ZoVariant array(ZoArray<ZoVariant>{1, L"two"});
  const ZoVariant list(ZoList<ZoVariant>{0.5}, ZoTypeCode::List);
  const ZoVariant dict(ZoHashDict<ZoVariant, ZoString>{{L"width", array}}, ZoTypeCode::Catalog);
  // Damaged: check.py closes the circles.
  ZoList<int> ring{1, 2};
  ZoTree<int, ZoString> knot{{L"a", 1}, {L"b", 2}};
  struct alignas(ZoVariant) Words {
    unsigned int code, word;
    void* payload;
  };
  const Words unknown{0x2100, 31, nullptr}, astray{0x2500, 6 | 32, nullptr};
  const auto& no_kind = reinterpret_cast<const ZoVariant&>(unknown);
  const auto& no_reference = reinterpret_cast<const ZoVariant&>(astray);
  const void* const values[] = {
      &text,      &empty, &part, &numbers, &nothing,        &names,  &sizes,   &odd,
      &ages,      &file,  &red,  &mixed,   &point,          &matrix, &plane,   &system,
      &tolerance, &guid,  &code, &length,  &nothing_at_all, &word,   &id,      &where,
      &counter,   &array, &list, &dict,    &ring,           &knot,   &no_kind, &no_reference};
  lookAtThem(values);
  return 0;
}
