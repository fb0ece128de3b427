// System services: the guard, the service base, the registry and its services.
#pragma once

#include <zo/system/dll_version.h>
#include <zo/system/guard.h>
#include <zo/system/sys_notice.h>
#include <zo/system/sys_obj.h>
