// Files: names, and handles of objects in the host's drawings.
#pragma once

#include <zo/files/file_name.h>
#include <zo/files/handle.h>
#include <zo/files/name_results.h>
