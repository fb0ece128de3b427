// clang-format off
#include <zo/names/handle.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

void layers(ZoLayer& layers) {
  static_cast<void>(layers.change(L"*", {.on = false}, 8));                // error: invalid conversion
  static_cast<void>(layers.ensure({.on = false, .name = L"a"}));           // error: designator order
  ZoLayerBatch(layers.beginBatch());                                       // error: no matching function
}

void copies(ZoStdLayer& layers, ZoStdStandardMgr& standards) {
  ZoStdLayer copy(layers);                                                 // error: deleted
  ZoStdStandardMgr others(standards);                                      // error: deleted
}

void standards(ZoStandardMgr& standards, ZoVariant& row) {
  static_cast<void>(standards.getRow(L"ISO 4014", L"", 8, row));           // error: cannot convert
}
