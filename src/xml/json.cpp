#include <zo/files/text_file.h>
#include <zo/variant/variant.h>
#include <zo/xml/json.h>

#include <windows.h>

#include <algorithm>

#include "files/read_all.h"
#include "variant/form_builder.h"
#include "xml/decode.h"
#include "xml/json_parser.h"
#include "xml/json_writer.h"
#include "xml/xml_text.h"

namespace {

using View = std::wstring_view;

int fail(ZoJsonError* error, int code, View reason) {
  if (error) *error = {code, 0, 0, ZoString(reason), {}};
  return code;
}
int fail(ZoJsonError* error, int code, View reason, View text, std::size_t at) {
  if (!error) return code;
  const zo::TextPlace place = zo::placeOf(text, at);
  *error = {code, place.line, place.column, ZoString(reason), ZoString(zo::lineAround(text, at))};
  return code;
}

// Of a text without a mark.
int parsePlain(View text, ZoVariant& value, ZoJsonError* error) {
  zo::FormBuilder builder;
  zo::JsonParser<zo::FormBuilder> parser(text, builder, ZoVariant::kMaxDepth);
  ZoVariant read;
  if (!parser.parse(read)) {
    const zo::JsonFault& fault = parser.fault();
    return fail(error, fault.code, fault.reason, text, fault.at);
  }
  value.swap(read);
  if (error) *error = {};
  return ZoResult::ok;
}

int parseDecoded(const zo::DecodedText& decoded, ZoVariant& value, ZoJsonError* error) {
  const View text = decoded.text.view();
  if (decoded.hasFailed)
    return fail(error, ZoResult::wrongEncoding, decoded.reason, text, text.size());
  return parsePlain(text, value, error);
}

}  // namespace

int ZoJson::parse(View text, ZoVariant& value, ZoJsonError* error) {
  return parsePlain(text.substr(text.starts_with(L'\xFEFF') ? 1 : 0), value, error);
}

int ZoJson::parse(std::string_view bytes, ZoVariant& value, ZoJsonError* error) {
  zo::DecodedText decoded;
  zo::decodeJson(bytes, decoded);
  return parseDecoded(decoded, value, error);
}

int ZoJson::load(const ZoFileName& file, ZoVariant& value, ZoJsonError* error) {
  zo::DecodedText decoded;
  {
    zo::AllBytes all;
    if (const int code = zo::readAll(file, kMaxBytes, all)) {
      return GetLastError() == ERROR_FILE_TOO_LARGE
                 ? fail(error, ZoResult::beyondLimits, L"The file is larger than allowed.")
                 : fail(error, code, L"The file could not be read.");
    }
    zo::decodeJson(all.view(), decoded);
  }
  return parseDecoded(decoded, value, error);
}

int ZoJson::format(const ZoVariant& value, ZoString& text, Format form) {
  zo::JsonWriter writer(form == kIndented);
  if (!writer.write(value) || writer.text().size() > ZoString::maxLength())
    return ZoResult::beyondLimits;
  text = ZoString(writer.text());
  return ZoResult::ok;
}

int ZoJson::save(const ZoFileName& file, const ZoVariant& value, Format form) {
  zo::JsonWriter writer(form == kIndented);
  if (!writer.write(value)) return ZoResult::beyondLimits;
  writer.endLine();
  return zoSaveText(file, writer.text(), ZoTextForm::utf8);
}
