#include <zo/text/containers/vcallbacks.h>

zo::ElementCompare::~ElementCompare() = default;
zo::ElementApply::~ElementApply() = default;
ZoVHashKey::~ZoVHashKey() = default;
ZoVTreeDump::~ZoVTreeDump() = default;
