// Wrong use of file search and macros, and what the compiler says of it.
#include <zo/files.h>
#include <zo/system.h>
#include <zo/text/containers/array.h>

// clang-format off

void places(ZoFileSearch& search) {
  (void)search.addPath(L"C:\\parts", L"module", true);        // error: the priority comes first
  (void)search.addPath(L"C:\\parts", L"module", 1, L"below"); // error: below is a bool
}

void find(ZoFileSearch& search, ZoFile& file, ZoArray<ZoFileName>& names) {
  (void)search.findAll(L"*", ZoFileName::kDwg);               // error: a sum of ZoFindFile::kind
  (void)search.findAll(L"*", names, ZoFileName::kDwg);        // error: a sum of ZoFindFile::kind
  search.open(L"a", file);                                    // error: nodiscard
  zoMemberName(L"parts.lib", L"a");                           // error: nodiscard
}

void macros(ZoMacroLib& macros) {
  (void)macros.setMacro(L"a", L"b");                          // error: candidate expects 3 arguments
}
