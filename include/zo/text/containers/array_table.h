// The storage of ZoArray<T>: elements side by side in one block.
//
// Elements that can change their place without throwing are relocated; others are copied to a new
// block first, so that an exception leaves the old one as it was.
//
// Errors, Threads: as in varray.h.
#pragma once

#include <zo/text/containers/elements.h>
#include <zo/text/containers/node_pool.h>
#include <zo/text/containers/varray.h>

template <class T>
class ZoArrayTable final : public ZoVArrayTable {
 public:
  ZoArrayTable() noexcept : ZoVArrayTable(sizeof(T), zo::isRelocatable<T>) {}
  ~ZoArrayTable() override { zo::freeBlock(data_, alignof(T)); }

  [[nodiscard]] T* data() const noexcept { return static_cast<T*>(data_); }

  [[nodiscard]] ZoVArrayTable* makeNew() const override { return new (std::nothrow) ZoArrayTable; }

  [[nodiscard]] int reallocate(unsigned capacity, unsigned entries) override {
    Block block(capacity);
    if (!block.cells && capacity > 0) return ZoResult::outOfMemory;
    if constexpr (zo::movesSafely<T>) {
      zo::relocateElements(block.cells, data(), entries);
      adopt(block, capacity);
      return ZoResult::ok;
    } else {
      return rebuild(block, capacity, entries, entries,
                     [&](T* place, unsigned k) { carry(place, data() + k); });
    }
  }

  [[nodiscard]] int insert(unsigned i, unsigned n, const void* value, unsigned entries) override {
    if (!value) {
      if constexpr (std::is_default_constructible_v<T>) {
        return open(i, n, entries,
                    [](T* place, unsigned) { ::new (static_cast<void*>(place)) T(); });
      }
    } else if constexpr (zo::isCopyable<T>) {
      int status = ZoResult::ok;
      const int copying = zo::asStatus([&] {
        // The value may be an element, which is about to move.
        const T copy(*static_cast<const T*>(value));
        status = open(i, n, entries,
                      [&](T* place, unsigned) { ::new (static_cast<void*>(place)) T(copy); });
      });
      return copying != ZoResult::ok ? copying : status;
    }
    return ZoResult::refused;
  }

  // Moves a value, which may be one of the elements, into a gap in front of position i. There is
  // room. The value is left alone when that fails.
  [[nodiscard]] int insertMoved(unsigned i, T& value, unsigned entries) {
    const auto openFor = [&](T& source) {
      return open(i, 1, entries, [&](T* place, unsigned) {
        ::new (static_cast<void*>(place)) T(std::move(source));
      });
    };
    if constexpr (zo::movesSafely<T> && std::is_nothrow_move_constructible_v<T>) {
      T held(std::move(value));  // the gap moves the elements
      return openFor(held);
    } else if constexpr (zo::isCopyable<T>) {
      return insert(i, 1, &value, entries);
    } else {
      return openFor(value);
    }
  }

  // Moves the elements to a larger block, where make(place) has made one more behind them. It is
  // called while all elements are still where they were.
  template <class Make>
  [[nodiscard]] int reallocateWithOneMore(unsigned capacity, unsigned entries, Make make) {
    Block block(capacity);
    if (!block.cells) return ZoResult::outOfMemory;
    if constexpr (zo::movesSafely<T>) {
      if (const int status = zo::asStatus([&] { make(block.cells + entries); })) return status;
      zo::relocateElements(block.cells, data(), entries);
      adopt(block, capacity);
      return ZoResult::ok;
    } else {
      return rebuild(block, capacity, entries + 1, entries, [&](T* place, unsigned k) {
        if (k < entries) {
          carry(place, data() + k);
        } else {
          make(place);
        }
      });
    }
  }

  [[nodiscard]] int appendCopies(const void* from, unsigned n, unsigned entries) override {
    if constexpr (zo::isCopyable<T>) {
      const T* const values = static_cast<const T*>(from);
      return zo::asStatus([&] {
        zo::makeElements(data() + entries, n, [&](T* place, unsigned k) {
          ::new (static_cast<void*>(place)) T(values[k]);
        });
      });
    } else {
      return ZoResult::refused;
    }
  }

  int assign(void* to, const void* from) override { return zo::assignElement<T>(to, from); }
  int moveOut(void* to, void* from) override { return zo::moveElement<T>(to, from); }

