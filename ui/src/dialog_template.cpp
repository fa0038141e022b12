#include "ui_dialog_template.h"

#include "errtrace.h"

#include <algorithm>
#include <map>
#include <memory>

namespace korv::ui {

namespace {

// Node-based, so that pointers handed out stay valid while others are added.
std::map<int, std::unique_ptr<DialogTemplate>>& templates() {
    static std::map<int, std::unique_ptr<DialogTemplate>> table;
    return table;
}

} // namespace

const char* control_kind_name(ControlKind kind) {
    switch (kind) {
    case ControlKind::Button:
        return "button";
    case ControlKind::DefaultButton:
        return "default button";
    case ControlKind::BitmapButton:
        return "bitmap button";
    case ControlKind::CheckBox:
        return "check box";
    case ControlKind::RadioButton:
        return "radio button";
    case ControlKind::StaticText:
        return "static";
    case ControlKind::Bitmap:
        return "bitmap";
    case ControlKind::Frame:
        return "frame";
    case ControlKind::Edit:
        return "edit";
    case ControlKind::ListBox:
        return "list box";
    case ControlKind::ComboBox:
        return "combo box";
    case ControlKind::RichEdit:
        return "rich edit";
    }
    return "control";
}

bool register_dialog_template(DialogTemplate dialog) {
    std::vector<int> ids;
    ids.reserve(dialog.controls.size());
    for (const ControlTemplate& control : dialog.controls)
        if (control.id != IDC_STATIC)
            ids.push_back(control.id);
    std::sort(ids.begin(), ids.end());
    const auto twin = std::adjacent_find(ids.begin(), ids.end());
    if (twin != ids.end()) {
        KERRLOG("register_dialog_template(): dialog %d has two controls with id %d", dialog.id,
                *twin);
        return false;
    }
    const int id = dialog.id;
    auto& slot = templates()[id];
    if (slot)
        *slot = std::move(dialog); // keeps pointers to the old one valid
    else
        slot = std::make_unique<DialogTemplate>(std::move(dialog));
    return true;
}

const DialogTemplate* find_dialog_template(int id) {
    const auto found = templates().find(id);
    return found == templates().end() ? nullptr : found->second.get();
}

} // namespace korv::ui
