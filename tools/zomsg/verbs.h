// What zomsg can do, one function per verb. Each reports all it has to tell.
#pragma once

#include "options.h"
#include "report.h"

namespace zomsg {

using zolib::Report;

void check(const Options& options, Report& report);
void show(const Options& options, Report& report);
void extract(const Options& options, Report& report);

}  // namespace zomsg
