#include "messages/message_store.h"

#include <zo/files/file.h>
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/system/file_search.h>
#include <zo/system/sys_info.h>

#include <algorithm>
#include <cstdint>
#include <ranges>
#include <tuple>
#include <utility>

#include "messages/languages.h"
#include "messages/read_messages.h"
#include "platform/whole_file.h"
#include "system/service_or_null.h"
#include "text/collation.h"

namespace zo {
namespace {

constexpr std::wstring_view kExtension = L".msg";
constexpr std::size_t kMostLanguages = 64;

// The folder of the library's file, with a delimiter behind it; empty when it is not known.
std::wstring libraryFolder() {
  auto* const system = serviceOrNull<ZoSysInfo>();
  ZoString folder;
  if (!system || system->folder(ZoSysInfo::kLibrary, folder) != ZoResult::ok) return {};
  return std::wstring(folder.view()) + L'\\';
}

// False when it has too many bytes, or cannot be read; the bytes are then as they were.
bool readAll(ZoFile& file, std::string& bytes) {
  const std::int64_t size = file.size();
  if (size < 0 || static_cast<std::uint64_t>(size) > kMaxMessageBytes) return false;
  std::string read(static_cast<std::size_t>(size), '\0');
  if (file.read(read.data(), static_cast<unsigned int>(read.size())) != read.size()) return false;
  bytes = std::move(read);
  return true;
}

}  // namespace

// Finds and reads one file in all its languages.
class MessageStore::Finder {
 public:
  Finder(const Load& load, const std::vector<std::wstring>& languages)
      : load_(load), languages_(languages) {}

  std::vector<Reading> run() {
    base_ = read({});
    for (; language_ < languages_.size(); ++language_) visit(languages_[language_], 0);
    if (base_) take(std::exchange(base_, nullptr), 0);
    return std::move(readings_);
  }
  // Whether a file was found, be it a message file or not.
  [[nodiscard]] bool sawFile() const noexcept { return sawFile_; }

 private:
  using Data = std::shared_ptr<const MessageData>;

  // A language, and behind it what its file falls back to. The file without a language in its name
  // is one of the language that it says.
  void visit(std::wstring_view tag, std::size_t step) {
    const auto isTag = [&](std::wstring_view seen) { return isSameTag(seen, tag); };
    if (seen_.size() == kMostLanguages || std::ranges::any_of(seen_, isTag)) return;
    seen_.emplace_back(tag);
    if (Data data = read(tag)) take(std::move(data), step);
    if (base_ && isSameTag(base_->language, tag)) take(std::exchange(base_, nullptr), step);
  }
  void take(Data data, std::size_t step) {
    const std::wstring fallback = data->fallback;
    readings_.push_back({language_, step, std::move(data)});
    if (!fallback.empty()) visit(fallback, step + 1);
  }

  Data read(std::wstring_view tag) {
    std::wstring name = load_.name;
    if (!tag.empty()) (name += L'.') += tag;
    name += kExtension;
    std::string bytes;
    if (!readBytes(name, bytes)) return nullptr;
    sawFile_ = true;
    std::vector<ZoMessageFault> faults;  // a checker's business
    return readMessages(bytes, faults, tag);
  }
  bool readBytes(const std::wstring& name, std::string& bytes) const {
    const ZoFileName file(load_.folder + name);
    ZoFile opened;
    constexpr int kAll = ZoFile::kShareRead | ZoFile::kShareWrite | ZoFile::kShareDelete;
    auto* const search = serviceOrNull<ZoFileSearch>();
    if (search) static_cast<void>(search->open(file, opened, ZoFile::kRead, kAll));
    if (opened.isOpen() && readAll(opened, bytes)) return true;
    if (readWholeFile(file.fullName(), kMaxMessageBytes, bytes)) return true;
    const std::wstring library = load_.folder.empty() ? libraryFolder() : std::wstring();
    if (library.empty()) return false;
    return readWholeFile((library + L"messages\\" + name).c_str(), kMaxMessageBytes, bytes) ||
           readWholeFile((library + L"..\\share\\zo_com\\messages\\" + name).c_str(),
                         kMaxMessageBytes, bytes);
  }

