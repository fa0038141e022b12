#include "machines_fixture.h"

using korv::diag::Channel;
using korv::testing::LogCapture;

TEST_F(MachinesTest, WritesTheKeysTheWriterKnows) {
    machine("readme.txt", "");
    MachineEntry e;
    e.machine = "Rig 7";
    e.start_control.cmdline = "s.exe";
    e.configure = {"c.exe", "<korecon>", "", "", "", true, 0};
    e.timeout_until_0000_ready = 45;
    e.loc_filename = "W.loc";
    e.products = {"Form Pro", "B"};
    e.target = "C:\\t.ini";
    e.config = "YT0x";
    e.connection = {"tcp", "h", 7, {"80"}, "", 0, 0, 0, 0, 0, 0, ""};
    e.descriptions = {{"EN", "rig"}};
    // Read, never written.
    e.developer = 1;
    e.update_steps.push_back({"u.exe", "", "", "", "u", true, 0});
    LogCapture log;
    ASSERT_TRUE(configs().WriteMachineFile("W.ini", e));
    EXPECT_EQ(e.file_name, "W.ini");
    EXPECT_EQ(text("W.ini"),
              "[configuration]\r\ntarget=C:\\t.ini\r\nconfig=YT0x\r\n"
              "[configure]\r\ncmdline=c.exe\r\ncwd=<korecon>\r\n"
              "[connection]\r\ntype=tcp\r\ntcp.host=h\r\ntcp.port=7\r\n"
              "[general]\r\nmachine=Rig 7\r\ndescription=\r\nkorctrl=\r\nbitmap=\r\nsimulation=\r\n"
              "variantfolder=\r\nproduct_group=\r\ntimeout_until_0000_ready=45\r\n"
              "loc_filename=W.loc\r\nproducts=Form_Pro,_B\r\nvariants=\r\n"
              "[start_control]\r\ncmdline=s.exe\r\ncwd=\r\n");
    EXPECT_EQ(text("W.loc"), "[description]\r\nEN=rig\r\n");
    // The trace of [configure] cwd names the key cmdline.
    EXPECT_TRUE(
        logged(log, Channel::Trace, 5, "WriteMachineFile(): [configure] cmdline = <korecon>"));
    EXPECT_TRUE(log.errors().empty());

    EXPECT_FALSE(configs().WriteMachineFile("no_dir\\W.ini", e));
    EXPECT_EQ(log.errors(), Strings{std::string("WriteMachineFile(): error save file ") + kWin +
                                    "no_dir\\W.ini"});
}

TEST_F(MachinesTest, RewriteKeepsWhatTheWriterDoesNotKnow) {
    machine("m.ini", "[general]\r\ndeveloper=1\r\nproducts=P\r\n"
                     "[configuration]\r\ntarget=old_t\r\nconfig=old_c\r\n"
                     "[connection]\r\ntype=tcp\r\ntcp.host=h\r\ntcp.port=1\r\n"
                     "tcp.speedup_ports=80,81\r\n[firmware_update]\r\ncmdline=fw.exe\r\n");
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("m.ini", e));
    e.firmware_update.cmdline.clear();
    e.variants.resize(2);
    e.variants[0].name = "V 1";
    e.variants[0].target = "t1";
    e.variants[0].descriptions = {{"DE", "eins"}};
    e.variants[1].name = "V2";
    ASSERT_TRUE(configs().WriteMachineFile("m.ini", e));

    const std::string written = text("m.ini");
    for (const char* kept :
         {"developer=1\r\n", "tcp.speedup_ports=80,81\r\n",
          "[configuration]\r\ntarget=old_t\r\nconfig=old_c\r\n",
          "[firmware_update]\r\ncmdline=fw.exe\r\n",
          "[V 1.configuration]\r\ntarget=t1\r\nconfig=\r\n",
          "[V2.configuration]\r\ntarget=\r\nconfig=\r\n", "variants=V 1, V2\r\n"})
        EXPECT_NE(written.find(kept), std::string::npos) << kept;
    EXPECT_EQ(text("m.loc"), "[V 1.description]\r\nDE=eins\r\n");
}
