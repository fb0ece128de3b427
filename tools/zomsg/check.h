// The parts of a check. Each looks at one thing, and adds what it finds.
#pragma once

#include <span>

#include "findings.h"

namespace zomsg {

// One file by itself: its faults, its encoding, its language, its plural forms.
void checkFile(const MessageFile& file, Findings& findings);

// All languages of one name in one folder, with the original first.
using Group = std::vector<const MessageFile*>;
void compareLanguages(const Group& group, Findings& findings);

// Where references of all files lead: nowhere, in circles, too deep.
void followReferences(std::span<const Group> groups, Findings& findings);

}  // namespace zomsg
