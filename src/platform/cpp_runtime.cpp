// The name that zo/config.h makes clients of Visual C++ link: which C++ runtime this DLL has.
#include <zo/config.h>

#if defined(_MSC_VER)
#if defined(_DEBUG)
#define ZO_RUNTIME_MARK zo_com_has_the_debug_runtime
#else
#define ZO_RUNTIME_MARK zo_com_has_the_release_runtime
#endif

extern "C" {
extern ZO_COM_API const char ZO_RUNTIME_MARK;
const char ZO_RUNTIME_MARK = 1;
}
#endif
