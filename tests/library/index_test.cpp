#include "library/index.h"

#include <gtest/gtest.h>

#include <random>

#include "library/name_bytes.h"
#include "names/name_compare.h"

using namespace zo;

namespace {

// Alike in other cases, as escapes, beyond ASCII, and longer than what is hashed on the stack.
const std::string kNames[] = {"a",    "A",    "b/part 1", "B/PART 1", "b\\part 1", "\\U+0041",
                              "\xE4", "\xC4", "\\U+212A", "k",        "K",         "x\\U+00",
                              "x",    "",     "long",     "LONG",     "\\u+0041",  "\x7F"};

std::string nameOf(unsigned random) {
  const std::string name = kNames[random % std::size(kNames)];
  return name.size() == 4 && name != "\\U+0" ? name + std::string(300, name[0]) : name + "z";
}

class IndexModel {
 public:
  void add(std::mt19937& random) {
    RawEntry entry;
    entry.position = entries_.empty() ? kHeaderSize : entries_.back().end();
    entry.name = nameOf(random());
    entry.record.nameLength = static_cast<std::uint16_t>(entry.name.size());
    if (random() % 2) entry.record.set(kIsDeleted);
    index_.add(entry);
    entries_.push_back(entry);
  }
  void removeLast() {
    if (entries_.empty()) return;
    index_.removeLast();
    entries_.pop_back();
  }
  // Another state, and another name of the same length.
  void replace(std::mt19937& random) {
    if (entries_.empty()) return;
    RawEntry& entry = entries_[random() % entries_.size()];
    const std::string name = nameOf(random());
    if (name.size() == entry.name.size()) entry.name = name;
    entry.record.flags ^= kIsDeleted;
    index_.replace(entry);
  }
  void expectFinds(const std::string& bytes) const {
    const std::wstring wanted = decodeName(bytes);
    std::vector<std::uint64_t> all, live, deleted;
    for (const RawEntry& entry : entries_) {
      if (!equalNames(decodeName(entry.name), wanted)) continue;
      all.push_back(entry.position);
      (entry.record.isLive() ? live : deleted).push_back(entry.position);
    }
    const auto places = [](const std::vector<const IndexEntry*>& found) {
      std::vector<std::uint64_t> result;
      for (const IndexEntry* const entry : found) result.push_back(entry->position);
      return result;
    };
    const auto place = [](const IndexEntry* found) { return found ? found->position : 0; };
    EXPECT_EQ(places(index_.all(wanted)), all);
    EXPECT_EQ(places(index_.allLive(wanted)), live);
    EXPECT_EQ(place(index_.findLive(wanted)), live.empty() ? 0 : live.front());
    EXPECT_EQ(place(index_.findDeleted(wanted)), deleted.empty() ? 0 : deleted.front());
    EXPECT_EQ(place(index_.findLatestDeleted(wanted)), deleted.empty() ? 0 : deleted.back());
  }
  void expectKnowsHidden() {
    const std::vector<bool> hidden = index_.hidden();
    ASSERT_EQ(hidden.size(), entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      const std::wstring name = decodeName(entries_[i].name);
      bool isHidden = false;
      for (std::size_t before = 0; before < i && entries_[i].record.isLive(); ++before)
        isHidden = isHidden || (entries_[before].record.isLive() &&
                                equalNames(decodeName(entries_[before].name), name));
      EXPECT_EQ(hidden[i], isHidden) << i;
      EXPECT_EQ(index_.isHidden(*index_.nth(i + 1)), isHidden) << i;
      EXPECT_EQ(index_.name(*index_.at(entries_[i].position)), name);
    }
  }

 private:
  LibraryIndex index_;
  std::vector<RawEntry> entries_;
};

}  // namespace

// Searched seldom and often: before and after there are buckets, and while these become too few.
TEST(LibraryIndex, FindsWhatAModelFinds) {
  for (unsigned seed = 1; seed <= 12 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    IndexModel model;
    for (int step = 0; step < 300; ++step) {
      const unsigned what = random() % 10;
      what < 7 ? model.add(random) : what < 8 ? model.removeLast() : model.replace(random);
      if (random() % (seed * 8) == 0) model.expectFinds(nameOf(random()));
      if (step % 100 == 50) model.expectKnowsHidden();
    }
    for (unsigned i = 0; i < std::size(kNames); ++i) model.expectFinds(nameOf(i));
  }
}
