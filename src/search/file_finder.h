// How the standard file search finds: the places in the order that counts, and what is known of
// their names.
//
// The state is never changed but replaced as a whole. Whoever looks up takes the one that is there;
// only who adds, or reads a place, excludes others who do.
//
// Threads: any.
#pragma once

#include <zo/names/file_name.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "search/place.h"

namespace zo {

struct SearchState {
  struct At {
    std::shared_ptr<FilePlace> place;
    KnownNames known;
  };
  std::vector<At> places;       // the one that counts most in front
  At current;                   // the current directory, once it was asked
  std::vector<HANDLE> watches;  // of all that is known
};

// What was asked, and its answer, for people.
class SearchReport {
 public:
  void tell(std::wstring_view place, std::wstring_view answer) {
    text_.append(place).append(L": ").append(answer).append(1, L'\n');
  }
  [[nodiscard]] const std::wstring& text() const noexcept { return text_; }

 private:
  std::wstring text_;
};

class FileFinder {
 public:
  using Places = std::vector<std::shared_ptr<FilePlace>>;

  FileFinder() : state_(std::make_shared<const SearchState>()) {}

  // False when the module has added a place of that path.
  bool add(std::shared_ptr<FilePlace> place);
  void release(std::wstring_view module);
  void forget();
  // Whether a place is no more what it was when it was read: the next search then reads it anew.
  [[nodiscard]] bool noticeExchange(const FilePlace& place);

  // A relative name in normal form with backslashes, in the current directory and then the places
  // but for servers: where it was found, null for nowhere, and what stands below that place.
  [[nodiscard]] std::shared_ptr<FilePlace> find(const std::wstring& name, std::wstring& below,
                                                SearchReport* report);
  // The servers, in their order.
  [[nodiscard]] Places servers() const;
  // All that fit a pattern, as find() would give them: the place, and what stands below it.
  using Found = std::vector<std::pair<std::shared_ptr<FilePlace>, std::wstring>>;
  [[nodiscard]] Found findAll(const std::wstring& pattern);

 private:
  using State = std::shared_ptr<const SearchState>;

  [[nodiscard]] bool mayLook();
  [[nodiscard]] State fresh();
  template <class Change>
  State change(Change change);
  State learn(const std::shared_ptr<FilePlace>& place);
  [[nodiscard]] bool mustRead(const SearchState::At& at) const;
  template <class Ask>
  bool askAll(Ask ask);

  std::mutex changing_;
  std::atomic<State> state_;
  std::atomic<std::uint64_t> lookedAt_ = 0;
};

// What a report calls a place.
[[nodiscard]] std::wstring describe(const FilePlace& place);

}  // namespace zo
