#include <zo/host/mfc.h>
#include <zo/persist/mfc_archive.h>

ZoMfcArchive::~ZoMfcArchive() = default;

bool ZoMfcArchive::isStoring() { return archive_ && !archive_->IsLoading(); }

void ZoMfcArchive::flush() {
  if (archive_) archive_->Flush();
}

void ZoMfcArchive::readBin(void* buffer, unsigned int size) {
  if (!archive_ || archive_->Read(buffer, size) < size) cameShort();
}

void ZoMfcArchive::writeBin(const void* data, unsigned int size, const wchar_t*) {
  if (archive_) archive_->Write(data, size);
}

bool ZoMfcArchive::needToConvertToUnicode() const {
  const auto* const file = archive_ ? dynamic_cast<ZoStdioFile*>(archive_->GetFile()) : nullptr;
  return file && file->isAnsi();
}
