#include "ui_winapp.h"

#include <gtest/gtest.h>

using namespace korv::ui;

namespace {

class Arguments : public CCommandLineInfo {
public:
    std::vector<std::string> seen;
    void ParseParam(const char* param, bool flag, bool last) override {
        seen.push_back(std::string(param) + (flag ? " flag" : "") + (last ? " last" : ""));
    }
};

class App : public CWinApp {
public:
    Arguments arguments;
    bool init_answer = false;
    bool InitInstance() override {
        ParseCommandLine(arguments);
        return init_answer;
    }
    int ExitInstance() override { return -5; }
};

} // namespace

TEST(WinApp, ArgumentsLoseTheirSwitchCharAndExitInstanceGivesTheCode) {
    EXPECT_EQ(AfxGetApp(), nullptr);
    {
        App app;
        EXPECT_EQ(AfxGetApp(), &app);
        const char* argv[] = {"rigcfg", "/file=a b", "-lang=de", "control=korecon", ""};
        EXPECT_EQ(AfxWinMain(app, 5, const_cast<char**>(argv)), -5);
        EXPECT_EQ(app.arguments.seen, (std::vector<std::string>{"file=a b flag", "lang=de flag",
                                                                "control=korecon", " last"}));
        app.init_answer = true;
        app.arguments.seen.clear();
        EXPECT_EQ(AfxWinMain(app, 1, const_cast<char**>(argv)), -5)
            << "without a message loop a true InitInstance ends the same way";
        EXPECT_TRUE(app.arguments.seen.empty());
    }
    EXPECT_EQ(AfxGetApp(), nullptr);
}
