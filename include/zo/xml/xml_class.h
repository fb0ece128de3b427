// An XML document, over the platform's DOM (its version 6.0, else 3.0).
//
//   ZoXMLClass document;
//   if (document.load(name) != 0) return report(document.error().message());
//   ZoString unit;
//   (void)document.root().get(L"part/length/@unit", unit);
//   (void)document.root().put(L"part/length", L"12.5");
//   if (document.save(name) != 0) ...
//
// The library reads and decodes a file itself, in any encoding that the code page service knows,
// and gives the platform the text: much faster than the DOM's own reading. Nothing in a file is
// trusted: its size, its depth and the attributes of an element are bounded, a document type (and
// with it every entity that it might declare) is refused unless allowed, and external entities are
// never fetched. Prefixes must be declared by elements; what a document type alone declares is not.
// Nothing is written that could not be read back.
//
// White space between elements that have no text beside them is layout: it is dropped in reading,
// unless told otherwise, and made anew in writing. All other white space is kept, also that of an
// element with nothing else in it, and all in an element with xml:space="preserve".
//
// Errors:  0; ZoResult::refused for a file that could not be read or written (the file-system
//          service's errorTxt() says why) or a document that is empty; the codes of
//          zo/xml/xml_results.h; ZoResult::invalid for saving to a URL. error() tells more of the
//          last failure. The document, or the file, is then as it was. Nothing throws but
//          std::bad_alloc.
// Threads: one at a time per document with its nodes. Whether COM is initialised on that thread,
//          and how, does not matter; what the thread does with COM later does not either.
// Cost:    10 MB take half a second and 160 MB of memory, nearly all of it the platform's. What is
//          removed from a document keeps its memory, some 400 bytes each, as long as that lives.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/text/string.h>
#include <zo/xml/xml_error.h>
#include <zo/xml/xml_node.h>
#include <zo/xml/xml_parameters.h>
#include <zo/xml/xml_results.h>

#include <cstdint>
#include <memory>
#include <string_view>

class ZoVariant;
namespace zo {
struct XmlDocument;
struct XmlState;
}  // namespace zo

class ZO_COM_API ZoXMLClass {
 public:
  enum Format : int {
    kAsIs,      // no white space but what is in the document
    kIndented,  // an element a line, two blanks a level; texts beside elements stay as they are
  };
  static constexpr std::uint64_t kMaxBytes = std::uint64_t{256} << 20;
  static constexpr unsigned int kMaxDepth =
      257;  // elements in one another: what the platform takes
  // Of an element, declarations of namespaces not counted.
  static constexpr unsigned int kMaxAttributes = 1000;

  ZoXMLClass();  // empty
  ZoXMLClass(const ZoXMLClass&) = delete;
  ZoXMLClass& operator=(const ZoXMLClass&) = delete;
  ~ZoXMLClass();

  // ---- Reading: replaces the document; nodes of the old one keep it ----
  [[nodiscard]] int load(const ZoFileName& file);
  // A declaration in the text may name any encoding: it counts for nothing here.
  [[nodiscard]] int parse(zo::XmlTextParameter text);
  // Whether layout stays in the document, from now on; at first it does not. For files that people
  // look after: kAsIs then writes them as they were.
  void keepLayout(bool kept) noexcept;
  // What reading allows, from now on. At first: no document type, kMaxBytes, kMaxDepth; larger
  // depths count as kMaxDepth, and what is negative as 0.
  void allowDocumentType(bool allowed) noexcept;
  template <zo::WholeNumber Bytes, zo::WholeNumber Depth>
  void setLimits(Bytes bytes, Depth depth) noexcept {
    limit(zo::notNegative(bytes), zo::notNegative(depth));
  }
  template <class Bytes, class Depth>
    requires(!zo::WholeNumber<Bytes> || !zo::WholeNumber<Depth>)
  void setLimits(Bytes, Depth) = delete;  // whole numbers
  template <zo::NoTruthValue T>
  void allowDocumentType(const T&) = delete;  // true or false
  template <zo::NoTruthValue T>
  void keepLayout(const T&) = delete;  // true or false

  // ---- Writing ----
  // In one step (zo/files/file_save.h), in UTF-8 with a declaration; in UTF-16 with a mark what was
  // read in that.
  [[nodiscard]] int save(const ZoFileName& file, Format format = kIndented) const;
  // Without a declaration of the encoding.
  [[nodiscard]] int write(ZoString& text, Format format = kIndented) const;

  // ---- The document ----
  // A new one, with a root of that name.
  [[nodiscard]] int create(zo::XmlTextParameter rootName);
  [[nodiscard]] bool isEmpty() const noexcept;
  void clear() noexcept;
  [[nodiscard]] ZoXMLNode root() const;  // empty when the document is
  // A prefix for names in paths and searches, whatever prefix the document uses; also for what is
  // read later. An empty namespace takes the prefix back. Refused are the prefixes "xml" and
  // "xmlns", what is no prefix, and namespaces with blanks, control characters or any of <>&"'.
  [[nodiscard]] int setNamespace(zo::XmlTextParameter prefix, zo::XmlTextParameter uri);

  // ---- From the root on: as the functions of ZoXMLNode ----
  [[nodiscard]] int get(zo::XmlTextParameter path, ZoString& text) const;
  [[nodiscard]] int put(zo::XmlTextParameter path, zo::XmlTextParameter text);
  // XPath 1.0, from the document on: "/catalog/part[@id='17']", "//p:length".
  [[nodiscard]] int select(zo::XmlTextParameter xpath, ZoSequence<ZoXMLNode>& nodes) const;
  [[nodiscard]] ZoXMLNode selectFirst(zo::XmlTextParameter xpath) const;

  // ---- Variants: docs/formats/xml.md ----
  // Codes, flags and values are kept exactly; a reference is written as its value, and a pointer as
  // its address. Refused with ZoResult::beyondLimits is what ZoVariant::kMaxDepth forbids, and with
  // ZoResult::noVariant what is written otherwise; its place is that in what write() gives.
  [[nodiscard]] static int fromVariant(const ZoVariant& value, ZoXMLClass& document);
  [[nodiscard]] int toVariant(ZoVariant& value) const;

  // Of the last operation of this object that failed; valid until the next one.
  [[nodiscard]] const ZoXMLError& error() const& noexcept;
  [[nodiscard]] const ZoXMLError& error() const&& = delete;  // it would be gone with the document

 private:
  void limit(std::uint64_t bytes, std::uint64_t depth) noexcept;

  std::unique_ptr<zo::XmlState> state_;
};
