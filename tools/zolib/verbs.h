// What zolib can do, one function per verb. Each reports all it has to tell.
#pragma once

#include "options.h"
#include "report.h"

namespace zolib {

void add(const Options& options, Report& report);  // create, add, update, sync
void diff(const Options& options, Report& report);
void list(const Options& options, Report& report);
void info(const Options& options, Report& report);
void cat(const Options& options, Report& report);
void extract(const Options& options, Report& report);
void test(const Options& options, Report& report);
void remove(const Options& options, Report& report);  // delete
void recover(const Options& options, Report& report);
void rename(const Options& options, Report& report);
void reorganize(const Options& options, Report& report);
void salvage(const Options& options, Report& report);

}  // namespace zolib
