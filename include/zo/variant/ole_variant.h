// Variants to and from OLE Automation's VARIANT.
//
// What becomes what, and which values come back as another kind, stands in docs/variant.md. A
// VARIANT that was made here is the caller's, who ends it with VariantClear.
//
// Errors:  0; 1 when a value has no counterpart, containers lie more than ZoVariant::kMaxDepth deep
//          in one another, or Automation fails. The target then stays as it was.
//          Nothing throws but std::bad_alloc.
// Threads: as the variants. COM need not be initialised, unless interfaces are called.
#pragma once

#include <zo/config.h>
#include <zo/platform_types.h>  // VARIANT of oaidl.h is tagVARIANT

class ZoVariant;

// The VARIANT must be initialised; what it holds is cleared first.
[[nodiscard]] ZO_COM_API int ZoVariantToOle(const ZoVariant& value, tagVARIANT& out);
// Flags of the variant do not survive; its code does where Automation has a type for it. Interface
// pointers are taken over as they are, without a reference of their own.
[[nodiscard]] ZO_COM_API int ZoOleToVariant(const tagVARIANT& value, ZoVariant& out);
