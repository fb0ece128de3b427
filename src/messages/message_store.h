// What the standard message service keeps: which files were loaded for whom, the languages, and the
// state in which texts are looked up.
//
// Threads: current() any; all else under the service's guard.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "messages/catalogues.h"

namespace zo {

class MessageStore {
 public:
  MessageStore();

  [[nodiscard]] std::shared_ptr<const Catalogues> current() const { return current_.load(); }

  // As the operations of ZoMessage. Everything or nothing happens.
  [[nodiscard]] int load(std::wstring_view name, std::wstring_view module);
  [[nodiscard]] int setLanguages(std::vector<std::wstring> wanted);
  [[nodiscard]] const std::vector<std::wstring>& languages();
  [[nodiscard]] int reload();
  void release(std::wstring_view module);

 private:
  // A file, and where it stands among all of its name: under which of the languages in force, or
  // behind them, and how many files fell back to it on the way.
  struct Reading {
    std::size_t language, step;
    std::shared_ptr<const MessageData> data;
  };
  struct Load {
    std::wstring folder, name, module;
    std::vector<Reading> readings;
  };
  using Loads = std::vector<Load>;
  class Finder;

  [[nodiscard]] int reload(const std::vector<std::wstring>& wanted);
  [[nodiscard]] static Catalogue catalogueOf(const std::vector<const Load*>& loads);
  void publish(Loads loads);

  Loads loads_;
  std::vector<std::wstring> wanted_;     // empty: the user's
  std::vector<std::wstring> languages_;  // in force; empty: not asked for yet
  std::atomic<std::shared_ptr<const Catalogues>> current_;
};

}  // namespace zo
