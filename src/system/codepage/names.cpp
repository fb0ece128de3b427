#include "system/codepage/names.h"

#include <zo/results.h>
#include <zo/text/number_text.h>

#include <utility>

#include "text/code_units.h"

namespace zo {
namespace {

// The first name of a code page is its own, the others are aliases.
using Name = std::pair<unsigned int, const wchar_t*>;
constexpr Name kNames[] = {
    {65001, L"utf-8"},       {65000, L"utf-7"},        {1200, L"utf-16le"},
    {1200, L"utf-16"},       {1200, L"unicode"},       {1201, L"utf-16be"},
    {20127, L"us-ascii"},    {20127, L"ascii"},        {437, L"ibm437"},
    {737, L"ibm737"},        {775, L"ibm775"},         {850, L"ibm850"},
    {852, L"ibm852"},        {855, L"ibm855"},         {857, L"ibm857"},
    {858, L"ibm00858"},      {860, L"ibm860"},         {861, L"ibm861"},
    {862, L"ibm862"},        {863, L"ibm863"},         {864, L"ibm864"},
    {865, L"ibm865"},        {866, L"ibm866"},         {869, L"ibm869"},
    {874, L"windows-874"},   {874, L"tis-620"},        {932, L"shift_jis"},
    {932, L"sjis"},          {932, L"windows-31j"},    {936, L"gbk"},
    {936, L"gb2312"},        {949, L"ks_c_5601-1987"}, {949, L"ksc5601"},
    {950, L"big5"},          {1250, L"windows-1250"},  {1251, L"windows-1251"},
    {1252, L"windows-1252"}, {1253, L"windows-1253"},  {1254, L"windows-1254"},
    {1255, L"windows-1255"}, {1256, L"windows-1256"},  {1257, L"windows-1257"},
    {1258, L"windows-1258"}, {1361, L"johab"},         {10000, L"macintosh"},
    {10000, L"mac-roman"},   {20866, L"koi8-r"},       {21866, L"koi8-u"},
    {20932, L"euc-jp"},      {51949, L"euc-kr"},       {28591, L"iso-8859-1"},
    {28591, L"latin1"},      {28592, L"iso-8859-2"},   {28592, L"latin2"},
    {28593, L"iso-8859-3"},  {28594, L"iso-8859-4"},   {28595, L"iso-8859-5"},
    {28596, L"iso-8859-6"},  {28597, L"iso-8859-7"},   {28598, L"iso-8859-8"},
    {28599, L"iso-8859-9"},  {28599, L"latin5"},       {28603, L"iso-8859-13"},
    {28605, L"iso-8859-15"}, {28605, L"latin9"},       {50220, L"iso-2022-jp"},
    {54936, L"gb18030"},
};
// What may stand before a bare number.
constexpr std::wstring_view kPrefixes[] = {L"windows", L"cp", L"ansi", L"dos", L"ibm", L"oem", L""};

// In lower case, without what does not count.
std::wstring plain(std::wstring_view name) {
  std::wstring result;
  for (const wchar_t c : name) {
    if (c == L'-' || c == L'_' || c == L' ') continue;
    result += lowerAscii(c);
  }
  return result;
}

}  // namespace

std::wstring codepageName(unsigned int codepage) {
  for (const auto& [known, name] : kNames)
    if (known == codepage) return name;
  return L"cp" + std::to_wstring(codepage);
}

unsigned int codepageOfName(std::wstring_view name) {
  const std::wstring asked = plain(name);
  for (const auto& [codepage, known] : kNames)
    if (plain(known) == asked) return codepage;
  for (const std::wstring_view prefix : kPrefixes) {
    const std::wstring_view number =
        std::wstring_view(asked).substr(asked.starts_with(prefix) ? prefix.size() : asked.size());
    std::int64_t value = 0;
    if (number.find_first_not_of(L"0123456789") == std::wstring_view::npos &&
        ZoStrToInt(number, value) == ZoResult::ok && value <= 65535)
      return static_cast<unsigned int>(value);
  }
  return 0;
}

}  // namespace zo
