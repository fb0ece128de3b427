// What the example module exports, besides what it installs.
#pragma once

#include <iosfwd>

// Both return 0, or 1 when the services did not take part.
using ModuleLoad = int (*)(std::wostream* log);
using ModuleRelease = int (*)();
