// Compression: ZoCompress, ZoExplode, LzmaUtils, and the stream buffers.
#pragma once

#include <zo/config.h>

#include <zo/persist/blast_membuf.h>
#include <zo/persist/compress.h>
#include <zo/persist/explode.h>
#include <zo/persist/lzma_utils.h>
#include <zo/persist/zip.h>
#include <zo/persist/zip_streambuf.h>
