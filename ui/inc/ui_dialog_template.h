// Dialog resources: what a dialog looks like before any code touches it.
//
// A program describes each of its dialogs once, as the resource editor would:
//
//   register_dialog_template({103, "Machine Configuration.txt", 320, 200, {
//       {IDOK, ControlKind::DefaultButton, "Next.but", {209, 179, 50, 14}},
//       {1013, ControlKind::Button, "Back.but", {155, 179, 50, 14}, style::disabled},
//       {1015, ControlKind::Frame, "", {7, 30, 306, 140}, style::hidden},
//   }});
//
// Captions are translation keys; dialogs translate them when they start.
#pragma once

#include "ui_defs.h"

#include <string>
#include <vector>

namespace korv::ui {

enum class ControlKind {
    Button,
    DefaultButton,
    BitmapButton, // caption names the images
    CheckBox,
    RadioButton,
    StaticText,
    Bitmap, // caption names the image
    Frame,  // with a caption it is a group box
    Edit,
    ListBox,
    ComboBox, // a drop-down list: its text is that of the selected item
    RichEdit,
};

// The word for a kind in transcripts and logs: "button", "check box", ...
const char* control_kind_name(ControlKind kind);

// Control styles, combined with |.
namespace style {
inline constexpr unsigned hidden = 1u << 0;
inline constexpr unsigned disabled = 1u << 1;
inline constexpr unsigned group = 1u << 2;     // starts a group, such as a group of radio buttons
inline constexpr unsigned sorted = 1u << 3;    // list and combo boxes keep their items sorted
inline constexpr unsigned read_only = 1u << 4; // edit and rich edit
inline constexpr unsigned multi_line = 1u << 5;
inline constexpr unsigned vscroll = 1u << 6;
inline constexpr unsigned hscroll = 1u << 7;
} // namespace style

// x, y, width and height in dialog units, as in a resource script.
struct DlgRect {
    int x = 0;
    int y = 0;
    int cx = 0;
    int cy = 0;

    CRect rect() const { return {x, y, x + cx, y + cy}; }
};

struct ControlTemplate {
    int id = IDC_STATIC;
    ControlKind kind = ControlKind::StaticText;
    std::string caption;
    DlgRect rect;
    unsigned styles = 0;

    bool has(unsigned s) const { return (styles & s) != 0; }
};

struct DialogTemplate {
    int id = 0;
    std::string caption;
    int cx = 0;
    int cy = 0;
    std::vector<ControlTemplate> controls;
};

// Adds a template, replacing one with the same id. A template in which two
// controls share an id (other than IDC_STATIC) is refused with an error log line.
bool register_dialog_template(DialogTemplate dialog);

// The template of a resource id; null if none was registered.
const DialogTemplate* find_dialog_template(int id);

} // namespace korv::ui
