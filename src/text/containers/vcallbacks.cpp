#include <zo/text/containers/vcallbacks.h>

zo::ElementCompare::~ElementCompare() = default;
zo::ElementApply::~ElementApply() = default;
ZoVHashKey::~ZoVHashKey() = default;
unsigned ZoVHashKey::fingerprint(const void*) const { return 0; }
ZoVTreeDump::~ZoVTreeDump() = default;
