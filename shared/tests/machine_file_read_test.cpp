#include "machines_fixture.h"

using korv::diag::Channel;
using korv::testing::LogCapture;
using Texts = std::map<std::string, std::string>;

TEST_F(MachinesTest, ReadsAPlainMachineFile) {
    machine("Rig7.INI",
            "[general]\nkorctrl=powerpcctrl\ndeveloper=yes\ntimeout_until_0000_ready=0\n"
            "products=Form_Pro, KorGear // old\nvariants= V1 ,V_2,, ; two\n"
            "[compatibility_check]\nargs=other.py\n[firmware_update]\nchecker=fw.exe\n"
            "[update]\nsteps=step_a, b /* two */\n"
            "[step a]\ncmdline=a.exe\nchecker=a_check.exe\nsync=False\n[b]\nsync=false\n"
            "[connection]\ntype=serial\nserial.port=COM3\nserial.baudrate=9600\n"
            "serial.bytesize=8\nserial.parity=0\nserial.stopbits=1\nserial.protocol=2\n"
            "serial.breakdelay=50\n[configuration]\ntarget=C:\\t.ini\nconfig=YT0x\n");
    // Named after the data file, ".ini" replaced ignoring case; known codes only.
    machine("Rig7.loc", "[description]\nEN=Rig\nxx=other\nde=lower\n[V 2.description]\nEN=two\n");
    LogCapture log;
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("Rig7.INI", e));
    EXPECT_EQ(e.timeout_until_0000_ready, 0);
    EXPECT_EQ(e.products, (Strings{"Form Pro", "KorGear"}));
    ASSERT_EQ(e.variants.size(), 2u);
    EXPECT_EQ(e.variants[1].name, "V 2");
    EXPECT_EQ(e.variants[1].descriptions, (Texts{{"EN", "two"}}));
    EXPECT_EQ(e.descriptions, (Texts{{"EN", "Rig"}}));
    // The powerpc preset stays where the file doesn't override it.
    EXPECT_EQ(e.compatibility_check.cmdline + "|" + e.compatibility_check.args, "python|other.py");
    ASSERT_EQ(e.update_steps.size(), 2u);
    EXPECT_EQ(e.update_steps[0].name + "|" + e.update_steps[0].cmdline, "step a|a.exe");
    EXPECT_TRUE(e.update_steps[0].sync) << "only the exact word false clears it";
    EXPECT_FALSE(e.update_steps[1].sync);
    EXPECT_EQ(e.checker, "a_check.exe") << "a step's checker overrides [firmware_update]";
    EXPECT_EQ(e.connection.serial_baudrate + e.connection.serial_breakdelay, 9650);
    EXPECT_EQ(e.config, "YT0x");
    // A number that isn't one is logged, and the read goes on.
    EXPECT_EQ(e.developer, 0);
    EXPECT_EQ(log.errors(), Strings{std::string("ReadLongEntry(): ReadLongEntry entry [general] "
                                                "developer= failed from file ") +
                                    kWin + "Rig7.INI"});

    machine("a.ini", plain_machine("timeout_until_0000_ready=soon\nproducts=A,_B\n",
                                   "tcp.speedup_ports=,80,,443\n"));
    e = MachineEntry{};
    ASSERT_TRUE(configs().ReadMachineFile("a.ini", e));
    EXPECT_EQ(e.timeout_until_0000_ready, 60);
    EXPECT_TRUE(e.compatibility_check.cmdline.empty()) << "no preset for other controls";
    EXPECT_EQ(e.products, (Strings{"A", " B"})) << "the writer's separator comes back blank";
    EXPECT_EQ(e.connection.tcp_speedup_ports, (Strings{"80", "443"}));
}

