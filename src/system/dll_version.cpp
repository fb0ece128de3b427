#include <zo/system/dll_version.h>
#include <zo/version.h>

const char* zoComVersion() noexcept { return ZO_COM_VERSION; }
