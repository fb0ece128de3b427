#include <zo/search/std_file_open.h>

#include "system/service_scope.h"

int ZoStdFileOpen::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }
int ZoStdFileOpen::open(const ZoFileName&) { return ZoResult::refused; }
