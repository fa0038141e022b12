// The handle interface: forwarding, the copied content string, the caller's buffer.
#include "KIniData.h"
#include "errtrace.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

class KIniDataFlat : public ::testing::Test {
protected:
    void SetUp() override {
        KErrTrace_BeginContext();
        handle = korv::KIniData_Create();
        ASSERT_NE(handle, nullptr);
    }
    void TearDown() override {
        korv::KIniData_Destroy(handle);
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }

    korv::KIniDataHandle handle = nullptr;
};

TEST_F(KIniDataFlat, ForwardsToTheContainer) {
    korv::testing::ScratchDir dir;
    ASSERT_TRUE(korv::KIniData_Open(handle, (dir / "f.ini").c_str()));
    EXPECT_TRUE(korv::KIniData_IsFileMissing(handle));
    ASSERT_TRUE(korv::KIniData_SetStringEntry(handle, "s", "name", "text"));
    ASSERT_TRUE(korv::KIniData_SetLongEntry(handle, "s", "l", -5));
    ASSERT_TRUE(korv::KIniData_SetLongLongEntry(handle, "s", "ll", 1LL << 40));
    ASSERT_TRUE(korv::KIniData_SetDoubleEntry(handle, "s", "d", 1.5));
    ASSERT_TRUE(korv::KIniData_AddSection(handle, "old"));
    ASSERT_TRUE(korv::KIniData_RenameSection(handle, "old", "new"));
    ASSERT_TRUE(korv::KIniData_Save(handle));
    EXPECT_TRUE(korv::KIniData_IsInSync(handle));
    EXPECT_EQ(dir.read("f.ini"),
              "[new]\r\n[s]\r\nname=text\r\nl=-5\r\nll=1099511627776\r\nd=1.5\r\n");

    ASSERT_TRUE(korv::KIniData_Reopen(handle));
    std::int32_t l = 0;
    std::int64_t ll = 0;
    double d = 0;
    EXPECT_TRUE(korv::KIniData_GetLongEntry(handle, "s", "l", &l));
    EXPECT_TRUE(korv::KIniData_GetLongLongEntry(handle, "s", "ll", &ll));
    EXPECT_TRUE(korv::KIniData_GetDoubleEntry(handle, "s", "d", &d));
    EXPECT_EQ(l, -5);
    EXPECT_EQ(ll, 1LL << 40);
    EXPECT_EQ(d, 1.5);
    EXPECT_EQ(korv::KIniData_GetEntryCount(handle, "s"), 4u);
    std::vector<std::string> names;
    ASSERT_TRUE(korv::KIniData_GetSectionNames(handle, names));
    EXPECT_EQ(names, (std::vector<std::string>{"new", "s"}));
    ASSERT_TRUE(korv::KIniData_DeleteEntry(handle, "s", "d"));
    ASSERT_TRUE(korv::KIniData_GetEntryNames(handle, "s", names));
    EXPECT_EQ(names, (std::vector<std::string>{"l", "ll", "name"}));
    ASSERT_TRUE(korv::KIniData_DeleteSection(handle, "new"));
    EXPECT_FALSE(korv::KIniData_HasSection(handle, "new"));
    EXPECT_TRUE(korv::KIniData_HasEntry(handle, "s", "name"));
    EXPECT_FALSE(korv::KIniData_SetStringEntry(handle, "s", ";c", "v"));
    EXPECT_STREQ(korv::KIniData_GetErrorText(handle), "cannot add comment as an entry: \";c=v\"");
    ASSERT_TRUE(korv::KIniData_Close(handle));
    EXPECT_FALSE(korv::KIniData_IsOpen(handle));
}

TEST_F(KIniDataFlat, ContentStringIsACopyForTheCaller) {
    ASSERT_TRUE(korv::KIniData_SetContentString(handle, "[s]\r\nk=v"));
    char* content = korv::KIniData_GetContentString(handle);
    ASSERT_NE(content, nullptr);
    EXPECT_STREQ(content, "[s]\nk=v\n");
    std::free(content);
    EXPECT_FALSE(korv::KIniData_SetContentString(handle, "stray"));
}

TEST_F(KIniDataFlat, StringEntryMustFitTheTarget) {
    ASSERT_TRUE(korv::KIniData_SetContentString(handle, "[s]\nk=12345\n"));
    char target[6] = "?????";
    EXPECT_TRUE(korv::KIniData_GetStringEntry(handle, "s", "k  ", target, sizeof target));
    EXPECT_STREQ(target, "12345");
    EXPECT_FALSE(korv::KIniData_GetStringEntry(handle, "s", "k", target, 5));
    EXPECT_STREQ(target, "1234");
    EXPECT_EQ(korv::diag::error_trace_lines().back(),
              "KIniData_GetStringEntry(): returned string too long for target (5)");
    EXPECT_FALSE(korv::KIniData_GetStringEntry(handle, "s", "x", target, sizeof target));
    EXPECT_STREQ(target, "1234");
}

TEST(KIniDataFlatHandle, UnknownFlagsAreDroppedAndNullIsRefused) {
    korv::KIniDataHandle relaxed = korv::KIniData_Create(korv::KINI_RELAXED_LINES | 0x100u);
    ASSERT_NE(relaxed, nullptr);
    EXPECT_EQ(reinterpret_cast<korv::KIniData*>(relaxed)->flags, korv::KINI_RELAXED_LINES);
    EXPECT_TRUE(korv::KIniData_SetContentString(relaxed, "[s]\nbare\n"));
    korv::KIniData_Destroy(relaxed);
    EXPECT_FALSE(korv::KIniData_Open(nullptr, "x.ini"));
    EXPECT_EQ(korv::KIniData_GetContentString(nullptr), nullptr);
    EXPECT_FALSE(korv::KIniData_SetStringEntry(nullptr, "s", "k", "v"));
    korv::KIniData_Destroy(nullptr);
}

} // namespace
