#include "progress.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "say.h"
#include "text.h"

namespace zolib {
namespace {

constexpr std::uint64_t kFirstShown = 500, kInterval = 100;  // ms
constexpr std::size_t kWidth = 78;

}  // namespace

std::string progressLine(std::uint64_t done, std::uint64_t total, double seconds,
                         std::string_view name) {
  const double share =
      total ? std::min(1.0, static_cast<double>(done) / static_cast<double>(total)) : 0;
  const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
  const long left = share > 0 ? std::lround(std::min(seconds / share - seconds, 1e6)) : 0;
  char text[40], time[24];
  std::snprintf(text, sizeof text, "%3.0f %%  %9s/s  ", 100 * share,
                readableSize(static_cast<std::uint64_t>(rate)).c_str());
  std::snprintf(time, sizeof time, "%ld:%02ld", left / 60, left % 60);
  std::string line = text + say({55, "%1 left"}, time) + "  ";
  const std::size_t room = kWidth - line.size();
  if (name.size() <= room) return line += name;
  name.remove_prefix(name.size() - room + 3);
  while (!name.empty() && (name[0] & 0xC0) == 0x80) name.remove_prefix(1);  // whole characters
  return line.append("...").append(name);
}

Progress::Progress(Console& console, bool shown)
    : console_(console),
      shown_(shown && console.errIsTerminal()),
      start_(GetTickCount64()),
      lastShown_(start_ + kFirstShown - kInterval) {}

Progress::~Progress() { console_.status({}); }

void Progress::begin(std::string_view name, std::uint64_t size) {
  if (!shown_) return;
  before_ += size_;
  size_ = size;
  name_ = name;
  at(0, 0);
}

void Progress::at(std::uint64_t done, std::uint64_t total) {
  if (!shown_ || !total_) return;
  const std::uint64_t now = GetTickCount64();
  if (now < lastShown_ + kInterval) return;
  lastShown_ = now;
  // The library may count other bytes than the member's own (a rewritten file, packed data).
  const double share = total ? static_cast<double>(done) / static_cast<double>(total) : 0;
  const auto within = static_cast<std::uint64_t>(share * static_cast<double>(size_));
  console_.status(
      progressLine(before_ + within, total_, static_cast<double>(now - start_) / 1000, name_));
}

}  // namespace zolib
