// Variants: the value that modules exchange, its type codes and flags, GUIDs, and what is done with
// whole trees of values.
#pragma once

#include <zo/config.h>

#include <zo/variant/guid.h>
#include <zo/variant/ole_variant.h>
#include <zo/variant/type.h>
#include <zo/variant/type_code.h>
#include <zo/variant/variant.h>
#include <zo/variant/variant_elements.h>
#include <zo/variant/variant_report.h>