  int erase(unsigned i, unsigned n, unsigned entries) override {
    T* const gap = data() + i;
    const unsigned rest = entries - i - n;
    if constexpr (!zo::movesSafely<T>) {
      if (rest > 0) {
        Block block(cells_);
        if (!block.cells) return ZoResult::outOfMemory;
        return rebuild(block, cells_, entries - n, entries,
                       [&](T* place, unsigned k) { carry(place, data() + (k < i ? k : k + n)); });
      }
    }
    zo::destroyElements(gap, n);
    if constexpr (zo::movesSafely<T>) zo::relocateElements(gap, gap + n, rest);
    return ZoResult::ok;
  }

  [[nodiscard]] int keep(void* const* kept, unsigned n, unsigned entries) override {
    if constexpr (zo::movesSafely<T>) {
      unsigned k = 0;
      for (T* element = data(); element != data() + entries; ++element) {
        if (k < n && element == kept[k]) {
          zo::relocateElements(data() + k++, element, 1);
        } else {
          zo::destroyElements(element, 1);
        }
      }
      return ZoResult::ok;
    } else {
      Block block(cells_);
      if (!block.cells) return ZoResult::outOfMemory;
      return rebuild(block, cells_, n, entries,
                     [&](T* place, unsigned k) { carry(place, static_cast<T*>(kept[k])); });
    }
  }

  [[nodiscard]] int reverse(unsigned entries) override {
    if constexpr (std::is_swappable_v<T>) {
      return zo::asStatus([&] {
        using std::swap;
        for (unsigned i = 0; i < entries / 2; ++i) swap(data()[i], data()[entries - 1 - i]);
      });
    } else {  // elements that cannot be assigned
      Block block(cells_);
      if (!block.cells && entries > 0) return ZoResult::outOfMemory;
      T* const last = data() + entries - 1;
      return arrange(block, entries, [&](unsigned k) { return last - k; });
    }
  }

  [[nodiscard]] int reorder(void* const* order, unsigned entries) override {
    Block block(cells_);
    if (!block.cells) return ZoResult::outOfMemory;
    return arrange(block, entries, [&](unsigned k) { return static_cast<T*>(order[k]); });
  }

 private:
  struct Block {
    explicit Block(unsigned n) noexcept
        : cells(n == 0 ? nullptr : static_cast<T*>(zo::allocateBlock(n * sizeof(T), alignof(T)))) {}
    ~Block() { zo::freeBlock(cells, alignof(T)); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    T* cells;
  };

  // Copies, so that an exception loses nothing; moves what cannot be copied.
  static void carry(T* to, T* from) {
    if constexpr (zo::isCopyable<T>) {
      ::new (static_cast<void*>(to)) T(*from);
    } else {
      ::new (static_cast<void*>(to)) T(std::move(*from));
    }
  }

  // The block takes the place of the present one, whose memory it holds afterwards.
  void adopt(Block& block, unsigned capacity) noexcept {
    T* const old = data();
    data_ = block.cells;
    cells_ = capacity;
    block.cells = old;
  }

  // Fills the block with all elements; at(k) tells where the k-th is now.
  template <class At>
  int arrange(Block& block, unsigned entries, At at) {
    if constexpr (zo::movesSafely<T>) {
      for (unsigned k = 0; k < entries; ++k) zo::relocateElements(block.cells + k, at(k), 1);
      adopt(block, cells_);
      return ZoResult::ok;
    } else {
      return rebuild(block, cells_, entries, entries,
                     [&](T* place, unsigned k) { carry(place, at(k)); });
    }
  }

  // Fills the block with n elements and destroys the present ones.
  template <class Make>
  int rebuild(Block& block, unsigned capacity, unsigned n, unsigned entries, Make make) {
    const int status = zo::asStatus([&] { zo::makeElements(block.cells, n, make); });
    if (status != ZoResult::ok) return status;
    zo::destroyElements(data(), entries);
    adopt(block, capacity);
    return ZoResult::ok;
  }

  // Makes n elements in front of position i.
  template <class Make>
  int open(unsigned i, unsigned n, unsigned entries, Make make) {
    T* const gap = data() + i;
    if (i == entries) return zo::asStatus([&] { zo::makeElements(gap, n, make); });
    if constexpr (zo::movesSafely<T>) {
      zo::relocateElements(gap + n, gap, entries - i);
      return zo::asStatus([&] {
        try {
          zo::makeElements(gap, n, make);
        } catch (...) {
          zo::relocateElements(gap, gap + n, entries - i);
          throw;
        }
      });
    } else {
      Block block(cells_);
      if (!block.cells) return ZoResult::outOfMemory;
      return rebuild(block, cells_, entries + n, entries, [&](T* place, unsigned k) {
        if (k < i) {
          carry(place, data() + k);
        } else if (k < i + n) {
          make(place, k - i);
        } else {
          carry(place, data() + (k - n));
        }
      });
    }
  }
};
