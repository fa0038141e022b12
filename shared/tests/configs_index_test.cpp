#include "machines_fixture.h"

using korv::diag::Channel;
using korv::testing::LogCapture;

namespace {

const char* const kProductsIni = "drive_c/Program Files/korv/korwin/product_infos/products.ini";

Strings listing(const Configs& c) {
    Strings names;
    for (const MachineEntry& e : c.m_vecMachines)
        names.push_back(e.file_name);
    for (const ProductEntry& p : c.m_vecProducts)
        names.push_back(p.name + "=" + p.description);
    return names;
}

} // namespace

TEST_F(MachinesTest, ConstructorTakesItsSettings) {
    LogCapture log;
    configs();
    EXPECT_TRUE(logged(log, Channel::Trace, 0,
                       "Configs(): file "
                       "C:\\ProgramData\\Korv\\KorSystemConfig\\korsystemconfig.ini missing"));
    EXPECT_EQ(configs().GetLanguageIndex("ZH"), 15);
    EXPECT_EQ(configs().GetLanguageIndex("de"), -1);

    m_root.write("drive_c/ProgramData/Korv/KorSystemConfig/korsystemconfig.ini",
                 "[general]\nktrace_level=1\nshow_developer=1\n");
    _KTrace_SetLevel("korv_shared", 5);
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
    machine("b.ini", plain_machine("simulation=true\nproducts=KorGear, Form_Pro\n"));
    machine("dev.ini", plain_machine("developer=1\n"));
    machine("user_x.ini", plain_machine("simulation=true\n", "[configure]\nmode=new\n"));
    machine("user_y.ini", plain_machine("", "[configure]\nmode=New\n"));
    machine("broken.ini", "[general]\nproducts=P1\n");
    machine("a.ini.bak", plain_machine());
    machine("k.alias", "[General]\nfile=a.ini\nalias_machine_name=K\n"
                       "[AliasIdentNo_9]\nparent_identno=V2\n");
    LogCapture log;
    Configs& c = configs();
    c.Read(false, false);
    // Plain files in the file system's order, then aliases; "True" is no simulation.
    EXPECT_EQ(listing(c),
              (Strings{"a.ini", "E.INI", "user_y.ini", "k.alias", "Form Pro=Form products",
                       "KorGear=KorGear", "x//y=x//y", "All products=all_products.txt"}));
    EXPECT_FALSE(exists(kMachines + std::string("user_x.ini")))
        << "deleted although its simulation doesn't fit";

    c.Read(true, true);
    EXPECT_EQ(listing(c),
              (Strings{"b.ini", "Form Pro=Form products", "KorGear=KorGear", "x//y=x//y"}));

    // Look-ups over the listing a(Form Pro), dev, E, user_y, k(alias of a).
    c.m_showDeveloper = 1;
    m_root.write(kProductsIni, "[general]\nproducts=KorGear, Form_Pro\n");
    c.Read(false, false);
    EXPECT_EQ(listing(c)[1], "dev.ini");
    std::vector<int> vec{42};
    c.BuildMachineProductIndexVec("Form Pro", vec);
    EXPECT_EQ(vec, (std::vector<int>{0, 4}));
    c.BuildMachineProductIndexVec("All products", vec);
    EXPECT_EQ(vec.size(), 5u);
    EXPECT_EQ(c.GetProductIndex("Form Pro"), 1);
    EXPECT_EQ(c.GetAbsoluteMachineIndexFromProductIndex(1, 1), 4);
    EXPECT_EQ(c.GetProductMachineIndex("Form Pro", "k.alias"), 1);
    EXPECT_EQ(c.GetProductVariantIndex("Form Pro", "a.ini", "V2"), 1);
    EXPECT_EQ(c.GetProductVariantIndex("Form Pro", "a.ini", "V3"), -1);
    EXPECT_EQ(c.GetMachineConfigFileFullPath(4), std::string(kWin) + "k.alias");
    log.clear();
    EXPECT_EQ(c.GetMachineByProductIndex(0, 0), nullptr) << "no KorGear machine listed";
    EXPECT_EQ(c.GetAbsoluteMachineIndexFromProductIndex(3, 0), -1);
    EXPECT_EQ(c.GetMachineConfigFileFullPath(-1), "");
    EXPECT_EQ(log.errors().size(), 3u);

    // An unreadable products file leaves the list as it was.
    m_root.write(kProductsIni, "products=outside\n");
    c.ReadProductsFile(false);
    EXPECT_EQ(c.m_vecProducts.size(), 3u);
}

TEST_F(MachinesTest, MachineDescriptionWalkSkipsAsItAlwaysHas) {
    auto with = [](const std::string& description, Strings variant_texts) {
        MachineEntry e;
        e.description = description;
        for (const std::string& text : variant_texts)
            e.variants.emplace_back().descriptions["EN"] = text;
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
