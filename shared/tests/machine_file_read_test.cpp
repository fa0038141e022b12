#include "machines_fixture.h"

using korv::diag::Channel;
using korv::testing::LogCapture;
using Strings = std::vector<std::string>;
using Texts = std::map<std::string, std::string>;

TEST_F(MachinesTest, ReadsEveryPartOfAPlainMachineFile) {
    machine("Rig7.INI", "[general]\nmachine=Rig 7\nkorctrl=powerpcctrl\nsimulation=true\n"
                        "timeout_until_0000_ready=0\nproducts=Form_Pro, KorGear // old\n"
                        "variants= V1 ,V_2,, ; two\n[compatibility_check]\nargs=other.py\n"
                        "[configure]\ncmdline=cfg.exe\nmode=create\n"
                        "[firmware_update]\ncmdline=fw.exe\nchecker=fw_check.exe\n"
                        "[update]\nsteps=step_a, b /* two */\n"
                        "[step a]\ncmdline=a.exe\ncwd=c:\\a\nchecker=a_check.exe\nsync=False\n"
                        "[b]\ncmdline=b.exe\nsync=false\n"
                        "[connection]\ntype=serial\nserial.port=COM3\nserial.baudrate=9600\n"
                        "serial.bytesize=8\nserial.parity=0\nserial.stopbits=1\nserial.protocol=2\n"
                        "serial.breakdelay=50\n[configuration]\ntarget=C:\\t.ini\nconfig=YT0x\n");
    // Named after the data file with ".ini" replaced ignoring case.
    machine("Rig7.loc", "[description]\nEN=Rig\nDE=Pruefstand\nxx=other\nde=lower\n"
                        "[V1.description]\nFR=banc\n[V 2.description]\nEN=two\n");
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("Rig7.INI", e));

    EXPECT_EQ(e.loc_filename, "Rig7.loc");
    EXPECT_EQ(e.timeout_until_0000_ready, 0);
    EXPECT_EQ(e.products, (Strings{"Form Pro", "KorGear"}));
    ASSERT_EQ(e.variants.size(), 2u);
    EXPECT_EQ(e.variants[1].name, "V 2");
    EXPECT_EQ(e.variants[0].descriptions, (Texts{{"FR", "banc"}}));
    EXPECT_EQ(e.variants[1].descriptions, (Texts{{"EN", "two"}}));
    EXPECT_EQ(e.descriptions, (Texts{{"DE", "Pruefstand"}, {"EN", "Rig"}}));

    // The powerpc preset stays where the file doesn't override it.
    EXPECT_EQ(e.compatibility_check.cmdline, "python");
    EXPECT_EQ(e.compatibility_check.cwd, "<KorCtrlTools>\\scripts");
    EXPECT_EQ(e.compatibility_check.args, "other.py");

    ASSERT_EQ(e.update_steps.size(), 2u);
    EXPECT_EQ(e.update_steps[0].name, "step a");
    EXPECT_EQ(e.update_steps[0].cwd, "c:\\a");
    EXPECT_TRUE(e.update_steps[0].sync) << "only the exact word false clears it";
    EXPECT_FALSE(e.update_steps[1].sync);
    EXPECT_EQ(e.checker, "a_check.exe") << "a step's checker overrides [firmware_update]";

    EXPECT_EQ(e.connection.serial_port, "COM3");
    EXPECT_EQ(e.connection.serial_baudrate, 9600);
    EXPECT_EQ(e.connection.serial_bytesize, 8);
    EXPECT_EQ(e.connection.serial_breakdelay, 50);
    EXPECT_EQ(e.target, "C:\\t.ini");
    EXPECT_EQ(e.config, "YT0x");
}

