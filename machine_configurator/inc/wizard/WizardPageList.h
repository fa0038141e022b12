// The wizard's 32 pages, constructed and added in list order, and destroyed
// in reverse order of their construction.
//
//   CCustomWizardDlg wizard(this);
//   WizardPageList pages(wizard);
//   m_wizardResult = wizard.DoModal();
//
// The routing tables address pages by these indices.
#pragma once

#include "ui_framework.h"

#include <memory>
#include <string>
#include <vector>

class CCustomWizardDlg;

// "KorSurf: ", "KorForm: ", ... by product group index 0 to 8; empty otherwise.
std::string WizardGroupPrefix(int group);

class WizardPageList {
public:
    explicit WizardPageList(CCustomWizardDlg& wizard);
    ~WizardPageList();
    WizardPageList(const WizardPageList&) = delete;
    WizardPageList& operator=(const WizardPageList&) = delete;

private:
    // Adds `page` to the wizard under `title` and keeps it.
    template <class Page> Page* Add(std::unique_ptr<Page> page, const std::string& title);
    // A title of a group's page: the group's prefix and the key's translation.
    static std::string GroupTitle(int group, const char* key);

    CCustomWizardDlg& m_wizard;
    std::vector<std::unique_ptr<korv::ui::CDialog>> m_pages;
};
