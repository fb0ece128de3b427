// Archives: storing values, reading them back, and listing them as text (docs/formats/archive.md).
#pragma once

#include <zo/config.h>

#include <zo/persist/archive.h>
#include <zo/persist/dump_archive.h>
#include <zo/persist/file_archive.h>
#include <zo/persist/memory_archive.h>
#include <zo/persist/mfc_archive.h>
