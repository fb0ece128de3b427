// A small backtracking matcher over {a, b}: leftmost, the first alternative first. It is slow and
// plain, for comparing.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zo::test {

struct Node {
  // 'a', 'b', '.'; '|', '&' of two; '*', '+', '?' of one; 'L', 'P', 'Q' lazy; '(' a group
  char kind;
  std::shared_ptr<const Node> left, right;
};
using Tree = std::shared_ptr<const Node>;
using Spans = std::vector<std::pair<size_t, size_t>>;
constexpr size_t kUnset = static_cast<size_t>(-1);

class Backtracker {
 public:
  Backtracker(std::wstring_view text, size_t groups)
      : text_(text), spans_(groups, {kUnset, kUnset}) {}

  // The first match from a place on; empty: none. Element 0 is the match, then come the groups.
  Spans find(const Tree& tree, size_t from) {
    for (size_t at = from; at <= text_.size(); ++at) {
      size_t end = kUnset;
      std::ranges::fill(spans_, std::pair(kUnset, kUnset));
      const auto keepEnd = [&](size_t to) { return end = to, true; };
      if (!match(tree, 0, at, keepEnd)) continue;
      Spans found{{at, end}};
      found.insert(found.end(), spans_.begin(), spans_.end());
      return found;
    }
    return {};
  }

 private:
  // Any callable, without memory of its own: there are millions of them.
  class Then {
   public:
    template <class F>
    Then(const F& f)
        : of_(&f),
          call_([](const void* of, size_t at) { return (*static_cast<const F*>(of))(at); }) {}
    bool operator()(size_t at) const { return call_(of_, at); }

   private:
    const void* of_;
    bool (*call_)(const void*, size_t);
  };
  static size_t groupsIn(const Tree& tree) {
    return tree ? (tree->kind == '(') + groupsIn(tree->left) + groupsIn(tree->right) : 0;
  }

  bool match(const Tree& tree, size_t group, size_t at, const Then& then) {
    switch (tree->kind) {
      case '|':
        return match(tree->left, group, at, then) ||
               match(tree->right, group + groupsIn(tree->left), at, then);
      case '&':
        return match(tree->left, group, at, [&](size_t to) {
          return match(tree->right, group + groupsIn(tree->left), to, then);
        });
      case '(': {
        const auto before = spans_[group];
        if (match(tree->left, group + 1, at, [&](size_t to) {
              const auto inner = spans_[group];
              spans_[group] = {at, to};
              return then(to) || (spans_[group] = inner, false);
            })) {
          return true;
        }
        spans_[group] = before;
        return false;
      }
      case '*':
      case 'L':
        return repeat(tree, group, at, then);
      case '+':
      case 'P':
        return match(tree->left, group, at, [&](size_t to) {
          return to == at ? then(to) : repeat(tree, group, to, then);
        });
      case '?':
        return match(tree->left, group, at, then) || then(at);
      case 'Q':
        return then(at) || match(tree->left, group, at, then);
      default:
        return at < text_.size() && (tree->kind == '.' || text_[at] == tree->kind) && then(at + 1);
    }
  }
  // A round that takes nothing is the last one.
  bool repeat(const Tree& tree, size_t group, size_t at, const Then& then) {
    const auto more = [&] {
      return match(tree->left, group, at,
                   [&](size_t to) { return to == at ? then(to) : repeat(tree, group, to, then); });
    };
    const bool isLazy = tree->kind == 'L' || tree->kind == 'P';
    return isLazy ? then(at) || more() : more() || then(at);
  }

  std::wstring_view text_;
  Spans spans_;
};

// The pattern of a tree; everything that is not one character stands in a group.
inline std::wstring patternOf(const Tree& tree) {
  const auto wrapped = [](const Tree& t) {
    return t->left && t->kind != '(' ? L"(?:" + patternOf(t) + L")" : patternOf(t);
  };
  switch (tree->kind) {
    case '|':
      return wrapped(tree->left) + L"|" + wrapped(tree->right);
    case '&':
      return wrapped(tree->left) + wrapped(tree->right);
    case '(':
      return L"(" + patternOf(tree->left) + L")";
    case '*':
    case '+':
    case '?':
      return wrapped(tree->left) + static_cast<wchar_t>(tree->kind);
    case 'L':
      return wrapped(tree->left) + L"*?";
    case 'P':
      return wrapped(tree->left) + L"+?";
    case 'Q':
      return wrapped(tree->left) + L"??";
    default:
      return std::wstring(1, static_cast<wchar_t>(tree->kind));
  }
}

inline size_t groupsOf(const Tree& tree) {
  return tree ? (tree->kind == '(') + groupsOf(tree->left) + groupsOf(tree->right) : 0;
}

// All trees of exactly so many operators.
inline const std::vector<Tree>& treesOf(size_t operators) {
  static std::vector<std::vector<Tree>> all;
  if (all.empty()) {
    for (const char leaf : {'a', 'b', '.'}) {
      all.resize(1);
      all[0].push_back(std::make_shared<Node>(Node{leaf, nullptr, nullptr}));
    }
  }
  while (all.size() <= operators) {
    std::vector<Tree> trees;
    for (const char kind : {'*', '+', '?', 'L', 'P', 'Q', '('}) {
      for (const Tree& inner : all.back())
        trees.push_back(std::make_shared<Node>(Node{kind, inner, nullptr}));
    }
    for (size_t left = 0; left < all.size(); ++left) {
      for (const char kind : {'|', '&'}) {
        for (const Tree& one : all[left])
          for (const Tree& two : all[all.size() - 1 - left])
            trees.push_back(std::make_shared<Node>(Node{kind, one, two}));
      }
    }
    all.push_back(std::move(trees));
  }
  return all[operators];
}

}  // namespace zo::test