TEST_F(MachinesTest, DefaultsAndTolerantValues) {
    LogCapture log;
    machine("a.ini", plain_machine("korctrl=korecon\ndeveloper=yes\nproducts=A,_B\n",
                                   "tcp.speedup_ports=,80,,443\n"));
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("a.ini", e));
    EXPECT_EQ(e.timeout_until_0000_ready, 60);
    EXPECT_TRUE(e.compatibility_check.cmdline.empty()) << "no preset for other controls";
    EXPECT_EQ(e.loc_filename, "a.loc");
    EXPECT_EQ(e.products, (Strings{"A", " B"})) << "the writer's separator comes back blank";
    EXPECT_EQ(e.connection.tcp_host, "10.0.0.1");
    EXPECT_EQ(e.connection.tcp_port, 4000);
    EXPECT_EQ(e.connection.tcp_speedup_ports, (Strings{"80", "443"}));
    EXPECT_TRUE(e.descriptions.empty()) << "a missing .loc file is no error";
    // A number that isn't one is logged, and the read goes on.
    EXPECT_EQ(e.developer, 0);
    EXPECT_EQ(
        log.errors(),
        Strings{"ReadLongEntry(): ReadLongEntry entry [general] developer= failed from file " +
                std::string(kWinMachines) + "a.ini"});

    machine("b.ini", plain_machine("timeout_until_0000_ready=soon\n"));
    MachineEntry b;
    ASSERT_TRUE(configs().ReadMachineFile("b.ini", b));
    EXPECT_EQ(b.timeout_until_0000_ready, 60);
}

TEST_F(MachinesTest, RefusesBrokenMachineFiles) {
    const std::string in = std::string(" in file ") + kWinMachines + "m.ini";
    const Refusal cases[] = {
        {"[general]\nproducts= // none\n[connection]\ntype=pipe\npipe.machine=x\n",
         Channel::ErrorLog, 0, "ReadMachineFile(): failed to read [general] products" + in},
        {"[general]\nproducts=P\n", Channel::ErrorLog, 0,
         "ReadMachineFileConnection(): missing key (type)" + in},
        {"[general]\nproducts=P\n", Channel::Trace, 2,
         "ReadMachineFile(): invalid section [connection]" + in},
        {"[general]\nproducts=P\n", Channel::Trace, 3, "ReadMachineFile(): m.ini NOT added"},
        {"[general]\nproducts=P\n[connection]\ntype=TCP\n", Channel::ErrorLog, 0,
         std::string("ReadMachineFileConnection(): file ") + kWinMachines +
             "m.ini has unknown connection type: type = \"TCP\""},
        {"[general]\nproducts=P\n[connection]\ntype=tcp\ntcp.host=h\ntcp.port=http\n",
         Channel::ErrorLog, 0, "ReadMachineFileConnection(): missing key (tcp.port)" + in},
        {"[general]\nproducts=P\n[connection]\ntype=serial\nserial.port=COM1\n"
         "serial.baudrate=1\nserial.bytesize=8\nserial.stopbits=1\n",
         Channel::ErrorLog, 0, "ReadMachineFileConnection(): missing key (serial.parity)" + in},
        {"[general]\nproducts=P\n[connection]\ntype=pipe\n", Channel::ErrorLog, 0,
         "ReadMachineFileConnection(): missing key (pipe.machine)" + in},
        {plain_machine("", "[configuration]\nconfig=x\n"), Channel::ErrorLog, 0,
         "ReadMachineFile(): failed to read [configuration] target" + in},
        {plain_machine("variants=V1,V2\n", "[configure]\nmode=copy\n[V1.configuration]\n"
                                           "target=t\nconfig=c\n[V2.configuration]\ntarget=t\n"),
         Channel::Trace, 2, "ReadMachineFileVariants(): [V2.configuration] config not found"},
        {plain_machine("variants=V1\n", "[configure]\nmode=copy\n"), Channel::Trace, 2,
         "ReadMachineFile(): invalid variant(s)" + in},
        {"key before any section\n", Channel::Trace, 2,
         std::string("ReadMachineFile(): failed to open file ") + kWinMachines + "m.ini"},
    };
    for (const Refusal& c : cases)
        expect_refused("m.ini", c);

    LogCapture log;
    MachineEntry e;
    EXPECT_FALSE(configs().ReadMachineFile("none.ini", e));
    EXPECT_TRUE(
        logged(log, Channel::Trace, 2,
               std::string("ReadMachineFile(): file not found ") + kWinMachines + "none.ini"));
}

TEST_F(MachinesTest, VariantConfigurationsAreReadOnlyInCopyMode) {
    machine("m.ini", plain_machine("variants=V1\n", "[configure]\nmode=new\n"));
    MachineEntry e;
    EXPECT_TRUE(configs().ReadMachineFile("m.ini", e));

    machine("c.ini", plain_machine("variants=V1\n", "[configure]\nmode=copy\n[V1.configuration]\n"
                                                    "target=C:\\x.ini\nconfig=\n"));
    MachineEntry c;
    ASSERT_TRUE(configs().ReadMachineFile("c.ini", c));
    EXPECT_EQ(c.variants[0].target, "C:\\x.ini");
    EXPECT_EQ(c.variants[0].config, "");
}

