#include "wizard/WizardPageList.h"

#include "main_dialog/RigCfgDlg.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizMeasureStands.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPage3.h"
#include "wizard/WizNewPageForm1.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/WizNewPageLast.h"
#include "wizard/WizProxies.h"

#include <array>

namespace {

// The machine-based part of a group, in list order: machine page, parameter
// source page, order number page, proxy page.
struct GroupPages {
    int group;
    const char* key;
    bool hasSource;
    bool hasProxy;
    // The order number page's own index is the machine page's, not its list
    // index; kept as the pages were always built.
    bool orderTakesMachineIndex;
};

constexpr std::array<GroupPages, 9> kGroupPages{{
    {0, "KORSURF", true, false, false},
    {1, "FORM", true, true, false},
    {2, "KORSIM", false, true, true},
    {3, "KORSHAFT", false, true, true},
    {4, "PRECIKOR", false, false, false},
    {5, "KORGEAR", false, false, false},
    {6, "KOROPTO", false, true, false},
    {7, "PLATFORM_COMPONENTS", false, true, false},
    {8, "KORGEOMETRY", false, true, false},
}};

constexpr std::array<const char*, 9> kGroupPrefixes{
    "KorSurf: ", "KorForm: ", "KorSim: ",   "KorShaft: ",    "Precikor: ",
    "KorGear: ", "KorOpto: ", "Platform: ", "KorGeometry: ",
};

} // namespace

std::string WizardGroupPrefix(int group) {
    if (group < 0 || group >= static_cast<int>(kGroupPrefixes.size()))
        return {};
    return kGroupPrefixes[static_cast<std::size_t>(group)];
}

std::string WizardPageList::GroupTitle(int group, const char* key) {
    return WizardGroupPrefix(group) + TranslateText(key);
}

template <class Page>
Page* WizardPageList::Add(std::unique_ptr<Page> page, const std::string& title) {
    Page* raw = page.get();
    m_wizard.AddPage(title, raw, Page::IDD);
    m_pages.push_back(std::move(page));
    return raw;
}

WizardPageList::WizardPageList(CCustomWizardDlg& wizard) : m_wizard(wizard) {
    CWizardDlg* w = &wizard;
    // The first five and the last title are bare keys, translated when shown.
    Add(std::make_unique<CWizNewPage1>(w), "product group");
    Add(std::make_unique<CWizNewPage2>(w), "interfaces");
    Add(std::make_unique<CWizDriveUnits>(w), "drive units");
    Add(std::make_unique<CWizNewPage3>(w), "measurement table");
    Add(std::make_unique<CWizMeasureStands>(w), "measurement stand");
    for (const GroupPages& g : kGroupPages) {
        const int machineIndex = static_cast<int>(m_pages.size());
        auto* machines =
            Add(std::make_unique<CWizNewPage2a>(w, g.key), GroupTitle(g.group, "Maschinentyp.txt"));
        CWizNewPageForm1* source = nullptr;
        if (g.hasSource)
            source =
                Add(std::make_unique<CWizNewPageForm1>(w), GroupTitle(g.group, "DataSource.txt"));
        const int orderIndex =
            g.orderTakesMachineIndex ? machineIndex : static_cast<int>(m_pages.size());
        Add(std::make_unique<CWizNewPageForm2>(orderIndex, w, source, machines),
            GroupTitle(g.group, "Zusatzparameter.txt"));
        if (g.hasProxy)
            Add(std::make_unique<CWizProxies>(w), GroupTitle(g.group, "choose_proxy.txt"));
    }
    Add(std::make_unique<CWizNewPageLast>(w), "summary");
}

WizardPageList::~WizardPageList() {
    while (!m_pages.empty())
        m_pages.pop_back();
}
