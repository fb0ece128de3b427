// Variants as JSON (docs/formats/json.md).
#pragma once

#include <zo/variant/variant.h>

#include <string_view>

#include "text/text_buffer.h"
#include "variant/ordered_entries.h"
#include "xml/value_form.h"

namespace zo {

class JsonWriter {
 public:
  explicit JsonWriter(bool isIndented) noexcept : isIndented_(isIndented) {}

  // False where containers lie too deep in one another.
  [[nodiscard]] bool write(const ZoVariant& value) { return write(value, 0, ZoVariant::kMaxDepth); }
  void endLine() { out_ << L'\n'; }
  [[nodiscard]] std::wstring_view text() const noexcept { return out_.view(); }

 private:
  using Entries = std::vector<KeyedValue>;

  bool write(const ZoVariant& value, unsigned int level, unsigned int depthLeft);
  bool writeSequence(const ZoVariant::Sequence& sequence, unsigned int level,
                     unsigned int depthLeft);
  bool writeDict(const Entries& entries, bool isObject, unsigned int level, unsigned int depthLeft);
  void beginTyped(const ZoVariant& value);
  void endTyped() { out_ << L"]}"; }
  void writeScalar(const ZoVariant& value);
  void writeReal(double value);
  template <class Geometry>
  void writeTriple(const Geometry& g);
  void writeInteger(std::int64_t value);
  void writeLeaf(const ZoVariant& value);
  void writeUnits(std::wstring_view text);
  void writeQuoted(std::wstring_view text);
  void startLine(unsigned int level);
  // A comma or a colon, and what follows it on the same line.
  void separate(wchar_t sign);

  bool isIndented_;
  TextBuffer out_;
  TypeTexts types_;
};

}  // namespace zo