TEST_F(MachinesTest, AliasBorrowsFromItsParent) {
    machine("Parent.ini", plain_machine("variants=V1, V2\nbitmap=p.bmp\ndescription=Parent\n"));
    machine("Parent.loc", "[description]\nEN=parent text\n[V1.description]\nEN=v1 text\n"
                          "[100.description]\nEN=unused\n");
    machine("Kid.alias", "[General]\n"
                         "file = Parent.ini ; the data\n"
                         "alias_machine_name = Kid  // name\n"
                         "alias_description=Kid rig\n"
                         "products=K_1, K2\n"
                         "[AliasIdentNo_100]\nparent_identno = V2\n"
                         "[XAliasIdentNo_12]\nparent_identno=V1 ; first\n"
                         "[AliasIdentNo_7]\nparent_identno=V9\n"
                         "[AliasIdent]\nparent_identno=V1\n");
    LogCapture log;
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("Kid.alias", e));
    EXPECT_EQ(e.file_name, "Kid.alias");
    EXPECT_EQ(e.data_file, "Parent.ini");
    EXPECT_EQ(e.alias_loc_filename, "Kid.loc");
    EXPECT_EQ(e.loc_filename, "Parent.loc");
    EXPECT_EQ(e.alias_machine_name, "Kid");
    EXPECT_EQ(e.machine, "M1");
    EXPECT_EQ(e.description, "Kid rig");
    EXPECT_EQ(e.bitmap, "p.bmp");
    EXPECT_EQ(e.products, (Strings{"K 1", "K2"}));
    // Section order; the number is cut at a fixed place, not behind the marker.
    ASSERT_EQ(e.variants.size(), 2u);
    EXPECT_EQ(e.variants[0].name, "V2");
    EXPECT_EQ(e.variants[0].alias_identno, "100");
    EXPECT_EQ(e.variants[1].name, "V1");
    EXPECT_EQ(e.variants[1].alias_identno, "_12");
    EXPECT_EQ(log.errors(), Strings{"ReadMachineFile(): Kid.alias AliasIdentNo_7 has undefined "
                                    "parent_identno=V9 (see file=Parent.ini)"});
    // Without a .loc of its own, the parent's texts by variant name.
    EXPECT_EQ(e.descriptions, (Texts{{"EN", "parent text"}}));
    EXPECT_TRUE(e.variants[0].descriptions.empty());
    EXPECT_EQ(e.variants[1].descriptions, (Texts{{"EN", "v1 text"}}));

    // The alias's own .loc takes over, and keys variants by alias number.
    machine("Kid.loc", "[description]\nEN=kid text\n[_12.description]\nEN=kid v1\n"
                       "[V1.description]\nEN=unused\n");
    MachineEntry k;
    ASSERT_TRUE(configs().ReadMachineFile("Kid.alias", k));
    EXPECT_EQ(k.descriptions, (Texts{{"EN", "kid text"}}));
    EXPECT_EQ(k.variants[1].descriptions, (Texts{{"EN", "kid v1"}}));
}

TEST_F(MachinesTest, RefusesBrokenAliases) {
    machine("Parent.ini", plain_machine("variants=V1\n"));
    const std::string in = std::string(" in file ") + kWinMachines + "a.alias";
    const Refusal cases[] = {
        {"[General]\nalias_machine_name=A\n", Channel::ErrorLog, 0,
         "ReadMachineFile(): [General] file missing" + in},
        {"[general]\nfile=Parent.ini\n", Channel::ErrorLog, 0,
         "ReadMachineFile(): [General] file missing" + in},
        {"[General]\nfile=Parent.ini\n[AliasIdentNo_1]\nparent_identno=V1\n", Channel::ErrorLog, 0,
         "ReadMachineFile(): [General] alias_machine_name missing" + in},
        {"[General]\nfile=Parent.ini\nalias_machine_name=A\n[AliasIdentNo_1]\nparent_identno=V_1\n",
         Channel::ErrorLog, 0, "ReadMachineFile(): no alias variants found" + in},
        {"[General]\nfile=Gone.ini\nalias_machine_name=A\n", Channel::Trace, 2,
         std::string("ReadMachineFile(): file not found ") + kWinMachines + "Gone.ini"},
    };
    for (const Refusal& c : cases)
        expect_refused("a.alias", c);
}
