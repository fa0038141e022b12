#include "ui_message_box.h"

#include "errtrace.h"
#include "ui_host_selection.h"

#include <iterator>

namespace korv::ui {

namespace {

const MessageBoxButtons kButtons[] = {
    {"ok", {IDOK}, 1, IDOK},
    {"ok-cancel", {IDOK, IDCANCEL}, 2, IDCANCEL},
    {"abort-retry-ignore", {IDABORT, IDRETRY, IDIGNORE}, 3, IDABORT},
    {"yes-no-cancel", {IDYES, IDNO, IDCANCEL}, 3, IDCANCEL},
    {"yes-no", {IDYES, IDNO}, 2, IDNO},
    {"retry-cancel", {IDRETRY, IDCANCEL}, 2, IDCANCEL},
};

const char* const kAnswerNames[] = {nullptr, "ok",     "cancel", "abort",
                                    "retry", "ignore", "yes",    "no"};

} // namespace

bool MessageBoxButtons::offers(int answer) const {
    for (int i = 0; i < count; ++i)
        if (answers[i] == answer)
            return true;
    return false;
}

const MessageBoxButtons& message_box_buttons(unsigned nType) {
    const unsigned type = nType & MB_TYPEMASK;
    return type < std::size(kButtons) ? kButtons[type] : kButtons[0];
}

int message_box_default_index(unsigned nType) {
    const int index = static_cast<int>((nType & MB_DEFMASK) >> 8);
    return index < message_box_buttons(nType).count ? index : 0;
}

const char* message_box_icon(unsigned nType) {
    switch (nType & MB_ICONMASK) {
    case MB_ICONERROR:
        return "error";
    case MB_ICONQUESTION:
        return "question";
    case MB_ICONWARNING:
        return "warning";
    case MB_ICONINFORMATION:
        return "information";
    default:
        return "";
    }
}

const char* answer_name(int answer) {
    return answer > 0 && answer < static_cast<int>(std::size(kAnswerNames)) ? kAnswerNames[answer]
                                                                            : nullptr;
}

int answer_from_name(const std::string& name) {
    for (int answer = 1; answer < static_cast<int>(std::size(kAnswerNames)); ++answer)
        if (name == kAnswerNames[answer])
            return answer;
    return 0;
}

int AfxMessageBox(const std::string& text, unsigned nType, unsigned /*nIDHelp*/) {
    Host* host = active_host();
    if (!host) {
        KERRLOG("AfxMessageBox(): no message box can be shown (%s): %s",
                host_unavailable_reason().c_str(), text.c_str());
        return 0;
    }
    return host->ShowMessageBox(text, nType);
}

} // namespace korv::ui
