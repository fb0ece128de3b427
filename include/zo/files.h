// Files: names, file objects, services, searches, transfers; handles of objects in drawings.
#pragma once

#include <zo/config.h>

#include <zo/files/file.h>
#include <zo/files/file_imp.h>
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>
#include <zo/files/find_file.h>
#include <zo/files/forward_file_system.h>
#include <zo/files/std_file_system.h>
#include <zo/files/text_file.h>
#include <zo/library/check_value.h>
#include <zo/library/lib_file.h>
#include <zo/library/library.h>
#include <zo/library/packed_member.h>
#include <zo/names/file_name.h>
#include <zo/names/handle.h>
#include <zo/names/member_name.h>
#include <zo/names/name_results.h>
#include <zo/persist/check_sum.h>
#include <zo/search/download_cache.h>
#include <zo/system/file_system.h>
