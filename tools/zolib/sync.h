// The members that stand for folders of files.
#pragma once

#include <string>
#include <vector>

#include "session.h"
#include "sources.h"

namespace zolib {

// Whether all that the options name are folders; what is not is reported.
bool areFolders(const Options& options, Report& report);
// The members that came from these folders, as far as the options select them, and have no file any
// more.
std::vector<ZoLibEntry> goneFrom(const Options& options, Session& session,
                                 const std::vector<Source>& sources);
// Marks them as deleted, in one step.
void removeGone(const Options& options, Report& report, Session& session,
                const std::vector<Source>& sources);

}  // namespace zolib
