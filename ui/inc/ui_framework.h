// Everything a program's dialogs are written against.
#pragma once

#include "ui_controls.h"
#include "ui_data_exchange.h"
#include "ui_defs.h"
#include "ui_dialog.h"
#include "ui_dialog_template.h"
#include "ui_message_box.h"
#include "ui_tool_tip.h"
#include "ui_winapp.h"
#include "ui_window.h"
