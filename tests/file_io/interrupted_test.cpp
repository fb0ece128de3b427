// Everything that promises to keep its target, with each call of the platform failing or coming
// short in turn, and with the process killed at each call that changes something.
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>

#include "file_io/file_fixture.h"
#include "files/buffered_file.h"
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

// As a client would, looking only at the end.
int save(const ZoFileName& to, const std::string& content) {
  ZoFileSave save;
  if (const int code = save.open(to)) return code;
  FileWriter writer(save.file(), 1000);
  writer.write(content.data(), content.size());
  writer.flush();
  return save.commit();
}

struct Deed {
  const char* name;
  int (*run)(const ZoFileName& from, const ZoFileName& to, const std::string& content);
  bool targetIsThere, takesSource = false, addsBehind = false;
};
using Name = const ZoFileName&;
using Text = const std::string&;
int copyFile(Name a, Name b, Text) { return ZoSystem::fileSystem().copy(a, b); }
int appendFile(Name a, Name b, Text) { return ZoSystem::fileSystem().append(a, b); }
int moveFile(Name a, Name b, Text) { return ZoSystem::fileSystem().move(a, b); }
const Deed kDeeds[] = {
    {"CopyToNew", copyFile, false},
    {"CopyOverOld", copyFile, true},
    {"Move", moveFile, false, true},
    {"AppendToNew", appendFile, false},
    {"AppendToOld", appendFile, true, false, true},
    {"TransferCopy", [](Name a, Name b, Text) { return transfer(a, b, ZoFileTransfer::kCopy); },
     true},
    {"TransferMove", [](Name a, Name b, Text) { return transfer(a, b, ZoFileTransfer::kMove); },
     true, true},
    {"Save", [](Name, Name b, Text content) { return save(b, content); }, true},
};
void PrintTo(const Deed& deed, std::ostream* out) { *out << deed.name; }

class Interrupted : public FileTest, public ::testing::WithParamInterface<Deed> {
 protected:
  void start(Text content) {
    put(from, content);
    DeleteFileW(to.fullName());
    if (GetParam().targetIsThere) put(to, old);
    complete = GetParam().addsBehind ? old + content : content;
  }
  // Old or complete, and the source as long as the target is not.
  void expectKept(Text content, bool isDone, int nth) {
    now = bytesOf(to);
    const bool isWhole = now == complete, takesSource = GetParam().takesSource && isWhole;
    EXPECT_TRUE(isWhole || (!isDone && now == old)) << nth << ": " << now.size();
    EXPECT_TRUE(takesSource || bytesOf(from) == content) << nth;
  }

  const ZoFileName from = name(L"from"), to = name(L"to");
  const std::string old = GetParam().targetIsThere ? "old" : "(none)";
  std::string complete, now;
};

TEST_P(Interrupted, AFailureLeavesTheTargetAndNothingBesideIt) {
  const std::string content(300'000, 'n');
  OtherVolume files;
  for (const FaultPlan& plan : {FaultPlan{.fault = Fault::fail},
                                FaultPlan{.fault = Fault::shorten, .call = "read write"}}) {
    bool met = true;
    for (FaultPlan next = plan; met; ++next.nth) {
      ASSERT_LT(next.nth, 400);
      start(content);
      files.arm(next);
      const int code = GetParam().run(from, to, content);
      met = files.met();
      files.arm({});
      expectKept(content, code == 0, next.nth);
      // Not every call is one that must work; what came short is asked for again.
      EXPECT_TRUE(code == 0 || (met && plan.fault == Fault::fail)) << next.nth;
      if (code != 0) expectError(ERROR_DISK_FULL);
      EXPECT_LE(listing().size(), 2u) << next.nth;
      if (plan.fault == Fault::shorten && next.nth > 3) break;
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
  const auto index = std::find_if(std::begin(kDeeds), std::end(kDeeds),
                                  [](const Deed& d) { return d.name == GetParam().name; }) -
                     kDeeds;
  int code = kStopped, nth = 1;
  for (; code == kStopped; ++nth) {
    ASSERT_LT(nth, 20);
    start("content");
    ChildProcess child(L"killedAtAChange", {std::to_wstring(index), std::to_wstring(nth),
                                            from.fullName(), to.fullName()});
    code = child.wait();
    const std::string left = bytesOf(to);
    // What was to be added may be there in part.
    const bool isPart = GetParam().addsBehind && left.starts_with(old);
    if (isPart && complete.starts_with(left)) put(to, code ? old : left);
    expectKept("content", code == 0, nth);
  }
  EXPECT_EQ(code, 0);
  EXPECT_GT(nth, 3) << "it was killed several times";
}

INSTANTIATE_TEST_SUITE_P(In, Interrupted, ::testing::ValuesIn(kDeeds),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace zo::test
