// The one parsed command line of a run, readable for the whole run.
#pragma once

#include "ui_winapp.h"

#include <string>

class CCustomCommandLineInfo : public korv::ui::CCommandLineInfo {
public:
    // Takes one argument (its leading '-' or '/' already removed). The first key
    // it begins with, case-sensitive, receives the rest; a later argument with
    // the same key wins, and an argument that matches no key is dropped.
    void ParseParam(const char* param, bool flag, bool last) override;

    std::string m_control;
    std::string m_cwd;
    std::string m_lang;
    std::string m_productgroup;
    std::string m_machine;
    std::string m_file;
    std::string m_variant;
    std::string m_proxy;
    std::string m_alias_machine_name;
    std::string m_alias_variant;
};
