#include "application/RigCfg.h"

int main(int argc, char** argv) {
    CMidSpanCfgApp app;
    return korv::ui::AfxWinMain(app, argc, argv);
}
