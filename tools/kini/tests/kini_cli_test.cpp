// kini end to end: the built binary on files in a scratch folder, judged by its
// exit code, its output and the bytes it leaves on disk.
#include "program_run.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using korv::testing::ProgramRun;
using korv::testing::ScratchDir;

class Kini : public ::testing::Test {
protected:
    ProgramRun kini(const std::vector<std::string>& args) {
        return korv::testing::run_program(korv::testing::build_tree_path(KINI_BINARY).c_str(), args,
                                          io);
    }

    std::string path(const char* name) const { return dir / name; }

    ScratchDir dir;
    ScratchDir io;
};

constexpr const char* kMixed = "; head\n"
                               "[b]\r"
                               "key = 5 ; five\r\n"
                               "; tail of b\n"
                               "\n"
                               "[a] old\n"
                               "x=1";

TEST_F(Kini, HelpAndUsageErrors) {
    const ProgramRun help = kini({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.out.rfind("usage: kini", 0), 0u);
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{},
                                               {"frobnicate", "f.ini"},
                                               {"get", "f.ini", "s"},
                                               {"set", "f.ini", "s", "k"},
                                               {"delete", "f.ini"},
                                               {"cat", "f.ini", "extra"}}) {
        const ProgramRun run = kini(args);
        EXPECT_EQ(run.code, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("usage: kini"), std::string::npos);
    }
}

TEST_F(Kini, CatPrintsTheContentStringAndFmtRewritesSortedWithCrLf) {
    dir.write("f.ini", std::string("\xEF\xBB\xBF") + kMixed);
    const ProgramRun run = kini({"cat", path("f.ini")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, "; head\n[a] old\nx=1\n[b]\nkey = 5 ; five\n; tail of b\n");
    EXPECT_EQ(dir.read("f.ini"), std::string("\xEF\xBB\xBF") + kMixed);
    EXPECT_EQ(kini({"fmt", path("f.ini")}).code, 0);
    EXPECT_EQ(dir.read("f.ini"),
              "; head\r\n[a] old\r\nx=1\r\n[b]\r\nkey = 5 ; five\r\n; tail of b\r\n");
}

// Names compare exactly, except that get trims the key it is given.
TEST_F(Kini, GetSectionsAndKeysAnswerFromTheFileAsItStands) {
    dir.write("f.ini", "[General]\nkey = 5 ; five\nempty=\n[general]\nkey=lower\nA=2\na=3\n[a]\n");
    ProgramRun run = kini({"get", path("f.ini"), "General", "key"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, " 5 ; five\n");
    EXPECT_EQ(kini({"get", path("f.ini"), "general", "key  "}).out, "lower\n");
    EXPECT_EQ(kini({"get", path("f.ini"), "General", "empty"}).out, "\n");
    run = kini({"get", path("f.ini"), "GENERAL", "key"});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "kini: " + path("f.ini") + ": no section [GENERAL]\n");
    run = kini({"get", path("f.ini"), "General", "Key"});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, "kini: " + path("f.ini") + ": no key \"Key\" in section [General]\n");

    run = kini({"sections", path("f.ini")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, "General\na\ngeneral\n");
    run = kini({"keys", path("f.ini"), "general"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, "A\na\nkey\n");
    EXPECT_EQ(kini({"keys", path("f.ini"), "a"}).out, "");
    EXPECT_EQ(kini({"keys", path("f.ini"), "c"}).code, 1);
}

TEST_F(Kini, SetRefusesWhatWouldNotReadBackTheSameAndElseChangesInPlaceOrAppends) {
    dir.write("f.ini", kMixed);
    const ProgramRun comment = kini({"set", path("f.ini"), "b", ";x", "1"});
    EXPECT_EQ(comment.code, 2);
    EXPECT_EQ(comment.err, "kini: a key cannot start with ';'\n");
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"b", "k", "two\nlines"},
                                               {"b", "a=b", "1"},
                                               {"b", "", "1"},
                                               {"b", " k", "1"},
                                               {"b", "[k]", "1"},
                                               {"s]x", "k", "1"}}) {
        const ProgramRun run = kini({"set", path("f.ini"), args[0], args[1], args[2]});
        EXPECT_EQ(run.code, 2) << args[0] << " " << args[1];
        EXPECT_FALSE(run.err.empty());
    }
    EXPECT_EQ(dir.read("f.ini"), kMixed);

    EXPECT_EQ(kini({"set", path("f.ini"), "b", "key", "7"}).code, 0);
    EXPECT_EQ(kini({"set", path("f.ini"), "b", "new", "a b ; c"}).code, 0);
    EXPECT_EQ(kini({"set", path("f.ini"), "B", "k", ""}).code, 0);
    EXPECT_EQ(dir.read("f.ini"), "; head\r\n[B]\r\nk=\r\n[a] old\r\nx=1\r\n"
                                 "[b]\r\nkey =7\r\n; tail of b\r\nnew=a b ; c\r\n");
    EXPECT_EQ(kini({"set", path("new.ini"), "s", "k", "v"}).code, 0);
    EXPECT_EQ(dir.read("new.ini"), "[s]\r\nk=v\r\n");
    EXPECT_EQ(kini({"set", path("no/such/folder.ini"), "s", "k", "v"}).code, 2);
}

TEST_F(Kini, DeleteTakesAKeyOrASection) {
    dir.write("f.ini", "[a]\n; about x\nx=1\ny=2\n[b]\nz=3\n");
    EXPECT_EQ(kini({"delete", path("f.ini"), "a", "x"}).code, 0);
    EXPECT_EQ(kini({"delete", path("f.ini"), "b"}).code, 0);
    EXPECT_EQ(dir.read("f.ini"), "[a]\r\n; about x\r\ny=2\r\n");
    const std::string before = dir.read("f.ini");
    EXPECT_EQ(kini({"delete", path("f.ini"), "a", "x"}).code, 1);
    EXPECT_EQ(kini({"delete", path("f.ini"), "a", "y "}).code, 1); // exact names only
    EXPECT_EQ(kini({"delete", path("f.ini"), "b"}).code, 1);
    EXPECT_EQ(dir.read("f.ini"), before);
}

// A file that does not parse, or is missing, is never written; only set starts a new one.
TEST_F(Kini, BadOrMissingFilesAreNeverWritten) {
    const std::string bad = "[a]\r\nk=1\n[a]\nj=2";
    dir.write("bad.ini", bad);
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"cat"},
                                               {"fmt"},
                                               {"get", "a", "k"},
                                               {"set", "a", "k", "2"},
                                               {"delete", "a"},
                                               {"delete", "a", "k"},
                                               {"sections"},
                                               {"keys", "a"}}) {
        for (const char* name : {"bad.ini", "gone.ini"}) {
            if (args[0] == "set" && name == std::string("gone.ini"))
                continue;
            std::vector<std::string> full{args[0], path(name)};
            full.insert(full.end(), args.begin() + 1, args.end());
            const ProgramRun run = kini(full);
            EXPECT_EQ(run.code, 2) << args[0] << " " << name;
            EXPECT_EQ(run.out, "");
            EXPECT_EQ(run.err, "kini: " + path(name) +
                                   (name == std::string("bad.ini") ? ": Section [a] seen twice\n"
                                                                   : ": no such file\n"));
        }
        EXPECT_EQ(dir.read("bad.ini"), bad);
    }
    EXPECT_EQ(access(path("gone.ini").c_str(), F_OK), -1);
    EXPECT_EQ(kini({"cat", dir.path()}).code, 2);
}

} // namespace
