#include "text/containers/text_sort.h"

#include <windows.h>
#include <zo/text/containers/text_keys.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <typeinfo>

#include "text/collation.h"
#include "text/plain_order.h"

namespace zo {
namespace {

// Below so many texts the keys cost what they save.
constexpr std::size_t kFewestTexts = 16;
// For so many it pays to learn the locale's order, should that not have happened.
constexpr std::size_t kWorthLearning = 2000;
constexpr std::size_t kTextsOfABlock = 1024;
// Longer texts differ early, and have no key.
constexpr std::size_t kLongestText = 4096;

template <class Compare>
bool comparesTexts(const ElementCompare& compare) {
  const auto* const typed = dynamic_cast<const Compare*>(&compare);
  return typed && typeid(typed->typed()) == typeid(ZoCICompare<ZoString>);
}

struct KeyedText {
  const ZoString* text;
  void* word;
  std::uint32_t size;  // of the key, whose bytes follow; 0 when the text has none
};

// Whether the platform's keys were seen to agree with its comparing for texts of such units: Latin,
// Greek, Cyrillic and Armenian letters, signs and dashes, Han and Hangul. They were seen to differ
// for others: Tibetan, compatibility forms, marks that combine where controls stand between.
bool isSound(wchar_t c) noexcept {
  if (c < 0x300) return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c != 0xAD);
  if (c < 0x588) return c >= 0x370 && (c < 0x483 || c >= 0x48A);
  if (c < 0x2028) return c >= 0x1E00 && (c < 0x2000 || c >= 0x2010);
  return (c >= 0x4E00 && c < 0xA000) || (c >= 0xAC00 && c < 0xD7A4);
}

bool hasSoundKey(std::wstring_view text) noexcept {
  return text.size() <= kLongestText && std::all_of(text.begin(), text.end(), isSound);
}

// Memory that is given back as a whole, in blocks of at least so many bytes.
class KeyMemory {
 public:
  explicit KeyMemory(std::size_t block) noexcept : block_(block) {}
  ~KeyMemory() {
    while (Block* const block = blocks_) {
      blocks_ = block->next;
      freeBlock(block, alignof(Block));
    }
  }
  KeyMemory(const KeyMemory&) = delete;
  KeyMemory& operator=(const KeyMemory&) = delete;

  // At least n bytes, or null. They are taken by the next take().
  [[nodiscard]] unsigned char* room(std::size_t n) noexcept {
    if (n <= static_cast<std::size_t>(end_ - next_)) return next_;
    const std::size_t bytes = std::max(n, block_);
    void* const block = allocateBlock(sizeof(Block) + bytes, alignof(Block));
    if (!block) return nullptr;
    blocks_ = ::new (block) Block{blocks_};
    next_ = static_cast<unsigned char*>(block) + sizeof(Block);
    end_ = next_ + bytes;
    return next_;
  }
  void take(std::size_t n) noexcept {
    constexpr std::size_t kStep = alignof(KeyedText);
    next_ += std::min((n + kStep - 1) / kStep * kStep, static_cast<std::size_t>(end_ - next_));
  }

 private:
  struct alignas(16) Block {
    Block* next;
  };
  std::size_t block_;
  Block* blocks_ = nullptr;
  unsigned char* next_ = nullptr;
  unsigned char* end_ = nullptr;
};

// What is sorted: the first bytes of a key, as a number that orders as they do, and the rest.
struct SortItem {
  std::uint64_t front;
  const KeyedText* keyed;
};

const unsigned char* bytesOf(const KeyedText& keyed) noexcept {
  return reinterpret_cast<const unsigned char*>(&keyed + 1);
}

class KeyMaker {
 public:
  KeyMaker(const PlainOrder& order, KeyMemory& memory) noexcept : order_(order), memory_(memory) {}

