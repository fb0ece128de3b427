// Gives the constants of exported classes their place in the DLL, where an unoptimised client that
// binds a reference to one looks for it: GCC exports such a constant only where its address is
// taken. The package's consumer tests find the one that is missing here.
#include <zo/dialogs/task_dialog.h>
#include <zo/files/find_file.h>
#include <zo/graph/dotty_elements.h>
#include <zo/headless/headless_cad.h>
#include <zo/library/library.h>
#include <zo/messages/message_map.h>
#include <zo/parse/csv_reader.h>
#include <zo/parse/reg_exp.h>
#include <zo/parse/search.h>
#include <zo/persist/zip_streambuf.h>
#include <zo/system/codepage.h>
#include <zo/system/macro_lib.h>
#include <zo/system/message.h>
#include <zo/text/containers/vhash.h>
#include <zo/text/string.h>
#include <zo/text/string_ref.h>
#include <zo/text/sub_string.h>
#include <zo/variant/variant.h>
#include <zo/xml/json.h>
#include <zo/xml/xml_class.h>

namespace zo {

extern const void* const kClassConstants[];
const void* const kClassConstants[] = {
    &ZoCodepage::kDefault,
    &ZoCodepage::kUtf16,
    &ZoCodepage::kUtf16BigEndian,
    &ZoCodepage::kUtf8,
    &ZoCsvReader::npos,
    &ZoDialogs::kAsk,
    &ZoDottyNode::noCluster,
    &ZoFindFile::kDirectory,
    &ZoHeadlessCad::kMostPrompts,
    &ZoJson::kMaxBytes,
    &ZoLibrary::kBest,
    &ZoLibrary::kFast,
    &ZoLibrary::kNormal,
    &ZoMacroLib::kMaxDepth,
    &ZoMessage::kMaxDepth,
    &ZoMessage::kMaxLength,
    &ZoMessage::kMaxRead,
    &ZoMessageMap::kMaxBytes,
    &ZoMessageMap::kMaxFaults,
    &ZoMessageMap::kMaxLength,
    &ZoRegExp::kMaxPattern,
    &ZoRegExp::npos,
    &ZoSearch::npos,
    &ZoString::npos,
    &ZoStringRef::npos,
    &ZoSubString::npos,
    &ZoTaskDialog::kFirstNumber,
    &ZoVHash::kDefaultBuckets,
    &ZoVHash::kDefaultLoadFactor,
    &ZoVHashTable::kLongChain,
    &ZoVariant::kMaxDepth,
    &ZoXMLClass::kMaxAttributes,
    &ZoXMLClass::kMaxBytes,
    &ZoXMLClass::kMaxDepth,
    &ZoZIPStreambuf::endOfFile,
};

}  // namespace zo
