// Files of this project as tests compare them with the code.
#pragma once

#include <filesystem>
#include <string>

namespace zo::test {

/// Where a file of the project lies, named from its root: "docs/results.md".
std::filesystem::path sourcePath(const std::filesystem::path& name);

/// A fenced block of a text file: the lines between ```opening and the next ```. Empty, and the
/// test fails, if there is none.
std::string blockOf(const std::filesystem::path& name, const std::string& opening);

/// The bytes that such a block shows: in each line an offset of eight digits, two spaces, bytes
/// with single spaces, two spaces, a remark.
std::string hexdumpOf(const std::filesystem::path& name, const std::string& opening);

}  // namespace zo::test
