// A module of a project that builds the library itself.
#include <zo_com.h>

int entries(const ZoVariant& value) { return static_cast<int>(value.entries()); }
