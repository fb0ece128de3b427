#include <zo/results.h>
#include <zo/system/standard_mgr.h>

using Texts = ZoSequence<ZoString>;

int ZoStandardMgr::add(const ZoVariant&, const wchar_t*) { return ZoResult::refused; }
int ZoStandardMgr::addFile(const ZoFileName&, const wchar_t*) { return ZoResult::refused; }
int ZoStandardMgr::addOpenFile(ZoFile&, const ZoFileName&, const wchar_t*) {
  return ZoResult::refused;
}
int ZoStandardMgr::remove(const ZoString&, const wchar_t*) { return ZoResult::refused; }
int ZoStandardMgr::find(const ZoStandardFilter&, Texts&) { return ZoResult::refused; }
int ZoStandardMgr::getName(const ZoString&, ZoString&) { return ZoResult::refused; }
int ZoStandardMgr::getEditions(const ZoString&, Texts&) { return ZoResult::refused; }
int ZoStandardMgr::getSuccessor(const ZoString&, ZoString&) { return ZoResult::refused; }
int ZoStandardMgr::getOrigin(const ZoString&, ZoString&, ZoFileName&) { return ZoResult::refused; }
int ZoStandardMgr::getTables(const ZoString&, Texts&) { return ZoResult::refused; }
int ZoStandardMgr::getSizes(const ZoString&, const ZoString&, Texts&) { return ZoResult::refused; }
int ZoStandardMgr::getRow(const ZoString&, const ZoString&, const ZoString&, ZoVariant&) {
  return ZoResult::refused;
}
int ZoStandardMgr::getPreferred(const ZoString&, ZoString&) { return ZoResult::refused; }
int ZoStandardMgr::setPreferred(const ZoString&, const ZoString&) { return ZoResult::refused; }
