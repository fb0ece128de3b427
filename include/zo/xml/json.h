// Variants as JSON and back, and JSON of any other origin as variants.
//
//   ZoVariant settings;
//   ZoJsonError error;
//   if (ZoJson::load(name, settings, &error) != 0) return report(error.message());
//
// Nothing is lost: kinds, codes, flags and values come back exactly (docs/formats/json.md). What
// JSON has a form for is written in it; all else as {"$zo": [type, value]}. A reference is written
// as its value, a pointer as its address.
//
// JSON of others: an object becomes a dictionary, an array a sequence, null an empty variant, true
// and false integers of code Bool, a number an integer, a 64-bit integer or, with a fraction or an
// exponent, a real. Nothing in it is trusted: containers lie at most ZoVariant::kMaxDepth deep, and
// memory grows with what was read.
//
// Errors:  0; ZoResult::refused for a file that could not be read or written (the file-system
//          service's errorTxt() says why) and ZoResult::invalid for a URL; ZoResult::notWellFormed
//          for what is no JSON, with line and column: numbers that no kind can hold, halves of
//          surrogate pairs, and keys that are the same but for their case, too;
//          ZoResult::noVariant for a "$zo" that this library does not write;
//          ZoResult::beyondLimits for what lies too deep or is too long; ZoResult::wrongEncoding
//          for bytes that are neither UTF-8 nor UTF-16. The value, or the file, is then as it was.
//          Nothing throws but std::bad_alloc.
// Threads: as the variants.
// Cost:    linear, but for the sorting of keys.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/text/string.h>
#include <zo/xml/xml_error.h>
#include <zo/xml/xml_results.h>

#include <cstdint>
#include <string_view>

class ZoVariant;

class ZO_COM_API ZoJson {
 public:
  ZoJson() = delete;

  enum Format : int {
    kCompact,   // no white space
    kIndented,  // an element a line, two blanks a level
  };
  static constexpr std::uint64_t kMaxBytes = std::uint64_t{1} << 30;  // of a file

  [[nodiscard]] static int parse(std::wstring_view text, ZoVariant& value,
                                 ZoJsonError* error = nullptr);
  // Bytes in UTF-8 or UTF-16, with a mark or without.
  [[nodiscard]] static int parse(std::string_view bytes, ZoVariant& value,
                                 ZoJsonError* error = nullptr);
  [[nodiscard]] static int load(const ZoFileName& file, ZoVariant& value,
                                ZoJsonError* error = nullptr);

  // Keys come in the order of their code units. ZoResult::beyondLimits where containers lie deeper
  // than ZoVariant::kMaxDepth, or the text is too long for a string.
  [[nodiscard]] static int format(const ZoVariant& value, ZoString& text, Format form = kIndented);
  // In one step (zo/files/file_save.h), in UTF-8 without a mark.
  [[nodiscard]] static int save(const ZoFileName& file, const ZoVariant& value,
                                Format form = kIndented);
};
