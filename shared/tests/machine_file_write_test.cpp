#include "machines_fixture.h"

using korv::diag::Channel;
using korv::testing::LogCapture;
using Strings = std::vector<std::string>;

namespace {

MachineEntry tcp_entry() {
    MachineEntry e;
    e.machine = "Rig 7";
    e.description = "Rig seven";
    e.korctrl = "korecon";
    e.start_control.cmdline = "s.exe";
    e.bitmap = "r.bmp";
    e.simulation = "false";
    e.configure = {"c.exe", "<korecon>", "", "", "", true, 0};
    e.variantfolder = "<korecon>\\v";
    e.product_group = "FORM";
    e.timeout_until_0000_ready = 45;
    e.loc_filename = "W.loc";
    e.products = {"Form Pro", "B"};
    e.target = "C:\\t.ini";
    e.config = "YT0x";
    e.connection.type = "tcp";
    e.connection.tcp_host = "h";
    e.connection.tcp_port = 7;
    e.connection.tcp_speedup_ports = {"80"};
    e.descriptions = {{"EN", "rig"}};
    // Read, never written.
    e.developer = 1;
    e.compatibility_check.cmdline = "python";
    e.update_steps.push_back({"u.exe", "", "", "", "u", true, 0});
    return e;
}

} // namespace

TEST_F(MachinesTest, WritesTheKeysTheWriterKnows) {
    machine("readme.txt", "");
    LogCapture log;
    MachineEntry e = tcp_entry();
    ASSERT_TRUE(configs().WriteMachineFile("W.ini", e));
    EXPECT_EQ(e.file_name, "W.ini");
    EXPECT_EQ(machine_text("W.ini"),
              "[configuration]\r\ntarget=C:\\t.ini\r\nconfig=YT0x\r\n"
              "[configure]\r\ncmdline=c.exe\r\ncwd=<korecon>\r\n"
              "[connection]\r\ntype=tcp\r\ntcp.host=h\r\ntcp.port=7\r\n"
              "[general]\r\nmachine=Rig 7\r\ndescription=Rig seven\r\nkorctrl=korecon\r\n"
              "bitmap=r.bmp\r\nsimulation=false\r\nvariantfolder=<korecon>\\v\r\n"
              "product_group=FORM\r\ntimeout_until_0000_ready=45\r\nloc_filename=W.loc\r\n"
              "products=Form_Pro,_B\r\nvariants=\r\n"
              "[start_control]\r\ncmdline=s.exe\r\ncwd=\r\n");
    EXPECT_EQ(machine_text("W.loc"), "[description]\r\nEN=rig\r\n");
    // The trace of [configure] cwd names the key cmdline.
    EXPECT_TRUE(
        logged(log, Channel::Trace, 5, "WriteMachineFile(): [configure] cmdline = <korecon>"));
    EXPECT_TRUE(log.errors().empty());

    // What the writer leaves out reads back as defaults, and the products
    // come back with the separator's blank.
    MachineEntry back;
    ASSERT_TRUE(configs().ReadMachineFile("W.ini", back));
    EXPECT_EQ(back.products, (Strings{"Form Pro", " B"}));
    EXPECT_EQ(back.developer, 0);
    EXPECT_TRUE(back.update_steps.empty());
    EXPECT_TRUE(back.connection.tcp_speedup_ports.empty());
    EXPECT_EQ(back.descriptions, e.descriptions);
    EXPECT_EQ(back.timeout_until_0000_ready, 45);
    EXPECT_EQ(back.config, "YT0x");
}

TEST_F(MachinesTest, RewriteKeepsWhatTheWriterDoesNotKnow) {
    machine("m.ini", "[general]\r\nmachine=old\r\ndeveloper=1\r\nproducts=P\r\n"
                     "[configuration]\r\ntarget=old_t\r\nconfig=old_c\r\n"
                     "[connection]\r\ntype=tcp\r\ntcp.host=h\r\ntcp.port=1\r\n"
                     "tcp.speedup_ports=80,81\r\n"
                     "[firmware_update]\r\ncmdline=fw.exe\r\n");
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("m.ini", e));
    e.machine = "new";
    e.firmware_update.cmdline.clear();
    e.variants.resize(2);
    e.variants[0].name = "V 1";
    e.variants[0].target = "t1";
    e.variants[0].descriptions = {{"DE", "eins"}};
    e.variants[1].name = "V2";
    ASSERT_TRUE(configs().WriteMachineFile("m.ini", e));

    const std::string text = machine_text("m.ini");
    EXPECT_NE(text.find("machine=new\r\n"), std::string::npos);
    EXPECT_NE(text.find("developer=1\r\n"), std::string::npos);
    EXPECT_NE(text.find("tcp.speedup_ports=80,81\r\n"), std::string::npos);
    // With variants the old [configuration] stays as it was.
    EXPECT_NE(text.find("[configuration]\r\ntarget=old_t\r\nconfig=old_c\r\n"), std::string::npos);
    // An empty command isn't written, so the old value stays.
    EXPECT_NE(text.find("[firmware_update]\r\ncmdline=fw.exe\r\n"), std::string::npos);
    EXPECT_NE(text.find("[V 1.configuration]\r\ntarget=t1\r\nconfig=\r\n"), std::string::npos);
    EXPECT_NE(text.find("[V2.configuration]\r\ntarget=\r\nconfig=\r\n"), std::string::npos);
    EXPECT_NE(text.find("variants=V 1, V2\r\n"), std::string::npos);
    EXPECT_EQ(machine_text("m.loc"), "[V 1.description]\r\nDE=eins\r\n");
}

TEST_F(MachinesTest, WriteFailuresGoToTheErrorLog) {
    MachineEntry e = tcp_entry();
    LogCapture log;
    EXPECT_FALSE(configs().WriteMachineFile("no_dir\\W.ini", e));
    EXPECT_EQ(log.errors(), Strings{std::string("WriteMachineFile(): error save file ") +
                                    kWinMachines + "no_dir\\W.ini"});
    EXPECT_FALSE(machine_exists("no_dir"));

    machine("bad.ini", "entry before a section\r\n");
    log.clear();
    EXPECT_FALSE(configs().WriteMachineFile("bad.ini", e));
    EXPECT_EQ(log.errors(), Strings{std::string("WriteMachineFile(): failed to open file ") +
                                    kWinMachines + "bad.ini"});
    EXPECT_EQ(machine_text("bad.ini"), "entry before a section\r\n");
}
