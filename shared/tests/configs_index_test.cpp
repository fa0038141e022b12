#include "machines_fixture.h"

using korv::diag::Channel;
using korv::testing::LogCapture;
using Strings = std::vector<std::string>;

namespace {

const char* const kProductsIni = "drive_c/Program Files/korv/korwin/product_infos/products.ini";

Strings file_names(const Configs& c) {
    Strings names;
    for (const MachineEntry& e : c.m_vecMachines)
        names.push_back(e.file_name);
    return names;
}

Strings product_names(const Configs& c) {
    Strings names;
    for (const ProductEntry& p : c.m_vecProducts)
        names.push_back(p.name + "=" + p.description);
    return names;
}

} // namespace

TEST_F(MachinesTest, ConstructorTakesItsSettings) {
    {
        LogCapture log;
        _KTrace_SetLevel("korv_shared", 1);
        Configs c;
        EXPECT_EQ(c.m_strDataFolder, "C:\\ProgramData\\Korv\\KorSystemConfig\\");
        EXPECT_EQ(c.m_strMachinesFolder, kWinMachines);
        EXPECT_EQ(c.m_showDeveloper, 0);
        EXPECT_TRUE(logged(log, Channel::Trace, 0,
                           "Configs(): file "
                           "C:\\ProgramData\\Korv\\KorSystemConfig\\korsystemconfig.ini missing"));
        EXPECT_TRUE(_KTrace_TestLevel("korv_shared", 3)) << "the level is reset to 3";
        EXPECT_FALSE(_KTrace_TestLevel("korv_shared", 4));
        EXPECT_EQ(c.m_vecLanguages.size(), 16u);
        EXPECT_EQ(c.GetLanguageIndex("ZH"), 15);
        EXPECT_EQ(c.GetLanguageIndex("de"), -1);
    }
    m_root.write(std::string(kDataFolder) + "korsystemconfig.ini",
                 "[general]\nktrace_level=1\nshow_developer=1\n");
    Configs c;
    EXPECT_EQ(c.m_showDeveloper, 1);
    EXPECT_TRUE(_KTrace_TestLevel("korv_shared", 1));
    EXPECT_FALSE(_KTrace_TestLevel("korv_shared", 2));
}

TEST_F(MachinesTest, ListsProductsAndFilteredMachines) {
    m_root.write(kProductsIni, "[general]\nproducts=Form_Pro, KorGear, x // y\n"
                               "[Form_Pro]\ndescription=Form products\n");
    machine("a.ini", plain_machine("products=Form_Pro\nvariants=V1,V2\n"));
    machine("E.INI", plain_machine("simulation=True\n"));
    machine("a.ini.bak", plain_machine());
    machine("b.ini", plain_machine("simulation=true\nproducts=KorGear, Form_Pro\n"));
    machine("dev.ini", plain_machine("developer=1\n"));
    machine("user_x.ini", plain_machine("simulation=true\n", "[configure]\nmode=new\n"));
    machine("user_y.ini", plain_machine("", "[configure]\nmode=New\n"));
    machine("broken.ini", "[general]\nproducts=P1\n");
    machine("k.alias", "[General]\nfile=a.ini\nalias_machine_name=K\n"
                       "[AliasIdentNo_9]\nparent_identno=V2\n");
    machine("notes.txt", "x");

    LogCapture log;
    configs().Read(false, false);
    EXPECT_EQ(product_names(configs()), (Strings{"Form Pro=Form products", "KorGear=KorGear",
                                                 "x//y=x//y", "All products=all_products.txt"}));
    // Plain files in the file system's order, then aliases. "True" is no simulation.
    EXPECT_EQ(file_names(configs()), (Strings{"a.ini", "E.INI", "user_y.ini", "k.alias"}));
    EXPECT_FALSE(machine_exists("user_x.ini")) << "deleted although its simulation doesn't fit";
    EXPECT_TRUE(logged(log, Channel::Trace, 3, "AddMachineFiles(): file user_x.ini REMOVED"));
    EXPECT_TRUE(logged(log, Channel::Trace, 3, "AddMachineFiles(): broken.ini skipped"));
    EXPECT_TRUE(logged(log, Channel::Trace, 5, "AddMachineFiles(): a.ini added"));

    configs().Read(true, true);
    EXPECT_EQ(product_names(configs()),
              (Strings{"Form Pro=Form products", "KorGear=KorGear", "x//y=x//y"}));
    EXPECT_EQ(file_names(configs()), Strings{"b.ini"});

    configs().m_showDeveloper = 1;
    configs().Read(false, false);
    EXPECT_EQ(file_names(configs()),
              (Strings{"a.ini", "dev.ini", "E.INI", "user_y.ini", "k.alias"}));

    // An unreadable products file leaves the list as it was.
    m_root.write(kProductsIni, "products=outside\n");
    log.clear();
    configs().ReadProductsFile(false);
    EXPECT_EQ(configs().m_vecProducts.size(), 4u);
    EXPECT_EQ(log.errors(), Strings{"ReadProductsFile(): could not open file C:\\Program "
                                    "Files\\korv\\korwin\\product_infos\\products.ini"});
}

