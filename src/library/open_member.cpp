#include "files/open_member.h"

#include <windows.h>
#include <zo/library/lib_file.h>
#include <zo/library/library.h>
#include <zo/names/member_name.h>

#include <utility>

#include "files/keep_reason.h"

namespace {

// A member that keeps its library open.
class MemberFile final : public ZoLibFile {
 public:
  MemberFile(const ZoLibFile& file, std::shared_ptr<ZoLibrary> library)
      : ZoLibFile(file), library_(std::move(library)) {}

  [[nodiscard]] ZoFileImp* clone() const override { return new MemberFile(*this, library_); }
  [[nodiscard]] ZoFileImp* cloneFor(unsigned int access) const override {
    const std::unique_ptr<ZoFileImp> own(ZoLibFile::cloneFor(access));
    return new MemberFile(static_cast<const ZoLibFile&>(*own), library_);
  }
  [[nodiscard]] int close() override {
    const int code = ZoLibFile::close();
    library_.reset();
    return code;
  }
  void cancel() override {
    ZoLibFile::cancel();
    library_.reset();
  }

 private:
  std::shared_ptr<ZoLibrary> library_;
};

// Whether a member may be written anew that is there or is not.
int mayWrite(ZoFile::CreationMode mode, bool isThere) {
  switch (mode) {
    case ZoFile::kCreateAlways:
      return ZoResult::ok;
    case ZoFile::kCreateNew:
      return isThere ? ZoResult::memberExists : ZoResult::ok;
    case ZoFile::kTruncateExisting:
      return isThere ? ZoResult::ok : ZoResult::refused;
    default:
      return zo::keepReason(L"open", ERROR_NOT_SUPPORTED);
  }
}

}  // namespace

int zo::openMember(const ZoFileName& name, int access, ZoFile::CreationMode mode,
                   std::unique_ptr<ZoFileImp>& opened) {
  ZoMemberName parts;
  if (const int code = zoSplitMemberName(name, parts))
    return keepReason(L"open", ERROR_INVALID_NAME, code);
  const bool writes = (access & ZoFile::kWrite) != 0;
  auto library = std::make_shared<ZoLibrary>();
  if (const int code = library->open(parts.library, writes ? ZoFile::kReadWrite : ZoFile::kRead))
    return code;
  if (!writes && mode != ZoFile::kOpenExisting) return keepReason(L"open", ERROR_NOT_SUPPORTED);
  if (writes)
    if (const int code = mayWrite(mode, library->contains(parts.member))) return code;
  ZoFile file;
  if (const int code = library->getFile(file, parts.member, access)) return code;
  const auto& member = static_cast<const ZoLibFile&>(*file.getImpObj());
  opened = std::make_unique<MemberFile>(member, std::move(library));
  return ZoResult::ok;
}
