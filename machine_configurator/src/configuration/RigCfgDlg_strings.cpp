// The text forms of the active configuration, and the record they map to.
#include "main_dialog/RigCfgDlg.h"

#include "errtrace.h"
#include "ktranslate.h"
#include "stl_utilities.h"

#include <cctype>
#include <initializer_list>

namespace {

// Active section values must stay below this size, as the loader's buffers do.
constexpr std::size_t kMaxSectionValue = 1024;

// The bracket value behind `from`: leading blanks skipped, trailing kept, up
// to the next ']'. False if a bracket is missing, the text ends while
// skipping, or the value is too long.
bool scan_bracket_value(const std::string& text, std::size_t from, std::string& value) {
    const std::size_t open = text.find('[', from);
    if (open == std::string::npos)
        return false;
    std::size_t first = open + 1;
    while (first < text.size() && text[first] == ' ')
        ++first;
    if (first >= text.size())
        return false;
    const std::size_t close = text.find(']', first);
    if (close == std::string::npos || close - first >= kMaxSectionValue)
        return false;
    value.assign(text, first, close - first);
    return true;
}

// Looks for `keyword` anywhere in the text; absent gives `fallback`.
bool scan_optional(const std::string& text, const char* keyword, const char* fallback,
                   std::string& value) {
    const std::size_t at = text.find(keyword);
    if (at == std::string::npos) {
        value = fallback;
        return true;
    }
    return scan_bracket_value(text, at + std::strlen(keyword), value);
}

} // namespace

std::string NormaliseGroupKey(const std::string& group) {
    if (korv::stl_string_is_one_of(group,
                                   {"FORM", "KORSIM", "KORSHAFT", "KORGEAR", "KOROPTO",
                                    "PLATFORM_COMPONENTS", "PRECIKOR", "KORSURF", "KORGEOMETRY"}))
        return group;
    return "CONTOUR/SURFACE";
}

std::string NormaliseGroupKeyAtStart(const std::string& group) {
    // A "KORSURF" read at start enters the history as "CONTOUR/SURFACE".
    if (group == "KORSURF")
        return "CONTOUR/SURFACE";
    return NormaliseGroupKey(group);
}

std::vector<std::string> TokenizeString(const std::string& text, const std::string& delimiters) {
    std::vector<std::string> tokens;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t first = text.find_first_not_of(delimiters, pos);
        if (first == std::string::npos)
            break;
        std::size_t end = text.find_first_of(delimiters, first);
        if (end == std::string::npos)
            end = text.size();
        tokens.emplace_back(text, first, end - first);
        pos = end;
    }
    return tokens;
}

std::string StripComment(const std::string& text) {
    std::string result = text;
    korv::stl_string_strip_comment(result);
    return result;
}

std::string StripWhitespace(const std::string& text) {
    std::string result = text;
    korv::stl_string_remove_white_space(result);
    return result;
}

std::string StripCommentAndWhitespace(const std::string& text) {
    return StripWhitespace(StripComment(text));
}

std::string BuildActiveSectionString(const ActiveSection& parts) {
    return "DRIVEUNIT[" + parts.drive_unit + "],TABLE[" + parts.table + "],MEASURESTAND[" +
           parts.stand + "],CONTROL[" + parts.control + "]";
}

// The scanner is far looser than the writer, and deliberately so: every
// keyword is searched in the raw text, so a keyword inside an earlier value is
// found first, and a missing table or stand reads as "no Table" / "no Stand",
// which the wizard's "No Table" / "No Stand" are kept apart from.
ActiveSectionError ScanActiveSection(const std::string& text, ActiveSection& parts) {
    const std::size_t unit = text.find("DRIVEUNIT");
    if (unit == std::string::npos ||
        !scan_bracket_value(text, unit + std::strlen("DRIVEUNIT"), parts.drive_unit))
        return ActiveSectionError::DriveUnit;
    if (!scan_optional(text, "TABLE", "no Table", parts.table))
        return ActiveSectionError::Table;
    if (!scan_optional(text, "MEASURESTAND", "no Stand", parts.stand))
        return ActiveSectionError::Stand;
    // The control has no error: a missing bracket gives an empty or odd value.
    parts.control.clear();
    const std::size_t control = text.find("CONTROL");
    if (control != std::string::npos) {
        const std::size_t open = text.find('[', control + std::strlen("CONTROL"));
        if (open != std::string::npos) {
            const std::size_t close = text.find(']', open + 1);
            parts.control = text.substr(open + 1, close == std::string::npos ? std::string::npos
                                                                             : close - open - 1);
        }
    }
    return ActiveSectionError::None;
}

std::string BuildFormLoadString(const std::string& driveUnit, const std::string& table) {
    return driveUnit + ",," + (table == "automatic" ? "Table-automatic" : "Table-manuell");
}

std::string TableStringFromKind(int tableKind) {
    switch (tableKind) {
    case 1:
        return "manual";
    case 2:
        return "automatic";
    default:
        return "No Table";
    }
}

bool StandStringFromListText(const std::string& listText, std::string& stand) {
    static const struct {
        const char* suffix;
        const char* stored;
    } kSuffixes[] = {{" (hor.)", ":horizontal"}, {" (vert.)", ":vertical"}};
    for (const auto& s : kSuffixes) {
        const std::size_t at = listText.find(s.suffix);
        if (at == std::string::npos)
            continue;
        if (at >= CfgHistoryEntry::kTextSize) {
            KERRLOG("StandStringFromListText(): stand name too long (%zu bytes): %.60s", at,
                    listText.c_str());
            return false;
        }
        stand = listText.substr(0, at) + s.stored;
        return true;
    }
    stand = listText;
    return true;
}

std::string BuildStandDisplay(const std::string& stand) {
    std::string display;
    for (const std::string& piece : TokenizeString(stand, ",")) {
        if (!display.empty())
            display += ", ";
        display += TranslateText(piece);
    }
    return display;
}

bool BuildMachineDisplay(const std::string& driveUnit, const std::string& typeWord,
                         std::string& display) {
    const std::vector<std::string> tokens = TokenizeString(driveUnit, ":");
    if (tokens.size() != 3)
        return false;
    display = tokens[0];
    if (!tokens[2].empty())
        display += ":" + typeWord + ":" + tokens[2];
    return true;
}

bool CMidSpanCfgDlg::ConvertDrvunitStringToNewFormat(const std::string& driveUnit,
                                                     const std::string& group,
                                                     const std::string& folder,
                                                     const std::string& proxy,
                                                     ActiveConfigRecord& record) {
    const std::vector<std::string> tokens = TokenizeString(driveUnit, ":");
    if (tokens.size() != 3) {
        // The words (and the member named) are those the logs have always shown.
        KERRLOG("CfgIniFileMachinIni(): invalid data for m_actDriveUnit ='%s",
                m_actDriveUnit.c_str());
        return false;
    }
    record.machine = tokens[0];
    record.order_no = tokens[2];
    if (!folder.empty())
        record.folder = folder;
    if (!group.empty())
        record.product_group = group;
    record.proxy = proxy;
    return true;
}

void CMidSpanCfgDlg::RebuildStandDisplay() {
    m_standDisplay = BuildStandDisplay(m_actStand);
}

void CMidSpanCfgDlg::RefreshControls(bool save) {
    if (!save)
        RebuildStandDisplay();
    // Without a window there are no controls: the members are all there is.
    if (has_window())
        UpdateData(save);
}
