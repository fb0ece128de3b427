// Attributes of files; volumes and drives.
#include <zo/text/containers/array.h>

#include <algorithm>

#include "files/std_file_system_imp.h"
#include "platform/system_path.h"

namespace {

// What the platform takes for the root of the volume that a name asks for.
std::wstring rootOf(const ZoFileName& name) {
  std::wstring text(name.view());
  if (!text.empty() && (text.back() == L'\\' || text.back() == L'/')) return text;
  const ZoFileName whole(name.view());  // the parts of a name below a macro are not those of this
  if (*whole.drive()) return std::wstring(whole.drive()) + L'\\';
  if (whole.isUNC()) return text.substr(0, whole.volumePrefixLength()) + L'\\';
  return text;
}

// The root, or null for an empty one: the volume of the current directory.
const wchar_t* orNull(const std::wstring& root) { return root.empty() ? nullptr : root.c_str(); }

unsigned int kibibytes(DWORD clusters, const zo::FileApi::Space& space) {
  const std::uint64_t bytes =
      std::uint64_t{clusters} * space.sectorsPerCluster * space.bytesPerSector;
  return static_cast<unsigned int>(std::min<std::uint64_t>(bytes / 1024, 0xFFFFFFFF));
}

}  // namespace

unsigned int ZoStdFileSystemImp::getAttributes(const ZoFileName& name) {
  if (name.isURL()) return static_cast<unsigned int>(noUse(L"getAttributes"));
  const DWORD attributes = zo::fileApi().attributes(zo::SystemPath(name.fullName()));
  if (attributes != INVALID_FILE_ATTRIBUTES) return attributes;
  report(L"getAttributes");
  return 0;
}

int ZoStdFileSystemImp::subSetAttributes(const ZoFileName& name, unsigned int attributes) {
  if (name.isURL()) return noUse(L"subSetAttributes");
  return result(zo::fileApi().setAttributes(zo::SystemPath(name.fullName()), attributes),
                L"subSetAttributes");
}

int ZoStdFileSystemImp::getVolumeInformation(unsigned int& serial, unsigned int& longestComponent,
                                             unsigned int& flags, const ZoFileName& volume,
                                             ZoString& label, ZoString& fileSystem) {
  if (volume.isURL()) return noUse(L"getVolumeInformation");
  zo::FileApi::Volume found;
  if (!zo::fileApi().volume(orNull(rootOf(volume)), found)) return report(L"getVolumeInformation");
  ZoString labelText(found.label), fileSystemText(found.fileSystem);
  label.swap(labelText);
  fileSystem.swap(fileSystemText);
  serial = found.serial;
  longestComponent = found.longestComponent;
  flags = found.flags;
  return ZoResult::ok;
}

int ZoStdFileSystemImp::getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB,
                                         const ZoFileName& volume) {
  if (volume.isURL()) return noUse(L"getDiskFreeSpace");
  zo::FileApi::Space space;
  if (!zo::fileApi().space(orNull(rootOf(volume)), space)) return report(L"getDiskFreeSpace");
  freeKiB = kibibytes(space.freeClusters, space);
  totalKiB = kibibytes(space.clusters, space);
  return ZoResult::ok;
}

ZoFileSystem::DriveType ZoStdFileSystemImp::getDriveType(const ZoFileName& volume) {
  if (volume.isURL()) return ZoFileSystem::kUnknown;
  return static_cast<ZoFileSystem::DriveType>(zo::fileApi().driveType(orNull(rootOf(volume))));
}

int ZoStdFileSystemImp::getLogicalDrivesStrings(ZoSequence<ZoFileName>& drives) {
  const std::wstring roots = zo::platformText(
      [](DWORD size, wchar_t* buffer) { return zo::fileApi().drives(size, buffer); });
  constexpr const wchar_t* kDrives = L"getLogicalDrivesStrings";
  if (roots.empty()) return report(kDrives);
  ZoArray<ZoFileName> found;
  for (const wchar_t* root = roots.c_str(); *root; root += std::wstring_view(root).size() + 1) {
    if (const int code = found.append(ZoFileName(root))) return listed(code, kDrives);
  }
  return listed(drives.copyFrom(found), kDrives);
}

int ZoStdFileSystemImp::setVolumeLabel(const wchar_t* label, const ZoFileName& volume) {
  if (volume.isURL()) return noUse(L"setVolumeLabel");
  return result(zo::fileApi().setLabel(orNull(rootOf(volume)), label ? label : L""),
                L"setVolumeLabel");
}

int ZoStdFileSystemImp::getCDRom(ZoSequence<ZoFileName>& drives, ZoSequence<ZoString>& labels) {
  ZoArray<ZoFileName> all, discs;
  ZoArray<ZoString> names;
  if (const int code = service_.getLogicalDrivesStrings(all)) return code;
  for (const ZoFileName& drive : all) {
    if (service_.getDriveType(drive) != ZoFileSystem::kCdRom) continue;
    zo::FileApi::Volume volume;
    const bool ready = zo::fileApi().volume(drive.fullName(), volume);
    if (const int code = discs.append(drive)) return listed(code, L"getCDRom");
    if (const int code = names.append(ZoString(ready ? volume.label : L"")))
      return listed(code, L"getCDRom");
  }
  if (const int code = drives.copyFrom(discs)) return listed(code, L"getCDRom");
  return listed(labels.copyFrom(names), L"getCDRom");
}
