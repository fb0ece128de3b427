// Dialogs: the platform's, with values in and out, and an answer in the user's place for programs
// without one.
#pragma once

#include <zo/config.h>

#include <zo/dialogs/color_dialog.h>
#include <zo/dialogs/dialog.h>
#include <zo/dialogs/file_dialog.h>
#include <zo/dialogs/folder_dialog.h>
#include <zo/dialogs/font_dialog.h>
#include <zo/dialogs/message_box.h>
#include <zo/dialogs/print_dialog.h>
#include <zo/dialogs/task_dialog.h>
#include <zo/dialogs/variant_dialog.h>
#include <zo/dialogs/variant_edits.h>
