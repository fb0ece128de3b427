// The border between the editor's tree and its list: what part of their room the tree has.
#pragma once

#include <windows.h>

#include <algorithm>

namespace zo {

struct EditorSplit {
  static constexpr int kWhole = 10'000;

  int share = kWhole / 3;  // the tree's, in ten-thousandths
  RECT room{};             // of both, in pixels of the dialog
  LONG bar = 0;            // the border's width
  LONG least = 0;          // of each side
  LONG grip = 0;           // behind the edge, where the mouse holds it

  // Where the tree ends; the list begins behind the bar.
  [[nodiscard]] LONG edge() const noexcept {
    return room.left + within(MulDiv(width(), share, kWhole));
  }
  void moveTo(LONG edge) noexcept {
    if (width() > 0) share = MulDiv(within(edge - room.left), kWhole, width());
  }
  [[nodiscard]] bool isOnBar(POINT at) const noexcept {
    const RECT box{edge(), room.top, edge() + bar, room.bottom};
    return PtInRect(&box, at) != FALSE;
  }

 private:
  [[nodiscard]] LONG width() const noexcept { return room.right - room.left - bar; }
  [[nodiscard]] LONG within(LONG place) const noexcept {
    return std::max(least, std::min(place, width() - least));
  }
};

}  // namespace zo
