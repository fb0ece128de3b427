#include "support/documents.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/file_bytes.h"

namespace zo::test {

std::filesystem::path sourcePath(const std::filesystem::path& name) {
  return std::filesystem::path(ZO_SOURCE_ROOT) / name;
}

std::string blockOf(const std::filesystem::path& name, const std::string& opening) {
  std::string text = fileBytes(sourcePath(name));
  std::erase(text, '\r');
  const std::string fence = "```" + opening + '\n';
  const std::size_t at = text.find(fence);
  EXPECT_NE(at, std::string::npos) << name << " has no block " << opening;
  if (at == std::string::npos) return {};
  const std::size_t begin = at + fence.size();
  return text.substr(begin, text.find("```", begin) - begin);
}

std::string hexdumpOf(const std::filesystem::path& name, const std::string& opening) {
  std::istringstream lines(blockOf(name, opening));
  std::string bytes;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_EQ(std::stoul(line.substr(0, 8), nullptr, 16), bytes.size()) << line;
    for (std::size_t at = 10; at < line.size() && line[at] != ' '; at += 3)
      bytes += static_cast<char>(std::stoul(line.substr(at, 2), nullptr, 16));
  }
  return bytes;
}

}  // namespace zo::test
