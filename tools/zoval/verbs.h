// What zoval can do, one function per verb. Each reports all it has to tell.
#pragma once

#include "options.h"
#include "report.h"

namespace zoval {

using zolib::Report;

void show(const Options& options, Report& report);
void get(const Options& options, Report& report);
void set(const Options& options, Report& report);
void edit(const Options& options, Report& report);
void diff(const Options& options, Report& report);
void convert(const Options& options, Report& report);
void graph(const Options& options, Report& report);

}  // namespace zoval
