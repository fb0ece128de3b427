// Standard services of which nothing can be done without a host: they say so in their contracts.
#include <zo/system/macro_lib.h>

#include "system/service_scope.h"

int ZoStdMacroLib::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }
int ZoStdMacroLib::getMacro(const ZoString&, ZoString&) { return ZoResult::refused; }
