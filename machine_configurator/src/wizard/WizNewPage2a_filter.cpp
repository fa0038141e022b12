// The machine page's filter by interface: the offered units against the
// interface words of SP_Support\DriveUnit.dat.
#include "errtrace.h"
#include "kplatform_profile.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage2a.h"

#include <vector>

MachineListSnapshot g_machineListSnapshot;

namespace {

constexpr const char* kDriveUnitFile = "SP_Support\\DriveUnit.dat";
constexpr korv::platform::DWORD kInterfaceValueSize = 100000;

// The word a unit's "interface" entry must hold; null when every unit stays.
const char* RequiredInterfaceWord(std::int32_t interfaceMode, std::int32_t capacity) {
    switch (interfaceMode) {
    case 1:
    case 3:
        if (capacity == 1)
            return "COM1";
        if (capacity == CWizNewPage2a::kSlotCapacity)
            return "switch";
        return nullptr;
    case 2:
        return "COM2";
    default:
        return nullptr;
    }
}

} // namespace

void CWizNewPage2a::FilterByInterface() {
    MachineListSnapshot& snapshot = g_machineListSnapshot;
    if (!snapshot.taken) {
        const int count = m_offered.GetCount();
        if (count > static_cast<int>(MachineListSnapshot::kMaxTexts))
            KERRLOG("FilterByInterface(): only the first %zu of %d units are kept",
                    MachineListSnapshot::kMaxTexts, count);
        snapshot.count = 0;
        for (int i = 0; i < count && i < static_cast<int>(MachineListSnapshot::kMaxTexts); ++i)
            m_offered.GetText(i, snapshot.texts[snapshot.count++]);
        snapshot.taken = true;
    } else {
        for (int i = m_offered.GetCount() - 1; i >= 0; --i)
            m_offered.DeleteString(i);
        for (int i = 0; i < snapshot.count; ++i)
            m_offered.AddString(snapshot.texts[i]);
    }

    const char* word = RequiredInterfaceWord(g_interfaceMode, m_capacity);
    if (!word)
        return;
    std::vector<char> value(kInterfaceValueSize);
    for (int i = m_offered.GetCount() - 1; i >= 0; --i) {
        std::string unit;
        m_offered.GetText(i, unit);
        korv::platform::GetPrivateProfileStringA(unit.c_str(), "interface", "", value.data(),
                                                 kInterfaceValueSize, kDriveUnitFile);
        if (std::string(value.data()).find(word) == std::string::npos)
            m_offered.DeleteString(i);
    }
}
