#include "rigcfg_files_fixture.h"

#include <algorithm>
#include <filesystem>

using namespace rigcfg_test;

namespace {

constexpr const char* kComment = "       // don't start KorSim [changed by machine configurator]";

class ControlFiles : public FilesTest {
protected:
    void SetUp() override {
        FilesTest::SetUp();
        dlg = make_dialog(ProductTypeKorECon);
    }
    // A configuration as the KorECon world holds it.
    void configure(const std::string& group, const std::string& machine, const std::string& order,
                   const std::string& proxy, const std::string& folder = "") {
        dlg->m_record = {order, machine, group, folder, proxy};
        dlg->m_actGroup = group;
        dlg->m_actProxy = proxy;
    }
    std::string machine_folder(const std::string& name, const std::string& board) {
        write(name + "/machine.ini", "[MACHINE]\r\nBoardType=" + board + "\r\n");
        return std::string(kApp) + name + "\\";
    }
    std::string launcher_root() const { return value("launcher.ini", "general", "root"); }
    std::unique_ptr<CMidSpanCfgDlg> dlg;
};

TEST_F(ControlFiles, SimulationReportsItsIdentity) {
    write("korecon.ini", "[configuration]\r\ndynamic_path=C:\\dyn\r\n[korecon_ioman]\r\nusb=1\r\n");
    write("launcher.ini", "[general]\r\nroot=korecon\r\n[korsim]\r\n3=visualisation\r\n");
    configure("KORSIM", "KorShaftScopeSim", "1234", "");
    dlg->UpdateConfigFilesKorEcon();
    EXPECT_EQ(read("korecon.ini"),
              "[configuration]\r\nmachine_name=KorShaftScopeSim_1234\r\nmachine_serial=0000_08\r\n"
              "machine_orderno=1234\r\n[korecon_ioman]\r\nusb=0\r\n");
    EXPECT_EQ(read("launcher.ini"),
              "[general]\r\nroot=korsim\r\n[korsim]\r\n3=" + std::string(kComment) + "\r\n");
    EXPECT_TRUE(boxes.empty());

    // Leaving the simulation drops the identity and names the folder again.
    configure("FORM", "KMQ 1", "9", "", std::string(kApp) + "m\\");
    dlg->UpdateConfigFilesKorEcon();
    EXPECT_EQ(read("korecon.ini"), "[configuration]\r\ndynamic_path=" + std::string(kApp) +
                                       "m\\\r\n[korecon_ioman]\r\nusb=1\r\n");
}

TEST_F(ControlFiles, RootAndUsbFollowGroupBoardAndProxy) {
    write("launcher.ini", "[general]\r\nroot=x\r\n");
    const struct {
        const char *group, *board, *proxy, *root, *usb;
    } rows[] = {
        {"KORSIM", "KECPU", "cameraproxy", "korsim", "0"},
        {"FORM", "KECPU", "cameraproxy", "korecon", "1"},
        {"FORM", "PPC-A21", "korecon", "ppc", "0"},
        {"KORSHAFT", "PPC-A21", "cameraproxy", "proxy", "0"},
        {"KORGEAR", "", "", "ppc", "0"},
        {"KORSURF", "ppc-a21", "", "ppc", "0"}, // unknown board: as if empty
        {"FORM", "", "", "korecon", "1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.group) + " " + row.board + " " + row.proxy);
        configure(row.group, "M", "1", row.proxy, machine_folder("m", row.board));
        log.clear();
        dlg->UpdateConfigFilesKorEcon();
        EXPECT_EQ(launcher_root(), row.root);
        EXPECT_EQ(value("korecon.ini", "korecon_ioman", "usb"), row.usb);
        EXPECT_EQ(
            has_trace("CMidSpanCfgDlg::UpdateConfigFilesKorEcon; unknown board type \"ppc-a21\" "
                      "from folder \"" +
                      std::string(kApp) + "m\\\""),
            std::string(row.board) == "ppc-a21");
    }
}

TEST_F(ControlFiles, FilesAreWrittenInTheirOrder) {
    write("launcher.ini", "[general]\r\nroot=ppc\r\n");
    configure("FORM", "M", "1", "fiberproxy");
    dlg->UpdateConfigFilesKorEcon();
    // Where each file's trace stands: machine tree, camera list, korecon.ini, launcher.ini.
    const std::vector<std::string> traces = log.traces();
    std::vector<std::size_t> at;
    for (const std::string& part :
         {std::string("mtmachineloader.ini updated to"), std::string("qidcamera.ini updated"),
          "save done for " + std::string(kApp) + "korecon.ini",
          std::string("set [general] root= korecon")})
        at.push_back(
            std::find_if(traces.begin(), traces.end(),
                         [&](const std::string& t) { return t.find(part) != std::string::npos; }) -
            traces.begin());
    ASSERT_LT(at.back(), traces.size());
    EXPECT_TRUE(std::is_sorted(at.begin(), at.end())) << at[0] << at[1] << at[2] << at[3];
}

TEST_F(ControlFiles, UnchangedConfigurationRewritesOnlyKoreconIni) {
    write("launcher.ini", "[general]\r\nroot=korecon\r\n");
    configure("FORM", "M", "1", "interpolcncproxy");
    dlg->UpdateConfigFilesKorEcon();
    const char* files[] = {"launcher.ini",           "mtmachineloader.ini",  "m2kortalk.ini",
                           "m2kortalk_cnctable.ini", "camera/qidcamera.ini", "korecon.ini"};
    std::vector<std::filesystem::file_time_type> before;
    for (const char* file : files) {
        ASSERT_TRUE(exists(file)) << file;
        age(file);
        before.push_back(mtime(file));
    }
    dlg->UpdateConfigFilesKorEcon();
    for (std::size_t i = 0; i + 1 < std::size(files); ++i)
        EXPECT_EQ(mtime(files[i]), before[i]) << files[i];
    EXPECT_NE(mtime("korecon.ini"), before.back());
    EXPECT_TRUE(boxes.empty());
}

TEST_F(ControlFiles, MissingLauncherIsNoErrorButAMissingFolderShowsOneBox) {
    configure("FORM", "M", "1", "");
    dlg->UpdateConfigFilesKorEcon();
    EXPECT_FALSE(exists("launcher.ini"));
    EXPECT_TRUE(exists("korecon.ini"));
    EXPECT_TRUE(boxes.empty());
    EXPECT_TRUE(own_errors().empty());

    dlg->m_appFolder = std::string(kApp) + "gone\\";
    configure("FORM", "M", "1", "cncproxy");
    dlg->UpdateConfigFilesKorEcon();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text,
              "Error: Can't update korecon.ini.msg\n\n" + dlg->m_appFolder + "launcher.ini");
    EXPECT_EQ(boxes[0].type, korv::ui::MB_ICONSTOP);
    EXPECT_TRUE(log.has_error("UpdateMachineTree(): machine_tree.Save() failed"));
    EXPECT_TRUE(log.has_error("StoreConfigFolder_KorEcon() mini::Save() failed"));
    EXPECT_FALSE(exists("gone"));
}

TEST_F(ControlFiles, BadInputFilesTakeTheirPaths) {
    // A korecon.ini that does not parse ends the update before anything is written.
    write("korecon.ini", "[configuration]\r\nno entry\r\n");
    configure("FORM", "M", "1", "fiberproxy");
    dlg->UpdateConfigFilesKorEcon();
    EXPECT_EQ(read("korecon.ini"), "[configuration]\r\nno entry\r\n");
    EXPECT_FALSE(exists("mtmachineloader.ini"));

    // A machine.ini with a UTF-16 mark counts as no board type.
    write("korecon.ini", "");
    write("launcher.ini", "[general]\r\nroot=ppc\r\n");
    write("m/machine.ini", std::string("\xFF\xFE[\0M\0", 6));
    configure("FORM", "M", "1", "", std::string(kApp) + "m\\");
    dlg->UpdateConfigFilesKorEcon();
    EXPECT_EQ(launcher_root(), "korecon");
    EXPECT_EQ(value("korecon.ini", "korecon_ioman", "usb"), "1");
    EXPECT_TRUE(boxes.empty());
}

// An unknown proxy falls back to korecon, and the line names korecon.
TEST_F(ControlFiles, MachineTreeForTheProxy) {
    const struct {
        const char *proxy, *group, *loader, *talk, *error;
    } cases[] = {
        {"cameraproxy", "KORGEOMETRY",
         "[MachineTree]\r\nroot=cameraproxy\r\ncameraproxy=m2kortalk,qidcamera\r\n",
         "[connection]\r\nhost=192.168.111.1\r\n", nullptr},
        {"cameraproxy", "FORM",
         "[MachineTree]\r\nroot=cameraproxy\r\ncameraproxy=korecon,qidcamera\r\n", "", nullptr},
        {"interpolproxy", "KORSIM",
         "[MachineTree]\r\nroot=interpolproxy\r\ninterpolproxy=korecon,qidcamera\r\n",
         "[connection]\r\nhost=192.168.111.1\r\n", nullptr},
        {"cncproxy", "FORM",
         "[MachineTree]\r\nroot=cncproxy\r\ncncproxy=korecon,m2kortalk,m2kortalk_cnctable\r\n"
         "[MachineTypes]\r\ncncproxy=proxy\r\nm2kortalk_cnctable=m2kortalk\r\n",
         "[connection]\r\nhost=192.168.70.73\r\n", nullptr},
        {"", "FORM", "[MachineTree]\r\nroot=korecon\r\n", "", nullptr},
        {"foo", "FORM", "[MachineTree]\r\nroot=korecon\r\n", "",
         "CMidSpanCfgDlg::UpdateMachineTree:(): unknown proxy : korecon, set to default "
         "[MachineTree] root=korecon"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.proxy) + " " + c.group);
        for (const char* file : {"mtmachineloader.ini", "m2kortalk.ini", "m2kortalk_cnctable.ini"})
            std::filesystem::remove(host(file));
        configure(c.group, "M", "1", c.proxy);
        log.clear();
        ASSERT_TRUE(dlg->UpdateMachineTree(kApp));
        EXPECT_EQ(read("mtmachineloader.ini"), c.loader);
        EXPECT_EQ(read("m2kortalk.ini"), c.talk);
        EXPECT_EQ(own_errors(),
                  c.error ? std::vector<std::string>{c.error} : std::vector<std::string>{});
        const std::string proxy = c.error ? "korecon" : c.proxy;
        EXPECT_EQ(dlg->m_actProxy + "|" + dlg->m_record.proxy, proxy + "|" + proxy);
    }
    EXPECT_EQ(read("m2kortalk_cnctable.ini"), "");

