// Knows the codes of all families.
#include <zo/dialogs/dialog.h>
#include <zo/geometry/status.h>
#include <zo/library/library_results.h>
#include <zo/names/name_results.h>
#include <zo/parse/reg_exp.h>
#include <zo/persist/lzma_utils.h>
#include <zo/persist/zip.h>
#include <zo/result_text.h>
#include <zo/results.h>
#include <zo/system/exception.h>
#include <zo/system/execute.h>
#include <zo/system/file_system.h>
#include <zo/system/guard.h>
#include <zo/system/layer.h>
#include <zo/system/message.h>
#include <zo/system/open_results.h>
#include <zo/system/standard_mgr.h>
#include <zo/text/number_text.h>
#include <zo/text/string.h>
#include <zo/variant/variant.h>
#include <zo/xml/xml_results.h>
#include <zo_c.h>

#include <algorithm>
#include <new>
#include <string>

#include "attach/result_table.h"
#include "system/service_or_null.h"

namespace {

using enum ZoResultFamily;

// A constant's name in the table is the one that the compiler knows.
#define ZO_RESULT(family, constant, text) {family, static_cast<int>(constant), #constant, text}

constexpr zo::ResultEntry kTable[] = {
    ZO_RESULT(common, ZoResult::ok, L"Success."),
    ZO_RESULT(common, ZoResult::refused,
              L"Refused, not found, or failed; or another thread kept a service for too long."),
    ZO_RESULT(common, ZoResult::outOfMemory, L"Out of memory. Nothing was lost."),
    ZO_RESULT(common, ZoResult::invalid, L"A null pointer, or a URL that cannot be served."),
    ZO_RESULT(common, ZoResult::timeOut, L"A service's guard was not obtained in time."),

    ZO_RESULT(numbers, ZoResult::refused,
              L"The text is no such number or value, or there is no such unit or form."),
    ZO_RESULT(numbers, ZoResult::overflow, L"The number is too large."),

    ZO_RESULT(containers, ZoResult::refused,
              L"No such position, key or element, a null pointer, a container that is full, or an "
              L"element that cannot be copied."),
    ZO_RESULT(containers, ZoResult::outOfMemory, L"Out of memory. The container is as it was."),

    ZO_RESULT(variants, ZoResult::refused,
              L"The value does not convert to the kind that is wanted, is not there, or lies too "
              L"deep; or the text is no value."),

    ZO_RESULT(geometry, ZoResult::invalidArgument, L"The letter names no axis."),
    ZO_RESULT(geometry, ZoResult::degenerate,
              L"The result does not exist: a length is zero, or the arguments are parallel, "
              L"collinear or singular."),

    ZO_RESULT(names, ZoResult::refused, L"The operation does not apply to this file name."),
    ZO_RESULT(names, ZoResult::nameTooLong, L"The file name is too long."),
    ZO_RESULT(names, ZoResult::nameInvalid,
              L"The file name is empty in quotes, has a character that is not allowed, or has none "
              L"of the forms of a name."),
    ZO_RESULT(names, ZoResult::nameEndsInBlank, L"A part of the file name ends in a blank."),
    ZO_RESULT(names, ZoResult::nameEndsInDot, L"A part of the file name ends in a dot."),

    ZO_RESULT(files, ZoResult::refused, L"The file operation failed."),
    ZO_RESULT(files, ZoResult::invalid, L"A URL, where only a file of this machine can serve."),

    ZO_RESULT(fileSystem, ZoResult::refused, L"The file or folder operation failed."),
    ZO_RESULT(fileSystem, ZoResult::invalid, L"A URL that cannot be served."),
    ZO_RESULT(fileSystem, ZoResult::partial, L"Only a part was done, and stays done."),

    ZO_RESULT(libraries, ZoResult::refused,
              L"The library is not open or damaged, has no such member, or could not be read or "
              L"written."),
    ZO_RESULT(libraries, ZoResult::invalid, L"A URL cannot be the name of a library's member."),
    ZO_RESULT(libraries, ZoResult::memberExists, L"The library has a member of that name already."),
    ZO_RESULT(libraries, ZoResult::memberNotFound, L"The library has no member of that name."),
    ZO_RESULT(libraries, ZoResult::libraryReadOnly, L"The library is not open for writing."),
    ZO_RESULT(libraries, ZoResult::libraryWriteLocked,
              L"Another program is writing to the library."),
    ZO_RESULT(libraries, ZoResult::libraryInUse,
              L"Others have the library open, so that it cannot be replaced."),

    ZO_RESULT(compression, ZoResult::refused,
              L"The data are damaged or no container, there is no memory, or a file could not be "
              L"read or written."),
    ZO_RESULT(compression, ZoZip::checkMismatch,
              L"The data were unpacked, but their check value does not match: they are damaged."),

    ZO_RESULT(lzma, LzmaUtils::success, L"Success."),
    ZO_RESULT(lzma, LzmaUtils::damaged, L"The data are damaged."),
    ZO_RESULT(lzma, LzmaUtils::outOfMemory, L"Out of memory."),
    ZO_RESULT(lzma, LzmaUtils::checkMismatch,
              L"The data were unpacked, but their check value does not match: they are damaged."),
    ZO_RESULT(lzma, LzmaUtils::unsupported, L"The data are no container of this library."),
    ZO_RESULT(lzma, LzmaUtils::badParameter,
              L"A null pointer, 4 GiB or more, or a size of dictionary that is not supported."),
    ZO_RESULT(lzma, LzmaUtils::inputEnded, L"The data end too early."),
    ZO_RESULT(lzma, LzmaUtils::outputFull, L"The data are longer than their header says."),

    ZO_RESULT(services, ZoResult::refused,
              L"Another thread kept the service for too long, it has no such reactor, or the "
              L"library is attached already or not yet."),
    ZO_RESULT(services, ZoResult::invalid, L"A null reactor."),

    ZO_RESULT(configuration, ZoResult::refused,
              L"There is no such setting, or there is one already; or another thread kept the "
              L"settings for too long."),

    ZO_RESULT(errors, ZoResult::refused,
              L"Not reported: another report took too long, or this one could not be written."),
    ZO_RESULT(errors, 2, L"Not shown: there are no task dialogs here."),

    ZO_RESULT(execute, ZoResult::refused, L"It could not be started."),
    ZO_RESULT(execute, ZoExecute::kFileNotFound, L"Not started: the file was not found."),
    ZO_RESULT(execute, ZoExecute::kPathNotFound, L"Not started: the folder was not found."),
    ZO_RESULT(execute, ZoExecute::kBadFormat,
              L"Not started: it is no program that runs on this system."),
    ZO_RESULT(execute, ZoExecute::kAccessDenied, L"Not started: access was denied."),
    ZO_RESULT(execute, ZoExecute::kAssociationIncomplete,
              L"Not started: the program for files of this kind is not registered completely."),
    ZO_RESULT(execute, ZoExecute::kDdeBusy,
              L"Not started: the program was busy with another request (DDE)."),
    ZO_RESULT(execute, ZoExecute::kDdeFailed,
              L"Not started: the request to the program failed (DDE)."),
    ZO_RESULT(execute, ZoExecute::kDdeTimeOut,
              L"Not started: the program did not answer in time (DDE)."),
    ZO_RESULT(execute, ZoExecute::kLibraryNotFound,
              L"Not started: a DLL that the program needs was not found."),
    ZO_RESULT(execute, ZoExecute::kNoAssociation,
              L"Not started: no program is registered for files of this kind."),
    ZO_RESULT(execute, ZoExecute::kOutOfMemory, L"Not started: out of memory."),
    ZO_RESULT(execute, ZoExecute::kSharingViolation,
              L"Not started: another program keeps the file for itself."),

    ZO_RESULT(exceptions, ZoComException::kNoError, L"No error."),
    ZO_RESULT(exceptions, ZoComException::kInternalError, L"Internal error."),
    ZO_RESULT(exceptions, ZoComException::kOutOfMemory, L"Out of memory."),
    ZO_RESULT(exceptions, ZoComException::kInvalidArgument, L"Invalid argument."),

    ZO_RESULT(waits, ZoWait::failed, L"The wait failed: the guard is not valid."),
    ZO_RESULT(waits, ZoWait::obtained, L"The guard was obtained."),
    ZO_RESULT(waits, ZoWait::abandoned,
              L"The guard was obtained, but from a holder that ended while it held it."),
    ZO_RESULT(waits, ZoWait::timeOut, L"The guard was not obtained in time."),

    ZO_RESULT(expressions, ZoResult::refused,
              L"There is no expression, it has no such group, or the text would be too long."),
    ZO_RESULT(expressions, ZoResult::badPattern,
              L"The pattern is no regular expression, or one that is too large."),
    ZO_RESULT(expressions, ZoResult::gaveUp,
              L"The search reached a limit before there was an answer."),

    ZO_RESULT(messages, ZoResult::refused,
              L"No such text, file or language, or another thread kept the messages for too long."),
    ZO_RESULT(messages, ZoResult::invalid, L"The file is no message file."),
    ZO_RESULT(messages, ZoResult::incomplete,
              L"The text was given, but a reference or an argument in it could not be filled in."),

    ZO_RESULT(search, ZoResult::refused,
              L"No such file, place or macro; or another thread kept the search for too long."),
    ZO_RESULT(search, ZoResult::invalid, L"A URL, and there is no cache that could serve it."),

    ZO_RESULT(opening, ZoResult::refused,
              L"The file, medium or copy is not there, or could not be read or written."),
    ZO_RESULT(opening, ZoResult::invalid, L"A URL that cannot be served."),
    ZO_RESULT(opening, ZoResult::noManifest,
              L"The medium has no list of what should be on it, so it cannot be checked."),
    ZO_RESULT(opening, ZoResult::mediaDiffers,
              L"A file of the medium is missing, or is not what it should be."),
    ZO_RESULT(opening, ZoResult::manifestDamaged,
              L"The medium's list of files is damaged, or was made with another key."),
    ZO_RESULT(opening, ZoResult::cancelled, L"Cancelled."),
    ZO_RESULT(opening, ZoResult::stale,
              L"The server did not answer. An older copy of the file was given."),
    ZO_RESULT(opening, ZoResult::hostNotAllowed, L"The settings do not allow this server."),
    ZO_RESULT(opening, ZoResult::tooLarge, L"The file is larger than a download may be."),
    ZO_RESULT(opening, ZoResult::serverRefused,
              L"The server has no such file, or its answer is none."),

    ZO_RESULT(xml, ZoResult::refused,
              L"The document is empty, nothing is there, the platform refused, or the file could "
              L"not be read or written."),
    ZO_RESULT(xml, ZoResult::invalid, L"A URL, where only a file of this machine can serve."),
    ZO_RESULT(xml, ZoResult::notWellFormed, L"The text is no well-formed XML or JSON."),
    ZO_RESULT(xml, ZoResult::beyondLimits, L"The text is larger, or nested deeper, than allowed."),
    ZO_RESULT(xml, ZoResult::hasDocumentType,
              L"The document has a document type, which is not allowed."),
    ZO_RESULT(xml, ZoResult::wrongEncoding,
              L"The encoding is not known here, or the bytes are not in it."),
    ZO_RESULT(xml, ZoResult::unfitForXml, L"XML cannot hold this name or this text."),
    ZO_RESULT(xml, ZoResult::badXmlPath,
              L"This is no path of this kind, or its prefix stands for no namespace."),
    ZO_RESULT(xml, ZoResult::noVariant,
              L"The text is well-formed, but not what a variant is written as."),
    ZO_RESULT(xml, ZoResult::noXmlParser, L"This system has no parser for XML."),

    ZO_RESULT(standards, ZoResult::refused,
              L"No such layer, state, standard, edition, table, size or file; or another thread "
              L"kept the service for too long."),
    ZO_RESULT(standards, ZoResult::invalid,
              L"A name or value that no layer has, or no value of a standard."),
    ZO_RESULT(standards, ZoResult::layerExists, L"There is a layer of that name already."),
    ZO_RESULT(standards, ZoResult::layerKept,
              L"Layer \"0\", the current layer and layers with objects on them stay."),
    ZO_RESULT(standards, ZoResult::layerFrozen, L"A frozen layer cannot be the current one."),
    ZO_RESULT(standards, ZoResult::layersLeftOut, L"Done, but some layers were left out."),
    ZO_RESULT(standards, ZoResult::standardCircle,
              L"Standards name each other as their successors."),

    ZO_RESULT(dialogs, ZoResult::refused, L"The dialog offers no such value."),
    ZO_RESULT(dialogs, ZoResult::notShown, L"The dialog cannot be shown."),
    ZO_RESULT(dialogs, ZoResult::noOwner,
              L"The window that the dialog should belong to is not there."),
    ZO_RESULT(dialogs, ZoResult::noPrinter, L"There is no printer."),
    ZO_RESULT(dialogs, ZoResult::cancelled, L"The user cancelled the dialog."),

    ZO_RESULT(cInterface, ZOC_BAD_HANDLE, L"The handle is null, or was closed, or never given."),
    ZO_RESULT(cInterface, ZOC_WRONG_HANDLE,
              L"The handle is of another kind, or the archive of the other direction."),
    ZO_RESULT(cInterface, ZOC_WRONG_THREAD,
              L"Another thread is using the object, or has to close it."),
    ZO_RESULT(cInterface, ZOC_BAD_ARGUMENT,
              L"A null pointer, a number, code or encoding that is none, or a text that is too "
              L"long."),
    ZO_RESULT(cInterface, ZOC_NOT_ATTACHED, L"The library is not attached."),
    ZO_RESULT(cInterface, ZOC_ENDED, L"The data of the archive ended, or is no such value."),
    ZO_RESULT(cInterface, ZOC_FAILURE, L"A failure that was not foreseen."),
    ZO_RESULT(cInterface, ZOC_IN_BATCH, L"The library's open batch does not allow it."),
    ZO_RESULT(cInterface, ZOC_NO_BATCH, L"The library has no open batch."),
    ZO_RESULT(cInterface, ZOC_NO_LIBRARY, L"The file is no library."),
};

#undef ZO_RESULT

constexpr bool comesBefore(const zo::ResultEntry& a, const zo::ResultEntry& b) {
  return a.family != b.family ? a.family < b.family : a.code < b.code;
}
static_assert(std::ranges::is_sorted(kTable, comesBefore));

const zo::ResultEntry* find(ZoResultFamily family, int code) noexcept {
  const zo::ResultEntry wanted{family, code, nullptr, nullptr};
  const auto* const entry = std::ranges::lower_bound(kTable, wanted, comesBefore);
  return entry != std::end(kTable) && !comesBefore(wanted, *entry) ? entry : nullptr;
}

// These number all their codes themselves.
bool isApart(ZoResultFamily family) noexcept {
  return family == lzma || family == exceptions || family == waits;
}

// What the message service makes of it, unless it fails; any service, so whatever it throws but for
// want of memory.
template <class Ask>
bool ask(Ask ask) {
  auto* const service = zo::serviceOrNull<ZoMessage>();
  try {
    return service && ask(*service) == ZoResult::ok;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return false;
  }
}

ZoString textOf(const zo::ResultEntry& entry) {
  ZoString text;
  const bool isTranslated = ask([&](ZoMessage& service) {
    return service.getText(zo::kResultFile, zo::resultNumber(entry.code, entry.family), text);
  });
  return isTranslated ? text : ZoString(entry.text);
}

ZoString unknown(int code) {
  ZoString text;
  const bool isTranslated = ask([&](ZoMessage& service) {
    return service.format(zo::kResultFile, zo::kUnknownResult, {code}, text);
  });
  if (isTranslated) return text;
  return ZoString((L"Unknown result code " + std::to_wstring(code) + L".").c_str());
}

}  // namespace

std::span<const zo::ResultEntry> zo::resultTable() noexcept { return kTable; }

ZoString zoResultText(int code, ZoResultFamily family) {
  const zo::ResultEntry* entry = find(family, code);
  if (!entry && !isApart(family)) entry = find(common, code);
  return entry ? textOf(*entry) : unknown(code);
}
