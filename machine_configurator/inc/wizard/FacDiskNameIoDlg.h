// Asks for a drive unit name after a scan of a factory disk file found no
// fitting one: it shows what was found, the operator names the unit, and OK
// means scan again.
#pragma once

#include "ui_framework.h"

#include <string>

class CFacDiskNameIoDlg : public korv::ui::CDialog {
public:
    static constexpr int IDD = 164;
    static constexpr int IDC_FOUND_DRIVE_UNIT = 1001;
    static constexpr int IDC_SPECIFIED_DRIVE_UNIT = 1037;

    explicit CFacDiskNameIoDlg(korv::ui::CWnd* pParent = nullptr);

    std::string m_specifiedDriveUnit;
    std::string m_foundDriveUnit;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
};
