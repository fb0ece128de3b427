// Real second processes for tests.
//
// A child is a function in the same test program. The test starts the program again as that child,
// and the two talk in lines over pipes, so that each can wait for the other without sleeping:
//
//   ZO_TEST_CHILD(holder) {
//     Something held(parent.argument(0));
//     parent.say("holding");
//     parent.hear();                       // nothing when the parent let go
//     return 0;
//   }
//   ...
//   ChildProcess child(L"holder", {L"name"});
//   ASSERT_EQ(child.hear(), "holding");
//   EXPECT_EQ(child.wait(), 0);
//
// A child has its own crash report, watchdog, guarded heap and leak check (exit_codes.h). It never
// outlives its ChildProcess, nor a parent that was killed. Its stdout is the pipe; standard error
// is free. Lines are UTF-8 without the line end; arguments hold no quotes.
//
// Errors:  what cannot be started or written throws std::runtime_error.
// Threads: one at a time per object.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zo::test {

class ChildProcess {
 public:
  enum Errors { kPassedOn, kHeard };  // what it writes to standard error: hear() gives that, too

  explicit ChildProcess(const std::wstring& name, const std::vector<std::wstring>& arguments = {},
                        Errors errors = kPassedOn);
  ~ChildProcess();  // kills and waits
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void say(std::string_view line);
  // The child's next line; nothing when it has ended or closed its output.
  std::optional<std::string> hear();
  // Closes its input, waits for the end, gives the exit code; again the same when asked again.
  int wait();
  [[nodiscard]] bool running() const;
  // Ends it at once, as a crash would: nothing is released. Returns when it is gone.
  void kill();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The other end: what a child sees of its parent.
class Parent {
 public:
  explicit Parent(std::vector<std::wstring> arguments) : arguments_(std::move(arguments)) {}

  // Empty when there are fewer.
  std::wstring argument(std::size_t index) const {
    return index < arguments_.size() ? arguments_[index] : std::wstring();
  }
  void say(std::string_view line);
  std::optional<std::string> hear();

 private:
  std::vector<std::wstring> arguments_;
  std::string pending_;
};

using ChildFunction = int (*)(Parent& parent);

struct ChildEntry {
  ChildEntry(const wchar_t* entryName, ChildFunction entryFunction);
  const wchar_t* name;
  ChildFunction function;
  const ChildEntry* next;
};

}  // namespace zo::test

#define ZO_TEST_CHILD(name)                                                                 \
  static int zoTestChild_##name(zo::test::Parent& parent);                                  \
  static const zo::test::ChildEntry zoTestChildEntry_##name(L## #name, zoTestChild_##name); \
  static int zoTestChild_##name([[maybe_unused]] zo::test::Parent& parent)
