// Reading and writing texts: tokens (ZoParser), tables (ZoCsvReader, ZoCsvWriter), regular
// expressions (ZoRegExp, ZoSearch).
#pragma once

#include <zo/config.h>

#include <zo/parse/csv_format.h>
#include <zo/parse/csv_reader.h>
#include <zo/parse/csv_writer.h>
#include <zo/parse/parser.h>
#include <zo/parse/parser_token.h>
#include <zo/parse/reg_exp.h>
#include <zo/parse/search.h>