// Each refusal with its own message in its channel and level, then the dump.
TEST_F(MachinesTest, RefusesBrokenFiles) {
    machine("Parent.ini", plain_machine("variants=V1\n"));
    const std::string m = std::string(" in file ") + kWin + "m.ini";
    const std::string a = std::string(" in file ") + kWin + "a.alias";
    const std::string copy_v1 = "[configure]\nmode=copy\n[V1.configuration]\ntarget=t\n";
    const std::string alias = "[General]\nfile=Parent.ini\nalias_machine_name=A\n";
    const struct {
        const char* file;
        std::string text;
        Channel channel;
        int level;
        std::string message;
    } cases[] = {
        {"m.ini", "[general]\nproducts= // none\n[connection]\ntype=pipe\npipe.machine=x\n",
         Channel::ErrorLog, 0, "ReadMachineFile(): failed to read [general] products" + m},
        {"m.ini", "[general]\nproducts=P\n", Channel::ErrorLog, 0,
         "ReadMachineFileConnection(): missing key (type)" + m},
        {"m.ini", "[general]\nproducts=P\n", Channel::Trace, 2,
         "ReadMachineFile(): invalid section [connection]" + m},
        {"m.ini", "[general]\nproducts=P\n[connection]\ntype=TCP\n", Channel::ErrorLog, 0,
         std::string("ReadMachineFileConnection(): file ") + kWin +
             "m.ini has unknown connection type: type = \"TCP\""},
        {"m.ini", "[general]\nproducts=P\n[connection]\ntype=tcp\ntcp.host=h\ntcp.port=http\n",
         Channel::ErrorLog, 0, "ReadMachineFileConnection(): missing key (tcp.port)" + m},
        {"m.ini",
         "[general]\nproducts=P\n[connection]\ntype=serial\nserial.port=COM1\n"
         "serial.baudrate=1\nserial.bytesize=8\nserial.stopbits=1\n",
         Channel::ErrorLog, 0, "ReadMachineFileConnection(): missing key (serial.parity)" + m},
        {"m.ini", plain_machine("", "[configuration]\nconfig=x\n"), Channel::ErrorLog, 0,
         "ReadMachineFile(): failed to read [configuration] target" + m},
        {"m.ini", plain_machine("variants=V1\n", copy_v1), Channel::Trace, 2,
         "ReadMachineFileVariants(): [V1.configuration] config not found"},
        {"m.ini", "key before any section\n", Channel::Trace, 2,
         std::string("ReadMachineFile(): failed to open file ") + kWin + "m.ini"},
        {"a.alias", "[general]\nfile=Parent.ini\n", Channel::ErrorLog, 0,
         "ReadMachineFile(): [General] file missing" + a},
        {"a.alias", "[General]\nfile=Parent.ini\n", Channel::ErrorLog, 0,
         "ReadMachineFile(): [General] alias_machine_name missing" + a},
        {"a.alias", alias + "[AliasIdentNo_1]\nparent_identno=V_1\n", Channel::ErrorLog, 0,
         "ReadMachineFile(): no alias variants found" + a},
        {"a.alias", "[General]\nfile=Gone.ini\n", Channel::Trace, 2,
         std::string("ReadMachineFile(): file not found ") + kWin + "Gone.ini"},
    };
    for (const auto& c : cases) {
        machine(c.file, c.text);
        LogCapture log;
        MachineEntry e;
        EXPECT_FALSE(configs().ReadMachineFile(c.file, e)) << c.text;
        EXPECT_TRUE(logged(log, c.channel, c.level, c.message)) << c.message;
        EXPECT_TRUE(logged(log, Channel::ErrorLog, 0, "Configs::ReadMachineFile(): failed"));
    }
    // Without copy mode the variant's section isn't looked at.
    machine("m.ini", plain_machine("variants=V1\n"));
    MachineEntry e;
    EXPECT_TRUE(configs().ReadMachineFile("m.ini", e));
}

TEST_F(MachinesTest, AliasBorrowsFromItsParent) {
    machine("Parent.ini", plain_machine("variants=V1, V2\nbitmap=p.bmp\ndescription=Parent\n"));
    machine("Parent.loc", "[description]\nEN=parent\n[V1.description]\nEN=v1\n");
    machine("Kid.alias", "[General]\nfile = Parent.ini ; the data\n"
                         "alias_machine_name = Kid  // name\nalias_description=Kid rig\n"
                         "products=K_1, K2\n[AliasIdentNo_100]\nparent_identno = V2\n"
                         "[XAliasIdentNo_12]\nparent_identno=V1 ; first\n"
                         "[AliasIdentNo_7]\nparent_identno=V9\n[AliasIdent]\nparent_identno=V1\n");
    LogCapture log;
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("Kid.alias", e));
    EXPECT_EQ(e.data_file + "|" + e.alias_loc_filename + "|" + e.loc_filename,
              "Parent.ini|Kid.loc|Parent.loc");
    EXPECT_EQ(e.alias_machine_name + "|" + e.description + "|" + e.bitmap, "Kid|Kid rig|p.bmp");
    EXPECT_EQ(e.products, (Strings{"K 1", "K2"}));
    // Section order; the number is cut at a fixed place, not behind the marker.
    ASSERT_EQ(e.variants.size(), 2u);
    EXPECT_EQ(e.variants[0].name + "=" + e.variants[0].alias_identno, "V2=100");
    EXPECT_EQ(e.variants[1].name + "=" + e.variants[1].alias_identno, "V1=_12");
    EXPECT_EQ(log.errors(), Strings{"ReadMachineFile(): Kid.alias AliasIdentNo_7 has undefined "
                                    "parent_identno=V9 (see file=Parent.ini)"});
    // Without a .loc of its own, the parent's texts by variant name.
    EXPECT_EQ(e.descriptions, (Texts{{"EN", "parent"}}));
    EXPECT_EQ(e.variants[1].descriptions, (Texts{{"EN", "v1"}}));

    // The alias's own .loc takes over, and keys variants by alias number.
    machine("Kid.loc", "[description]\nEN=kid\n[_12.description]\nEN=kid v1\n");
    e = MachineEntry{};
    ASSERT_TRUE(configs().ReadMachineFile("Kid.alias", e));
    EXPECT_EQ(e.descriptions, (Texts{{"EN", "kid"}}));
    EXPECT_EQ(e.variants[1].descriptions, (Texts{{"EN", "kid v1"}}));
}
