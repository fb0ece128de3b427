// Result codes as texts, for logs and messages.
//
//   if (const int code = library.addFile(file, member); code != ZoResult::ok)
//     log << zoResultText(code, ZoResultFamily::libraries);
//
// A code has its meaning from the family of the operation that gave it: 1000 is a check value that
// does not match, or a file that the shell did not find. docs/results.md lists all of them. What
// the platform said of a failure is another matter: the file-system service's errorTxt().
//
// Errors:  nothing throws but std::bad_alloc.
// Threads: any.
#pragma once

#include <zo/config.h>

#include <concepts>

class ZoString;

enum class ZoResultFamily : int {
  common,             // ZoResult of zo/results.h; what no family below says otherwise
  numbers,            // ZoStrToReal and its kin, values with units
  containers,         // of any kind
  variants,           // and their text and OLE forms
  geometry,           // zo/geometry/status.h
  names,              // ZoFileName: zo/names/name_results.h
  files,              // ZoFile, ZoFileSave, searches
  fileSystem,         // ZoFileSystem, ZoFileTransfer
  libraries,          // ZoLibrary: zo/library/library_results.h
  compression,        // ZoCompress, ZoExplode
  lzma,               // LzmaUtils::Status
  services,           // the registry's services, the dispatcher, attaching and detaching
  configuration,      // ZoCfg
  errors,             // what ZoError's reports answer
  execute,            // ZoExecute::Failure
  exceptions,         // ZoComException::Code
  waits,              // ZoWait, cast to int
  expressions,        // ZoRegExp, ZoSearch: zo/parse/reg_exp.h
  messages,           // ZoMessage, ZoMessageMap
  search = 0x13,      // ZoFileSearch, ZoMacroLib
  opening = 0x14,     // ZoFileOpen, ZoDownloadCache: zo/system/open_results.h
  xml = 0x15,         // ZoXMLClass, ZoXMLNode, ZoJson: zo/xml/xml_results.h
  standards = 0x16,   // ZoLayer, ZoStandardMgr
  dialogs = 0x17,     // ZoDialog: zo/dialogs/dialog.h
  cInterface = 0x20,  // zo_c.h
};

// A sentence, from the message file "zoresult" when the message service has it (docs/messages.md),
// else in English. Of a code that the family does not have, one that tells the number.
[[nodiscard]] ZO_COM_API ZoString zoResultText(int code, ZoResultFamily family);
template <std::same_as<bool> T>
void zoResultText(T, ZoResultFamily) = delete;  // the code itself, not whether there is one
