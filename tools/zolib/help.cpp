#include "help.h"

#include "verbs.h"

namespace zolib {
namespace {

constexpr unsigned int kPacks = kNames | kFiles | kSelect | kWrites | kLocks | kThreads;
constexpr unsigned int kReads = kNames | kSelect;
constexpr unsigned int kChanges = kNames | kSelect | kWrites | kLocks | kNeedsName;

constexpr Text kFilesHelp{600, "Files and folders to pack; - is data from standard input"};
constexpr Text kMembersHelp{601, "Members, folders of them, or patterns; all without any"};
constexpr Text kTheseHelp{602, "Members, folders of them, or patterns"};

constexpr Verb kVerbs[] = {
    {"create",
     "",
     {610, "Make a new library, and pack files into it"},
     kFilesHelp,
     kPacks,
     add,
     {611,
      "  zolib create parts.lib bolts nuts       two folders with all that is in them\n"
      "  zolib create empty.lib                  without members\n"}},
    {"add",
     "a",
     {612, "Pack files into a library, which is made if it is missing"},
     kFilesHelp,
     kPacks | kNeedsName,
     add,
     {613,
      "  zolib add parts.lib bolts --mode best --exclude '*.bak'\n"
      "  zolib add parts.lib --files-from changed.txt --overwrite never\n"
      "  date | zolib add parts.lib - --name packed.txt\n"}},
    {"update",
     "u",
     {614, "Pack files that are new or newer than their members"},
     kFilesHelp,
     kPacks | kNeedsName,
     add,
     {615, "  zolib update parts.lib bolts --dry-run  what would be packed\n"}},
    {"sync",
     "",
     {636, "Make the members of folders what their files are; what is gone is deleted"},
     {606, "The folders"},
     kNames | kInclude | kWrites | kLocks | kNeedsName | kThreads,
     add,
     {637,
      "  zolib sync parts.lib bolts --dry-run    what would be packed and deleted\n"
      "  zolib sync parts.lib . --exclude '*.bak'\n"}},
    {"diff",
     "",
     {638, "Compare folders with their members, by size and check value"},
     {606, "The folders"},
     kNames | kInclude | kNeedsName,
     diff,
     {639, "  zolib diff parts.lib bolts              1 when something differs\n"}},
    {"list",
     "l",
     {616, "Show a table of the members"},
     kMembersHelp,
     kReads | kDeletedToo,
     list,
     {617,
      "  zolib list parts.lib 'bolts/*.dwg'\n"
      "  zolib list parts.lib --deleted          what recover can bring back\n"
      "  zolib list parts.lib --names --exclude '*.bak' > names.txt\n"}},
    {"info",
     "",
     {618, "Show a library as a whole, or write it as a graph"},
     kMembersHelp,
     kReads,
     info,
     {619,
      "  zolib info parts.lib\n"
      "  zolib info parts.lib --dot - | dot -Tsvg > parts.svg\n"}},
    {"cat",
     "",
     {620, "Write members to standard output"},
     kTheseHelp,
     kReads | kNeedsName,
     cat,
     {621,
      "  zolib cat parts.lib bolts/readme.txt | less\n"
      "  zolib cat 'parts.lib|bolts/readme.txt'  the same in one name\n"}},
    {"extract",
     "x",
     {622, "Write members to files, below the current folder or --output"},
     kMembersHelp,
     kReads | kWrites | kThreads,
     extract,
     {623,
      "  zolib extract parts.lib --output out\n"
      "  zolib extract parts.lib bolts --overwrite newer\n"}},
    {"test",
     "t",
     {624, "Read every member and compare it with its check value"},
     kMembersHelp,
     kReads | kDeletedToo | kThreads,
     test,
     {625, "  zolib test parts.lib                    13 when something is damaged\n"}},
    {"delete",
     "d",
     {626, "Mark members as deleted; recover brings them back"},
     kTheseHelp,
     kChanges,
     remove,
     {627,
      "  zolib delete parts.lib 'old/**'\n"
      "  zolib delete parts.lib secret.txt --physically\n"}},
    {"recover",
     "",
     {628, "Bring deleted members back, of several of a name the latest"},
     kTheseHelp,
     kChanges,
     recover,
     {629,
      "  zolib recover parts.lib bolts/m8.dwg\n"
      "  zolib recover parts.lib bolts/m8.dwg --all   as bolts/m8~1.dwg, ..., bolts/m8.dwg\n"}},
    {"rename",
     "rn",
     {630, "Rename a member, or a folder with all that is in it"},
     {603, "OLD and NEW name"},
     kTwoNames | kWrites | kLocks,
     rename,
     {631,
      "  zolib rename parts.lib bolts/m8.dwg bolts/m8x20.dwg\n"
      "  zolib rename parts.lib bolts screws\n"}},
    {"reorganize",
     "",
     {632, "Rewrite a library without its deleted members"},
     {},
     kWrites | kLocks,
     reorganize,
     {633, "  zolib reorganize parts.lib\n"}},
    {"salvage",
     "",
     {634, "Copy what can be read of a damaged library into a new one"},
     {604, "The new library"},
     kOneName | kWrites,
     salvage,
     {635, "  zolib salvage broken.lib rescued.lib\n"}},
};

}  // namespace

std::span<const Verb> verbs() noexcept { return kVerbs; }

const Text kGeneralHelp{
    605,
    "Names of members are relative paths with slashes; \\ and / are the same, and so are upper\n"
    "and lower case. In patterns ? stands for a character, * for any within a level, ** for any;\n"
    "a pattern without a slash fits at any depth. Quote patterns.\n"
    "\n"
    "Exit codes: 0 ok, 1 done with warnings, 2 failed, 7 usage, 10 not found, 11 locked,\n"
    "12 not a library, 13 damaged, 130 cancelled.\n"
    "\n"
    "Examples:\n"
    "  zolib create parts.lib bolts nuts\n"
    "  zolib list parts.lib\n"
    "  zolib test parts.lib\n"
    "  zolib extract parts.lib --output out\n"
    "\n"
    "`zolib help VERB` has the options and examples of a verb, the manual page zolib(1) all.\n"};

}  // namespace zolib