  bool make(const ZoString& text, void* word, SortItem& item) noexcept {
    const std::wstring_view view = text.view();
    const bool plain = view.size() <= kLongestText && order_.isPlain(view);
    const bool sound = plain || hasSoundKey(view);
    const std::size_t plainSize = view.size() * PlainOrder::kWeightBytes + PlainOrder::kTailBytes;
    // Accents and the like add to what is not plain; few texts take more.
    const std::size_t most = plain ? plainSize : sound ? 3 * plainSize + 32 : 0;
    unsigned char* const room = memory_.room(sizeof(KeyedText) + most);
    if (!room) return false;
    auto* const keyed = ::new (static_cast<void*>(room)) KeyedText{&text, word, 0};
    unsigned char* const key = room + sizeof(KeyedText);
    if (plain) {
      order_.writeKey(view, key);
      keyed->size = static_cast<std::uint32_t>(plainSize);
    } else if (sound) {
      const int size = LCMapStringW(order_.locale(), LCMAP_SORTKEY | NORM_IGNORECASE, view.data(),
                                    static_cast<int>(view.size()), reinterpret_cast<wchar_t*>(key),
                                    static_cast<int>(most));
      keyed->size = size > 0 ? static_cast<std::uint32_t>(size) : 0;
    }
    memory_.take(sizeof(KeyedText) + keyed->size);
    item = {frontOf(key, keyed->size), keyed};
    return true;
  }

 private:
  static std::uint64_t frontOf(const unsigned char* key, std::size_t size) noexcept {
    std::uint64_t front = 0;
    for (std::size_t i = 0; i < sizeof(front); ++i) front = front << 8 | (i < size ? key[i] : 0);
    return front;
  }

  const PlainOrder& order_;
  KeyMemory& memory_;
};

int compareKeyed(const SortItem& a, const SortItem& b) noexcept {
  const KeyedText& x = *a.keyed;
  const KeyedText& y = *b.keyed;
  if (x.size == 0 || y.size == 0) return compareIgnoreCase(x.text->view(), y.text->view());
  const int order = std::memcmp(bytesOf(x), bytesOf(y), std::min(x.size, y.size));
  if (order != 0) return order;
  return x.size < y.size ? -1 : (x.size > y.size ? 1 : 0);
}

template <bool kAscending>
struct KeyOrder {
  // A text without a key has 0 for front, which no key has.
  bool operator()(const SortItem& a, const SortItem& b) const noexcept {
    if (a.front != b.front && a.front != 0 && b.front != 0)
      return (a.front < b.front) == kAscending;
    return (kAscending ? compareKeyed(a, b) : compareKeyed(b, a)) < 0;
  }
};

class ItemBuffer {
 public:
  explicit ItemBuffer(std::size_t n) noexcept
      : data_(static_cast<SortItem*>(allocateBlock(n * sizeof(SortItem), alignof(SortItem)))) {}
  ~ItemBuffer() { freeBlock(data_, alignof(SortItem)); }
  ItemBuffer(const ItemBuffer&) = delete;
  ItemBuffer& operator=(const ItemBuffer&) = delete;
  [[nodiscard]] SortItem* data() const noexcept { return data_; }

 private:
  SortItem* data_;
};

}  // namespace

bool sortTextsByKeys(void** words, std::size_t n, Words kind, const ElementCompare& compare,
                     bool ascending) noexcept {
  if (n < kFewestTexts) return false;
  if (!comparesTexts<ZoArrayCompare<ZoString>>(compare) &&
      !comparesTexts<ZoListCompare<ZoString>>(compare))
    return false;
  const PlainOrder* const order =
      n < kWorthLearning ? PlainOrder::ofUser() : PlainOrder::learntOfUser();
  const ItemBuffer items(order ? 2 * n : 0);
  if (!order || !items.data()) return false;

  KeyMemory memory(std::min(n, kTextsOfABlock) * 64);
  KeyMaker maker(*order, memory);
  for (std::size_t i = 0; i < n; ++i) {
    const void* const text = kind == Words::kPointers ? words[i] : static_cast<void*>(&words[i]);
    if (!maker.make(*static_cast<const ZoString*>(text), words[i], items.data()[i])) return false;
  }
  SortItem* const sorted = items.data();
  SortItem* const spare = sorted + n;
  if (ascending) {
    MergeSorter<SortItem, KeyOrder<true>>(KeyOrder<true>()).sort(sorted, spare, n);
  } else {
    MergeSorter<SortItem, KeyOrder<false>>(KeyOrder<false>()).sort(sorted, spare, n);
  }
  for (std::size_t i = 0; i < n; ++i) words[i] = sorted[i].keyed->word;
  return true;
}

}  // namespace zo
