// What libraries promise: every operation against a model, result codes, names, foreign files.
#include "library/library_fixture.h"

using namespace zo::test;

namespace {

// What a library should hold: members in the order of the file.
struct Model {
  struct Member {
    std::wstring name;
    std::string bytes;
    bool isDeleted = false;
  };
  std::vector<Member> members;

  Member* live(const std::wstring& name) {
    for (Member& member : members) {
      if (!member.isDeleted && _wcsicmp(member.name.c_str(), name.c_str()) == 0) return &member;
    }
    return nullptr;
  }
  Member* lastDeleted(const std::wstring& name) {
    for (auto at = members.rbegin(); at != members.rend(); ++at) {
      if (at->isDeleted && _wcsicmp(at->name.c_str(), name.c_str()) == 0) return &*at;
    }
    return nullptr;
  }

  int add(const std::wstring& name, const std::string& bytes, bool replace) {
    if (Member* const old = live(name)) {
      if (!replace) return 1001;
      old->isDeleted = true;
    }
    members.push_back({name, bytes});
    return 0;
  }
  int rename(const std::wstring& from, const std::wstring& to) {
    Member* const member = live(from);
    if (!member) return 1;
    if (live(to) && live(to) != member) return 1001;
    if (from.size() == to.size()) {
      member->name = to;
    } else {
      const std::string bytes = member->bytes;
      member->isDeleted = true;
      members.push_back({to, bytes});
    }
    return 0;
  }
  int remove(const std::wstring& name, bool physically) {
    Member* const member = live(name);
    if (!member) return 1;
    if (physically) {
      members.erase(members.begin() + (member - members.data()));
    } else {
      member->isDeleted = true;
    }
    return 0;
  }
  int recover(const std::wstring& name) {
    if (live(name)) return 1001;
    Member* const member = lastDeleted(name);
    if (member) member->isDeleted = false;
    return member ? 0 : 1;
  }
  void reorganize() {
    std::erase_if(members, [](const Member& member) { return member.isDeleted; });
  }
};

}  // namespace

TEST_F(LibraryTest, HoldsWhatAModelHoldsThroughAnyOperations) {
  for (const unsigned seed : {1U, 2U, 3U}) {
    std::mt19937 random(seed);
    const auto below = [&random](unsigned n) { return random() % n; };
    const auto anyName = [&] {
      static constexpr const wchar_t* kNames[] = {L"a",         L"B",         L"bb",
                                                  L"dir/c.dwg", L"dir/C.dwh", L"\x00E4\x00F6.txt"};
      return std::wstring(kNames[below(6)]);
    };
    DeleteFileW(path_.fullName());
    Model model;
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    std::uint32_t added = 0;
    for (int step = 0; step < 120; ++step) {
      const std::wstring name = anyName(), other = anyName();
      int expected = 0, code = 0;
      switch (below(8)) {
        case 0:
        case 1:
        case 2: {
          std::string bytes(below(3) ? below(700) : below(70000), static_cast<char>(random()));
          for (std::size_t i = 0; i < bytes.size(); i += 1 + below(40))
            bytes[i] = static_cast<char>(i);
          const bool replace = below(2) == 0;
          expected = model.add(name, bytes, replace);
          code = add(library, name, bytes, replace, static_cast<ZoLibrary::compMode>(below(3)),
                     1024 << below(3));
          added += code == 0;
          break;
        }
        case 3:
          expected = model.rename(name, other);
          code = library.renameFile(name.c_str(), other.c_str());
          break;
        case 4:
        case 5: {
          const bool physically = below(3) == 0;
          expected = model.remove(name, physically);
          code = library.deleteFile(name.c_str(), physically);
          break;
        }
        case 6:
          expected = model.recover(name);
          code = library.recoverFile(name.c_str());
          break;
        default:
          if (below(3) == 0) {
            model.reorganize();
            code = library.reorganize();
          } else {
            ASSERT_EQ(library.close(), 0);
            code = openForWriting(library);
          }
      }
      ASSERT_EQ(code, expected) << "seed " << seed << ", step " << step;
      // A reader beside the writer sees the same.
      ZoLibrary reader;
      ASSERT_EQ(reader.open(path_), 0);
      for (ZoLibrary* const seen : {&library, &reader}) {
        std::vector<std::wstring> expectedNames;
        for (const Model::Member& member : model.members) {
          expectedNames.push_back((member.isDeleted ? L"-" : L"") + member.name);
        }
        ASSERT_EQ(names(*seen, true), expectedNames) << "seed " << seed << ", step " << step;
        EXPECT_EQ(seen->counter(), added);
        EXPECT_EQ(seen->trailingBytes(), 0u);
      }
      if (const Model::Member* const member = model.live(name)) {
        ASSERT_EQ(content(reader, name), member->bytes) << "seed " << seed << ", step " << step;
      }
    }
    library.forEachEntry(
        [&](const ZoLibEntry& entry) {
          EXPECT_TRUE(entry.isProtected);
          return true;
        },
        true);
    for (const Model::Member& member : model.members) {
      if (!member.isDeleted) {
        EXPECT_EQ(content(library, member.name), member.bytes);
      }
    }
  }
}
