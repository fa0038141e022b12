// The configuration wizard: the frame with the routing of the 32 pages, the
// strings a run hands back, the tool tips and the presets of the command line.
//
// The result strings are filled on each arrival at the summary page, from what
// the pages show then; nothing else computes them.
#pragma once

#include "wizard/WizardDlg.h"

#include <cstdint>
#include <string>

class CWizNewPage2a;
class CWizNewPageForm2;
class CWizProxies;

class CCustomWizardDlg : public CWizardDlg {
public:
    explicit CCustomWizardDlg(CMidSpanCfgDlg* pParent);

    void SetCurSel(int index) override;

    // Builds the summary text on page 31 and the result strings.
    void BuildSummary();
    // The interface form of group 0: drive units, table and stands of pages 1 to 4.
    void BuildContourSummary();
    // Every machine-based group; `proxyPage` may be null.
    void BuildMachineSummary(CWizNewPage2a* machinePage, CWizNewPageForm2* formPage,
                             CWizProxies* proxyPage, std::uint32_t mask);

    // 0 if the caller may go on with the directory `path`, -1 if not. Asks
    // before creating a missing one (`askToCreate`) and before using one that
    // exists (`askIfExists`); creates one level only.
    int EnsureDirectoryExists(std::string path, bool askIfExists, bool askToCreate);

    CMidSpanCfgDlg* m_pMainDlg;
    std::string m_resGroup;
    std::string m_resDriveUnit;
    std::string m_resTable;
    std::string m_resStand;
    std::string m_resControl;
    std::string m_resProxy;
    std::string m_resTabDirectory; // nothing fills it
    std::string m_resMachine;
    std::string m_resOrderNo;
    std::string m_resIniFolder;
    std::string m_resIniFile;
    korv::ui::CDlgToolTipCtrl m_toolTip;

protected:
    bool OnInitDialog() override;

private:
    // The "productgroup=" preset; "SURFACE" for a machine description of mode "new".
    std::string PresetGroup() const;
    // The "machine=" value of the command line; empty without an application.
    std::string PresetMachine() const;
    // The summary text being built; null without the summary page.
    std::string* SummaryText() const;
};
