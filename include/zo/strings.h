// Strings: ZoString, its views and storage, ZoCLib, numbers as text, std::format, checked
// formats of printf.
#pragma once

#include <zo/config.h>

#include <zo/text/clib.h>
#include <zo/text/format.h>
#include <zo/text/not_negative.h>
#include <zo/text/number_text.h>
#include <zo/text/printf.h>
#include <zo/text/ref_count.h>
#include <zo/text/split_views.h>
#include <zo/text/string.h>
#include <zo/text/string_ref.h>
#include <zo/text/sub_string.h>
#include <zo/text/text_forms.h>
#include <zo/text/text_parameter.h>
