// Members of libraries as open files, for those who open a file by a name in one text
// (zo/names/member_name.h). Libraries stand further up: library/open_member.cpp has it.
#pragma once

#include <zo/files/file.h>

#include <memory>

class ZoFileImp;

namespace zo {

// Opens the library and its member, and puts the file into `opened`. For reading, the member must
// be there. For writing it is made anew, and added when the file is closed: the mode tells whether
// it may or must be there before; modes that keep what it holds are refused. A code of
// zo/library/library.h, or of zo/names/member_name.h.
[[nodiscard]] int openMember(const ZoFileName& name, int access, ZoFile::CreationMode mode,
                             std::unique_ptr<ZoFileImp>& opened);

}  // namespace zo
