// Reading texts: tokens (ZoParser), tables (ZoCsvReader, ZoCsvWriter).
#pragma once

#include <zo/parse/parser.h>
#include <zo/parse/parser_token.h>