  const Load& load_;
  const std::vector<std::wstring>& languages_;
  std::size_t language_ = 0;
  Data base_;
  bool sawFile_ = false;
  std::vector<std::wstring> seen_;
  std::vector<Reading> readings_;
};

MessageStore::MessageStore() : current_(std::make_shared<const Catalogues>()) {}

int MessageStore::load(std::wstring_view name, std::wstring_view module) {
  Load load;
  load.folder = name.substr(0, name.find_last_of(L"\\/:|") + 1);  // also LIBRARY|
  name.remove_prefix(load.folder.size());
  if (name.size() >= kExtension.size() &&
      equalIgnoreCase(name.substr(name.size() - kExtension.size()), kExtension))
    name.remove_suffix(kExtension.size());
  if (name.empty()) return ZoResult::refused;
  load.name = name;
  load.module = module;
  Finder finder(load, languages());
  load.readings = finder.run();
  if (load.readings.empty()) return finder.sawFile() ? ZoResult::invalid : ZoResult::refused;

  Loads loads = loads_;
  std::erase_if(loads, [&](const Load& other) {
    return equalIgnoreCase(other.name, load.name) && equalIgnoreCase(other.module, load.module) &&
           equalIgnoreCase(other.folder, load.folder);
  });
  loads.push_back(std::move(load));
  publish(std::move(loads));
  return ZoResult::ok;
}

const std::vector<std::wstring>& MessageStore::languages() {
  if (languages_.empty()) languages_ = withParents(wanted_.empty() ? userLanguages() : wanted_);
  return languages_;
}

int MessageStore::setLanguages(std::vector<std::wstring> wanted) {
  static_cast<void>(reload(wanted));
  wanted_ = std::move(wanted);
  return ZoResult::ok;
}

int MessageStore::reload() { return reload(wanted_); }

int MessageStore::reload(const std::vector<std::wstring>& wanted) {
  std::vector<std::wstring> languages = withParents(wanted.empty() ? userLanguages() : wanted);
  int result = ZoResult::ok;
  Loads loads = loads_;
  for (Load& load : loads) {
    std::vector<Reading> readings = Finder(load, languages).run();
    if (readings.empty()) {
      result = ZoResult::refused;
    } else {
      load.readings = std::move(readings);
    }
  }
  publish(std::move(loads));
  languages_ = std::move(languages);
  return result;
}

void MessageStore::release(std::wstring_view module) {
  Loads loads = loads_;
  const auto gone =
      std::erase_if(loads, [&](const Load& load) { return equalIgnoreCase(load.module, module); });
  if (gone > 0) publish(std::move(loads));
}

// Of the loads of one name, the one loaded last in front.
Catalogue MessageStore::catalogueOf(const std::vector<const Load*>& loads) {
  struct Place {
    std::size_t language, step, order;
    const std::shared_ptr<const MessageData>* data;
  };
  std::vector<Place> places;
  for (const Load* const load : loads)
    for (const Reading& reading : load->readings)
      places.push_back({reading.language, reading.step, places.size(), &reading.data});
  std::ranges::sort(places, {}, [](const Place& place) {
    return std::tuple(place.language, place.step, place.order);
  });
  Catalogue catalogue{loads[0]->name, {}};
  for (const Place& place : places) catalogue.chain.push_back(*place.data);
  return catalogue;
}

// Puts the next state in the place of the current one; whoever still looks up in that keeps it.
void MessageStore::publish(Loads loads) {
  std::vector<std::vector<const Load*>> groups;  // of one name each
  for (const Load& load : std::views::reverse(loads)) {
    const auto group = std::ranges::find_if(
        groups, [&](const auto& other) { return equalIgnoreCase(other[0]->name, load.name); });
    if (group == groups.end()) {
      groups.push_back({&load});
    } else {
      group->push_back(&load);
    }
  }
  std::vector<Catalogue> catalogues;
  catalogues.reserve(groups.size());
  for (const auto& group : groups) catalogues.push_back(catalogueOf(group));
  auto next = std::make_shared<const Catalogues>(std::move(catalogues));
  loads_ = std::move(loads);
  current_.store(std::move(next));
}

}  // namespace zo
