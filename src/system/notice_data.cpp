#include "system/notice_data.h"

#include <zo/variant/variant.h>

namespace zo {

ZoString moduleOf(const ZoVariant& data) {
  const ZoVariant* const module = data.at(L"Module");
  return module && module->isTypeOf(ZoVariant::kString) ? module->asString() : ZoString();
}

}  // namespace zo
