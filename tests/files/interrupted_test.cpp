// Everything that promises to keep its target, with each call of the platform failing or coming
// short in turn, and with the process killed at each call that changes something.
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>

#include "files/buffered_file.h"
#include "files/file_fixture.h"
#include "support/child_process.h"

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

template <ZoFileTransfer::Mode mode>
int transfer(const ZoFileName& from, const ZoFileName& to, const std::string&) {
  ZoFileTransfer files;
  files.add(from, to);
  return files.run(mode);
}

// As a client would, looking only at the end.
int save(const ZoFileName&, const ZoFileName& to, const std::string& content) {
  ZoFileSave save;
  if (const int code = save.open(to)) return code;
  FileWriter writer(save.file(), 1000);
  writer.write(content.data(), content.size());
  writer.flush();
  return save.commit();
}

using Name = const ZoFileName&;
using Text = const std::string&;
struct Deed {
  const char* name;
  int (*run)(Name from, Name to, Text content);
  bool targetIsThere, takesSource = false, addsBehind = false;
};
int copyFile(Name a, Name b, Text) { return ZoSystem::fileSystem().copy(a, b); }
int appendFile(Name a, Name b, Text) { return ZoSystem::fileSystem().append(a, b); }
int moveFile(Name a, Name b, Text) { return ZoSystem::fileSystem().move(a, b); }
const Deed kDeeds[] = {
    {"CopyToNew", copyFile, false},
    {"CopyOverOld", copyFile, true},
    {"Move", moveFile, false, true},
    {"AppendToNew", appendFile, false},
    {"AppendToOld", appendFile, true, false, true},
    {"TransferCopy", transfer<ZoFileTransfer::kCopy>, true},
    {"TransferMove", transfer<ZoFileTransfer::kMove>, true, true},
    {"Save", save, true},
};

class Interrupted : public FileTest, public ::testing::WithParamInterface<std::size_t> {
 protected:
  void start(Text content) {
    put(from, content);
    DeleteFileW(to.fullName());
    if (deed.targetIsThere) put(to, old);
    complete = deed.addsBehind ? old + content : content;
  }
  // Old or complete, and the source as long as the target is not.
  void expectKept(Text content, bool isDone, int nth) {
    const std::string now = bytesOf(to);
    const bool isWhole = now == complete;
    EXPECT_TRUE(isWhole || (!isDone && now == old)) << nth << ": " << now.size();
    EXPECT_TRUE((deed.takesSource && isWhole) || bytesOf(from) == content) << nth;
  }

  const Deed& deed = kDeeds[GetParam()];
  const ZoFileName from = name(L"from"), to = name(L"to");
  const std::string old = deed.targetIsThere ? "old" : "(none)";
  std::string complete;
};

TEST_P(Interrupted, AFailureLeavesTheTargetAndNothingBesideIt) {
  const std::string content(300'000, 'n');
  OtherVolume files;
  for (FaultPlan plan : {FaultPlan{.fault = Fault::fail},
                         FaultPlan{.fault = Fault::shorten, .call = "read write"}}) {
    const bool fails = plan.fault == Fault::fail;
    for (bool met = true; met && (fails || plan.nth <= 4); ++plan.nth) {
      ASSERT_LT(plan.nth, 400);
      start(content);
      files.arm(plan);
      const int code = deed.run(from, to, content);
      met = files.met();
      files.arm({});
      expectKept(content, code == 0, plan.nth);
      // Not every call is one that must work; what came short is asked for again.
      EXPECT_TRUE(code == 0 || (met && fails)) << plan.nth;
      if (code != 0) expectError(ERROR_DISK_FULL);
      EXPECT_LE(listing().size(), 2u) << plan.nth;
    }
  }
}

ZO_TEST_CHILD(killedAtAChange) {
  const Attached attached;
  OtherVolume files;
  files.arm({.fault = Fault::stop,
             .call = "create write setEnd setTimes setAttributes copy move removeFile",
             .nth = std::stoi(parent.argument(1))});
  return kDeeds[std::stoul(parent.argument(0))].run(
      ZoFileName(parent.argument(2).c_str()), ZoFileName(parent.argument(3).c_str()), "content");
}

TEST_P(Interrupted, AKilledProcessLeavesTheTargetOldOrComplete) {
  int code = kStopped, nth = 1;
  for (; code == kStopped; ++nth) {
    ASSERT_LT(nth, 20);
    start("content");
    ChildProcess child(L"killedAtAChange", {std::to_wstring(GetParam()), std::to_wstring(nth),
                                            from.fullName(), to.fullName()});
    code = child.wait();
    const std::string left = bytesOf(to);
    // What was to be added may be there in part.
    if (deed.addsBehind && left.starts_with(old) && complete.starts_with(left))
      put(to, code ? old : left);
    expectKept("content", code == 0, nth);
  }
  EXPECT_EQ(code, 0);
  EXPECT_GT(nth, 3) << "it was killed several times";
}

INSTANTIATE_TEST_SUITE_P(In, Interrupted, ::testing::Range<std::size_t>(0, std::size(kDeeds)),
                         [](const auto& test) { return std::string(kDeeds[test.param].name); });

}  // namespace
}  // namespace zo::test
