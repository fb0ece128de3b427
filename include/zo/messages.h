// Messages: texts in the user's language from message files, and the files themselves.
#pragma once

#include <zo/config.h>

#include <zo/messages/message_fault.h>
#include <zo/messages/message_map.h>
#include <zo/messages/message_marks.h>
#include <zo/messages/std_message.h>
#include <zo/system/message.h>