    // The legacy file is updated only where it is there.
    write("m2kortalk_cnctable/m2kortalk.ini", "[connection]\r\nhost=1.2.3.4\r\nport=7\r\n");
    configure("FORM", "M", "1", "cncproxy");
    ASSERT_TRUE(dlg->UpdateMachineTree(kApp));
    EXPECT_EQ(read("m2kortalk_cnctable/m2kortalk.ini"),
              "[connection]\r\nhost=192.168.70.73\r\nport=7\r\n");
}

TEST_F(ControlFiles, CameraList) {
    const struct {
        const char *group, *machine, *proxy, *camera;
    } rows[] = {
        {"KORSIM", "M", "", "Virtual"},
        {"FORM", "KorShaftScope250", "cameraproxy", "ABS_UK31256"},
        {"FORM", "KorShaftScope100", "cameraproxy", nullptr},
        {"FORM", "M", "fiberproxy", "ABS_LC9010"},
        {"FORM", "M", "cncproxy", nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.machine) + " " + row.proxy);
        configure(row.group, row.machine, "1", row.proxy);
        ASSERT_TRUE(dlg->UpdateCameraList(kApp));
        if (row.camera) {
            EXPECT_EQ(read("camera/qidcamera.ini"),
                      "[ConManPlugin]\r\ncamera_1=" + std::string(row.camera) + "\r\n");
        } else {
            EXPECT_FALSE(exists("camera"));
        }
        std::filesystem::remove_all(host("camera"));
    }
    // A file that is right already, or names another camera, is left alone.
    write("camera/qidcamera.ini", "; cameras\r\n[ConManPlugin]\r\ncamera_1=AVT\r\n");
    age("camera/qidcamera.ini");
    const auto before = mtime("camera/qidcamera.ini");
    configure("FORM", "M", "1", "twiproxy");
    ASSERT_TRUE(dlg->UpdateCameraList(kApp));
    configure("FORM", "M", "1", "cncproxy");
    ASSERT_TRUE(dlg->UpdateCameraList(kApp));
    EXPECT_EQ(mtime("camera/qidcamera.ini"), before);
}

} // namespace
