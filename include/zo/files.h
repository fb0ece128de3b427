// Files: names, file objects, services, searches, transfers; handles of objects in drawings.
#pragma once

#include <zo/files/file.h>
#include <zo/files/file_imp.h>
#include <zo/files/file_name.h>
#include <zo/files/file_save.h>
#include <zo/files/file_transfer.h>
#include <zo/files/find_file.h>
#include <zo/files/forward_file_system.h>
#include <zo/files/handle.h>
#include <zo/files/lib_file.h>
#include <zo/files/library.h>
#include <zo/files/name_results.h>
#include <zo/files/std_file_system.h>
#include <zo/system/file_system.h>
