// clang-format off: each mark belongs to its line.
#include <zo/files.h>
#include <zo/text/containers/array.h>

void openFiles(ZoFile& file, ZoFileName& name) {
  (void)file.open(name, ZoFile::kOpenAlways);                                     // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kShareRead);                                      // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kSequential);                                     // error: access, mode, share, flags
  (void)file.open(name, true);                                                    // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kRead, ZoFile::kShareRead);                       // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kRead, ZoFile::kOpenAlways, ZoFile::kSequential); // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kRead, ZoFile::kOpenAlways, 1, ZoFile::kShareRead); // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kRead, 3);                                        // error: access, mode, share, flags
  (void)file.open(name, ZoFile::kRead | ZoFile::kShareRead);                      // error: deprecated
  (void)file.createTemp(name, ZoFile::kCreateNew);                                // error: access, mode, share, flags
  (void)file.seek(ZoFile::kEnd);                                                  // error: the offset comes first
  (void)file.getCFileHandle(L"rb", true);                                         // error: the mode says all
  ZoFile byName(&name);                                                           // error: open(name) opens
  ZoFile reopened(file, ZoFile::kOpenAlways);                                     // error: an access
  file.open(name);                                                                // error: nodiscard
  file.close();                                                                   // error: nodiscard
  file.write("x", 1);                                                             // error: nodiscard
}

void switches(ZoFileSystem& files, ZoFileName& name, ZoFileSave& save, ZoFileTransfer& transfer) {
  (void)files.copy(name, name, name);                         // error: failIfExists is a bool
  (void)files.append(name, name, L"x");                       // error: mustExist is a bool
  (void)files.getRemote(name, name, ZoFileSystem::kTree);     // error: failIfExists is a bool
  (void)files.erase(name, 2);                                 // error: invalid conversion
  (void)save.commit(name);                                    // error: the target is that of open
  transfer.refuseExisting(name);                              // error: true or false
  transfer.run(ZoFileTransfer::kMove);                        // error: nodiscard
}

void find(ZoFindFile& find, ZoArray<ZoFileName>& names) {
  (void)find.open(L"C:\\parts", L"*.dwg");                    // error: one pattern
  (void)find.findAll(L"C:\\parts", names, L"*.dwg");          // error: a bool
  find.setKinds(ZoFileName::kDwg);                            // error: a sum
}

void names(ZoFileName name) {
  (void)name.setFullName(L"C:\\parts", L"part.dwg");          // error: makePath joins texts
  (void)name.setFullName(L"C:\\parts", true, name);           // error: makePath joins texts
  (void)name.isEqual(name, name);                             // error: true or false
  if (name) return;                                           // error: isEmpty()
  (void)(name + 1);                                           // error: name.view()
  name.setExtension(L"dwg");                                  // error: nodiscard
}

void handles(ZoHnd handle, double number) {
  ZoHnd byFlag(number > 0);                                   // error: an id is a whole number
  ZoHnd byLetter('c');                                        // error: an id is a whole number
  handle = number;                                            // error: an id is a whole number
}
