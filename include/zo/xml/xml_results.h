// Result codes of XML and JSON (ZoResultFamily::xml).
#pragma once

#include <zo/config.h>

namespace ZoResult {
inline constexpr int notWellFormed = 10;    // the text is no XML or no JSON: the error says where
inline constexpr int beyondLimits = 11;     // larger, or nested deeper, than the limits allow
inline constexpr int hasDocumentType = 12;  // there is a document type, which was not allowed
inline constexpr int wrongEncoding = 13;    // unknown, or the bytes are not in it
inline constexpr int unfitForXml = 14;      // a name or a text that XML cannot hold
inline constexpr int badXmlPath = 15;       // not a path of this kind, or with an unknown prefix
inline constexpr int noVariant = 16;        // well-formed, but not what a variant is written as
inline constexpr int noXmlParser = 17;      // the platform has no parser for XML
}  // namespace ZoResult
