#include <zo/text/containers/array.h>
#include <zo/text/containers/text_keys.h>
#include <zo/text/string.h>

#include "text/unit_set.h"

unsigned int ZoString::splitAt(const ZoString& set, ZoSequence<ZoString>& out) const {
  const ZoString text(*this);  // this may be an entry of out
  out.removeAll();
  if (text.isEmpty()) return 0;
  auto* const array = dynamic_cast<ZoArray<ZoString>*>(&out);
  int status = ZoResult::ok;
  size_t from = 0;
  const auto cutAt = [&](size_t at) {
    const std::wstring_view piece = text.view().substr(from, at - from);
    status = array ? array->emplace(piece) : out.append(ZoString(piece));
    from = at + 1;
    return status == ZoResult::ok;
  };
  zo::UnitSet(set.view()).eachIn(text.view(), cutAt);
  if (status == ZoResult::ok) cutAt(text.length());
  if (status != ZoResult::ok) out.removeAll();
  return out.entries();
}
