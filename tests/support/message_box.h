// A user for message boxes: sees every box that the calling thread shows, and presses a button.
//
//   BoxUser user([](const Box& box) { return IDIGNORE; });
//   ... shows a box ...
//   EXPECT_EQ(user.seen().at(0).text, L"...");
//
// Nothing waits: hooks of the thread tell of each box when it takes its first message.
//
// Threads: the one that shows the boxes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zo::test {

struct Box {
  std::wstring caption, text;
  std::vector<int> buttons;       // their IDs, ascending
  void* icon = nullptr;           // HICON
  bool ownWindowsLocked = false;  // the thread's other windows take no input
};

class BoxUser {
 public:
  // Gives the ID of the button to press. Called while the box is up.
  using Press = std::function<int(const Box&)>;

  explicit BoxUser(Press press);
  ~BoxUser();
  BoxUser(const BoxUser&) = delete;
  BoxUser& operator=(const BoxUser&) = delete;

  [[nodiscard]] const std::vector<Box>& seen() const;

  struct State;

 private:
  std::unique_ptr<State> state_;
};

}  // namespace zo::test
