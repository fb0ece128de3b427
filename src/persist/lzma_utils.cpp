// LZMA containers in vectors of bytes: the public interface over LzmaEncoder and uncompressLzma.
// It answers for what these need not know: no data, more than a container holds, memory that runs
// out.
#include <zo/persist/lzma_utils.h>

#include <new>

#include "persist/container.h"
#include "persist/lzma_encoder.h"
#include "persist/sdk_memory.h"

namespace {

using zo::Bytes;

int compress(std::vector<unsigned char>& out, Bytes content, int level, unsigned int dictSize) {
  out.resize(zo::LzmaEncoder::containerRoom(content.size()));
  std::size_t size = out.size();
  zo::LzmaEncoder encoder(&zo::kSdkMemory);
  int status = encoder.begin(level, dictSize, content.size());
  if (!status) status = encoder.encodeContainer(content, out.data(), size);
  if (!status) out.resize(size);
  return status;
}

// `data` as bytes; false for what no container can hold.
bool asBytes(const void* data, unsigned long long size, Bytes& bytes) {
  if ((!data && size > 0) || size > zo::kMaxContent) return false;
  if (!data) data = "";  // the encoder counts pointers from its input's start
  bytes = {static_cast<const unsigned char*>(data), static_cast<std::size_t>(size)};
  return true;
}

}  // namespace

int LzmaUtils::LzmaCompressData(std::vector<unsigned char>& out, const void* data,
                                unsigned long long size, int level, unsigned int dictSize) {
  out.clear();
  Bytes content;
  if (!asBytes(data, size, content)) return badParameter;
  try {
    const int status = compress(out, content, level, dictSize);
    if (status) out.clear();
    return status;
  } catch (const std::bad_alloc&) {
    out.clear();
    return outOfMemory;
  }
}

int LzmaUtils::LzmaUncompressData(std::vector<unsigned char>& out, const void* data,
                                  unsigned long long size) {
  out.clear();
  Bytes container;
  if (!asBytes(data, size, container)) return badParameter;
  zo::Block content;
  std::size_t contentSize = 0;
  const int status = zo::uncompressLzma(container, content, contentSize);
  if (status != success && status != checkMismatch) return status;
  try {
    out.assign(content.data(), content.data() + contentSize);
  } catch (const std::bad_alloc&) {
    return outOfMemory;
  }
  return status;
}

bool LzmaUtils::IsLzmaCompressedData(const unsigned char* data) {
  return data && *data == zo::kLzmaProperties;
}