TEST_F(MachinesTest, LooksUpMachinesByProduct) {
    m_root.write(kProductsIni, "[general]\nproducts=Form_Pro, KorGear\n");
    machine("a.ini", plain_machine("products=Form_Pro\nvariants=V1,V2\n"));
    machine("b.ini", plain_machine("products=KorGear, Form_Pro\n"));
    machine("c.ini", plain_machine("products=KorGear\n"));
    configs().Read(false, false);
    Configs& c = configs();

    std::vector<int> vec{42};
    c.BuildMachineProductIndexVec("Form Pro", vec);
    EXPECT_EQ(vec, (std::vector<int>{0, 1}));
    c.BuildMachineProductIndexVec("All products", vec);
    EXPECT_EQ(vec, (std::vector<int>{0, 1, 2}));
    c.BuildMachineProductIndexVec("form pro", vec);
    EXPECT_TRUE(vec.empty());

    EXPECT_EQ(c.GetProductIndex("KorGear"), 1);
    EXPECT_EQ(c.GetProductIndex("Nope"), -1);
    EXPECT_EQ(c.GetAbsoluteMachineIndexFromProductIndex(1, 1), 2);
    EXPECT_EQ(c.GetMachineByProductIndex(1, 0), &c.m_vecMachines[1]);
    EXPECT_EQ(c.GetProductMachineIndex("KorGear", "c.ini"), 1);
    EXPECT_EQ(c.GetProductVariantIndex("Form Pro", "a.ini", "V2"), 1);
    EXPECT_EQ(c.GetProductVariantIndex("Form Pro", "a.ini", "V3"), -1);
    EXPECT_EQ(c.GetProductVariantIndex("KorGear", "a.ini", "V1"), -1);
    EXPECT_EQ(c.GetMachineConfigFileFullPath(2), std::string(kWinMachines) + "c.ini");

    LogCapture log;
    EXPECT_EQ(c.GetAbsoluteMachineIndexFromProductIndex(3, 0), -1);
    EXPECT_EQ(c.GetAbsoluteMachineIndexFromProductIndex(0, 2), -1);
    EXPECT_EQ(c.GetMachineByProductIndex(-1, 0), nullptr);
    EXPECT_EQ(c.GetMachineConfigFileFullPath(3), "");
    EXPECT_EQ(
        log.errors(),
        (Strings{"GetAbsoluteMachineIndexFromProductIndex(): invalid iProductIndex = 3 "
                 "m_vecProducts.size() = 3",
                 "GetAbsoluteMachineIndexFromProductIndex(): invalid iProductMachineIndex = 2 "
                 "vec.size() = 2",
                 "GetAbsoluteMachineIndexFromProductIndex(): invalid iProductIndex = -1 "
                 "m_vecProducts.size() = 3",
                 "GetMachineConfigFileFullPath(): invalid idx = 3 m_vecMachines.size() = 3"}));
}

TEST_F(MachinesTest, MachineDescriptionWalkSkipsAsItAlwaysHas) {
    auto with = [](const std::string& description, std::vector<std::string> variant_texts) {
        MachineEntry e;
        e.description = description;
        for (const std::string& text : variant_texts) {
            MachineVariant v;
            v.descriptions["EN"] = text;
            e.variants.push_back(v);
        }
        return e;
    };
    Configs& c = configs();
    c.m_vecMachines = {with("m0", {"v0"}), with("m1", {"v1"}), with("m2", {}), with("m3", {}),
                       with("", {"v4a", "v4b"})};
    c.m_vecMachines[4].descriptions["DE"] = "m4de";
    for (const char* found : {"m0", "v0", "v1", "m3", "m4de", "v4a"})
        EXPECT_TRUE(c.IsMachineDescription(found)) << found;
    // m1 follows a machine with variants, m2 is the first without; v4b isn't first.
    for (const char* missed : {"m1", "m2", "v4b", "other"})
        EXPECT_FALSE(c.IsMachineDescription(missed)) << missed;
}
