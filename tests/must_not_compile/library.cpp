#include <zo/files.h>
#include <zo/text/containers/array.h>

// clang-format off
int wrong(ZoLibrary& library, ZoFile& file, const ZoFileName& name, ZoArray<ZoFileName>& names,
          ZoArray<FILETIME>& times, std::FILE** stream, ZoPacker& packer, ZoPackedMember& packed,
          ZoLibEntry& entry, bool (*visit)(const ZoLibEntry&)) {
  int code = 0;
  code += library.open(name, ZoFile::kOpenAlways);                          // error: the access comes first
  code += library.open(name, true);                                         // error: the access comes first
  code += library.open(name, ZoFile::kRead, ZoFile::kOpenExisting, true);   // error: the access comes first
  code += library.addFile(name, name, ZoLibrary::kCompress);                // error: in this order
  code += library.addFile(L"a", L"b", 1);                                   // error: in this order
  code += library.addFile(L"a", L"b", L"c");                                // error: in this order
  code += library.addFile(file, name, ZoLibrary::kBest);                    // error: in this order
  code += library.addFile(file, name, ZoLibrary::kStore, true);             // error: in this order
  code += library.addFile(name, name, true, ZoLibrary::kBest);              // error: invalid conversion
  code += library.addFile(name, name, true, ZoLibrary::kCompress, ZoLibrary::kAutomatic);  // error: in this order
  code += library.addFile(name, name, true, ZoLibrary::kCompress, true);    // error: in this order
  code += library.deleteFile(L"a", L"b");                                   // error: one member, bool physically
  code += library.deleteFile(name, 1);                                      // error: one member, bool physically
  code += library.getFile(file, name, ZoLibrary::kStore);                   // error: then the compMode
  code += library.getFile(file, name, ZoFile::kWrite, ZoLibrary::kBest);    // error: invalid conversion
  code += library.getCFile(stream, name, ZoFile::kOpenExisting);            // error: then the compMode
  code += library.getFileNames(names, &times);                              // error: bool withDeleted
  code += library.forEachEntry([](const ZoLibEntry&) { return true; }, 1);  // error: bool withDeleted
  code += packer.pack(name, packed, ZoLibrary::kBest);                      // error: the compMode, then the int level
  code += packer.pack(name, packed, ZoLibrary::kCompress, true);            // error: the compMode, then the int level
  code += library.addFile(packed, name, ZoLibrary::kCompress);              // error: in this order
  code += library.deleteFiles(names, true);                                 // error: invalid conversion
  code += library.getEntry(true, entry);                                    // error: or its ordinal
  code += library.getEntry(nullptr, entry);                                 // error: or its ordinal
  code += library.getEntry(1.5, entry);                                     // error: or its ordinal
  code += library.setCheckSum(true);                                        // error: a value of 64 bits
  code += library.contains(nullptr);                                        // error: a member's name
  code += library.deleteFile(nullptr);                                      // error: a member's name
  code += library.recoverFile(nullptr);                                     // error: a member's name
  code += library.deleteFile(ZoLibEntry(), 1);                              // error: bool physically
  code += library.recoverFile(ZoLibEntry(), 1);                             // error: bool replace
  code += library.recoverFiles(names, 1);                                   // error: bool replace, then refused
  code += library.recoverFiles(names, nullptr);                             // error: bool replace, then refused
  code += library.recoverFiles(names, ZoLibrary::kPhysically);              // error: bool replace, then refused
  code += library.recoverFiles({L"a"}, 1);                                  // error: bool replace, then refused
  code += library.open(name, ZoFile::kRead, ZoFile::kOpenExisting, 1.5);    // error: whole milliseconds
  code += library.getEntry(L'a', entry);                                    // error: or its ordinal
  code += library.addFile(nullptr, name);                                   // error: the source's name
  code += library.addFile(file, nullptr, true);                             // error: a member's name
  code += library.renameFile(nullptr, name);                                // error: a member's name
  code += library.renameFile(name, nullptr);                                // error: the new name
  code += library.extractFile(nullptr, name);                               // error: a member's name
  code += library.extractFile(entry, nullptr);                              // error: the target's name
  code += library.getFile(file, nullptr);                                   // error: a member's name
  code += packer.pack(nullptr, packed);                                     // error: a source
  code += packer.pack("abc", true, packed);                                 // error: the number of bytes
  code += packer.pack("abc", 1.5, packed, ZoLibrary::kStore);               // error: the number of bytes
  code += static_cast<int>(ZoPacker::memoryFor(true));                      // error: the number of bytes
  code += static_cast<int>(ZoPacker::memoryFor(1.5, ZoLibrary::kFast));     // error: the number of bytes
  code += library.renameFiles({{L"a", L"b"}, {L"c", L"d"}}) + library.deleteFiles({L"a", L"b"});
  code += library.recoverFilesAs({{L"a", L"b"}, {name, {}, &entry}});
  code += library.recoverFilesAs({{.member = name, .newName = L"c"}});
  code += static_cast<int>(ZoPacker::memoryFor(5, ZoLibrary::kBest));
  code += library.forEachEntry(visit, true, entry.ordinal) + library.forEachEntry(visit, true, 1);
  code += packer.pack("abc", 3, packed, ZoLibrary::kStore, ZoLibrary::kBest);
  code += static_cast<int>(zoCheckValue("abc", 3) + zoCheckValue("abc", sizeof entry, entry.crc));
  code += packer.pack("abc", 'c', packed);                                  // error: the number of bytes
  code += packer.pack("abc", 3, packed, ZoLibrary::kStore, true);           // error: the int level
  code += static_cast<int>(ZoPacker::memoryFor('a'));                       // error: the number of bytes
  code += static_cast<int>(ZoPacker::memoryFor(5, true));                   // error: then the int level
  code += static_cast<int>(ZoPacker::memoryFor(5, 1.5));                    // error: then the int level
  code += static_cast<int>(ZoPacker::memoryFor(5, ZoLibrary::kStore));      // error: then the int level
  code += library.forEachEntry(visit, true, true);                          // error: the first one's ordinal
  code += library.forEachEntry(visit, true, 1.5);                           // error: the first one's ordinal
  code += library.forEachEntry(nullptr);                                    // error: a visitor
  code += library.forEachEntry(nullptr, true, 1);                           // error: a visitor
  code += library.forEachVersion(nullptr, visit);                           // error: a member's name
  code += library.forEachVersion(L"x", nullptr);                            // error: a visitor
  code += library.renameFiles({{L"a", nullptr}});                           // error: a member's name
  code += library.recoverFilesAs({{nullptr, L"a"}});                        // error: a member's name
  ZoLibRename().newName = nullptr;                                          // error: a member's name
  code += library.open(nullptr);                                            // error: the library's name
  code += library.open(nullptr, ZoFile::kReadWrite);                        // error: the library's name
  code += library.getCFile(stream, nullptr);                                // error: a member's name
  code += library.setCheckSum('a');                                         // error: a value of 64 bits
  code += zoMemberName(L"x", nullptr).isEmpty();                            // error: the member's name
  code += zoMemberName(nullptr, name).isEmpty();                            // error: the library's name
  code += zoIsMemberName(nullptr);                                          // error: a name
  code += static_cast<int>(zoCheckValue("abc", true));                      // error: NotNegative
  code += static_cast<int>(zoCheckValue("abc", 1.5));                       // error: NotNegative
  code += static_cast<int>(zoCheckValue("abc", -1));                        // error: negativeOrTooLarge
  code += static_cast<int>(zoCheckValue(nullptr, 0, true));                 // error: NotNegative
  library.close();                                                          // error: nodiscard
  library.addFile(name, name);                                              // error: nodiscard
  library.getFile(file, name);                                              // error: nodiscard
  return code;
}
