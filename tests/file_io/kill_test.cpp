// Real processes that are killed at each call that changes something on the disk.
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>

#include "file_io/file_fixture.h"
#include "support/child_process.h"
#include "support/faulty_files.h"

namespace zo::test {
namespace {

// Renaming is one call of the platform, so all moves are to another volume.
class OtherVolume : public FaultyFiles {
 public:
  bool move(const wchar_t* from, const wchar_t* to, DWORD flags) override {
    if (flags != 0) return FaultyFiles::move(from, to, flags);  // into place, beside the target
    SetLastError(ERROR_NOT_SAME_DEVICE);
    return false;
  }
};

int transfer(const ZoFileName& from, const ZoFileName& to, ZoFileTransfer::Mode mode) {
  ZoFileTransfer files;
  files.add(from, to);
  return files.run(mode);
}

int save(const ZoFileName& to) {
  ZoFileSave save;
  if (const int code = save.open(to)) return code;
  save.file().write("content", 7);
  return save.commit();
}

struct Deed {
  const char* name;
  int (*run)(const ZoFileName& from, const ZoFileName& to);
  bool targetIsThere, takesSource = false, addsBehind = false;
};
using Name = const ZoFileName&;
const Deed kDeeds[] = {
    {"CopyToNew", [](Name a, Name b) { return ZoSystem::fileSystem().copy(a, b); }, false},
    {"CopyOverOld", [](Name a, Name b) { return ZoSystem::fileSystem().copy(a, b); }, true},
    {"Move", [](Name a, Name b) { return ZoSystem::fileSystem().move(a, b); }, false, true},
    {"AppendToNew", [](Name a, Name b) { return ZoSystem::fileSystem().append(a, b); }, false},
    {"AppendToOld", [](Name a, Name b) { return ZoSystem::fileSystem().append(a, b); }, true, false,
     true},
    {"TransferCopy", [](Name a, Name b) { return transfer(a, b, ZoFileTransfer::kCopy); }, true},
    {"TransferMove", [](Name a, Name b) { return transfer(a, b, ZoFileTransfer::kMove); }, true,
     true},
    {"Save", [](Name, Name b) { return save(b); }, true},
};
void PrintTo(const Deed& deed, std::ostream* out) { *out << deed.name; }

ZO_TEST_CHILD(killedAtAChange) {
  const Attached attached;
  OtherVolume files;
  files.arm({.fault = Fault::stop,
             .call = "create write setEnd setTimes setAttributes copy move removeFile",
             .nth = std::stoi(parent.argument(1))});
  return kDeeds[std::stoul(parent.argument(0))].run(ZoFileName(parent.argument(2).c_str()),
                                                    ZoFileName(parent.argument(3).c_str()));
}

class Killed : public FileTest, public ::testing::WithParamInterface<Deed> {};

TEST_P(Killed, LeavesTheTargetOldOrCompleteAndTheSourceUntilThen) {
  const Deed& deed = GetParam();
  const auto index = std::find_if(std::begin(kDeeds), std::end(kDeeds),
                                  [&](const Deed& d) { return d.name == deed.name; }) -
                     kDeeds;
  const std::string content = "content", old = deed.targetIsThere ? "old" : "(none)",
                    complete = deed.addsBehind ? old + content : content;
  const ZoFileName from = name(L"from"), to = name(L"to");
  int code = kStopped, nth = 1;
  for (; code == kStopped; ++nth) {
    ASSERT_LT(nth, 20);
    put(from, content);
    if (deed.targetIsThere) put(to, old);
    ChildProcess child(L"killedAtAChange", {std::to_wstring(index), std::to_wstring(nth),
                                            from.fullName(), to.fullName()});
    code = child.wait();
    const std::string now = bytesOf(to), source = bytesOf(from);
    const bool isPart = deed.addsBehind && now.starts_with(old) && complete.starts_with(now);
    EXPECT_TRUE(now == old || now == complete || isPart) << nth << ": " << now;
    EXPECT_TRUE(source == content || (deed.takesSource && now == complete)) << nth;
    EXPECT_TRUE(code == kStopped || now == complete) << nth;
    if (code == kStopped && !deed.targetIsThere) DeleteFileW(to.fullName());
  }
  EXPECT_EQ(code, 0);
  EXPECT_GT(nth, 3) << "it was killed several times";
}

INSTANTIATE_TEST_SUITE_P(In, Killed, ::testing::ValuesIn(kDeeds),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace zo::test
