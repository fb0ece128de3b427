// Reading texts: regular expressions.
#pragma once

#include <zo/parse/reg_exp.h>
#include <zo/parse/search.h>
