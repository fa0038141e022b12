// The handle interface: most calls only forward (and are used throughout the
// suite); here the ones with logic of their own and one pass over the types.
#include "KIniData.h"
#include "errtrace.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

using namespace korv;

TEST(KIniDataFlat, ForwardsToTheContainer) {
    korv::testing::ScratchDir dir;
    KErrTrace_BeginContext();
    KIniDataHandle handle = KIniData_Create();
    ASSERT_TRUE(KIniData_Open(handle, (dir / "f.ini").c_str()));
    EXPECT_TRUE(KIniData_IsFileMissing(handle));
    ASSERT_TRUE(KIniData_SetStringEntry(handle, "s", "name", "text"));
    ASSERT_TRUE(KIniData_SetLongEntry(handle, "s", "l", -5));
    ASSERT_TRUE(KIniData_SetLongLongEntry(handle, "s", "ll", 1LL << 40));
    ASSERT_TRUE(KIniData_SetDoubleEntry(handle, "s", "d", 1.5));
    ASSERT_TRUE(KIniData_AddSection(handle, "old"));
    ASSERT_TRUE(KIniData_RenameSection(handle, "old", "new"));
    ASSERT_TRUE(KIniData_Save(handle));
    EXPECT_TRUE(KIniData_IsInSync(handle));
    EXPECT_EQ(dir.read("f.ini"),
              "[new]\r\n[s]\r\nname=text\r\nl=-5\r\nll=1099511627776\r\nd=1.5\r\n");

    ASSERT_TRUE(KIniData_Reopen(handle));
    std::int32_t l = 0;
    std::int64_t ll = 0;
    double d = 0;
    EXPECT_TRUE(KIniData_GetLongEntry(handle, "s", "l", &l) &&
                KIniData_GetLongLongEntry(handle, "s", "ll", &ll) &&
                KIniData_GetDoubleEntry(handle, "s", "d", &d));
    EXPECT_EQ(l, -5);
    EXPECT_EQ(ll, 1LL << 40);
    EXPECT_EQ(d, 1.5);
    EXPECT_FALSE(KIniData_SetStringEntry(handle, "s", ";c", "v"));
    EXPECT_STREQ(KIniData_GetErrorText(handle), "cannot add comment as an entry: \";c=v\"");
    ASSERT_TRUE(KIniData_Close(handle));
    EXPECT_FALSE(KIniData_IsOpen(handle));

    // The content string is a copy the caller frees.
    ASSERT_TRUE(KIniData_SetContentString(handle, "[s]\r\nk=12345"));
    char* content = KIniData_GetContentString(handle);
    EXPECT_STREQ(content, "[s]\nk=12345\n");
    std::free(content);
    EXPECT_FALSE(KIniData_SetContentString(handle, "stray"));
    ASSERT_TRUE(KIniData_SetContentString(handle, "[s]\nk=12345\n"));

    // A string entry must fit the caller's buffer with its terminator.
    char target[6] = "?????";
    EXPECT_TRUE(KIniData_GetStringEntry(handle, "s", "k  ", target, sizeof target));
    EXPECT_STREQ(target, "12345");
    EXPECT_FALSE(KIniData_GetStringEntry(handle, "s", "k", target, 5));
    EXPECT_STREQ(target, "1234");
    EXPECT_EQ(diag::error_trace_lines().back(),
              "KIniData_GetStringEntry(): returned string too long for target (5)");
    EXPECT_FALSE(KIniData_GetStringEntry(handle, "s", "x", target, sizeof target));
    EXPECT_STREQ(target, "1234");
    KIniData_Destroy(handle);
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

TEST(KIniDataFlat, UnknownFlagsAreDroppedAndNullIsRefused) {
    KIniDataHandle relaxed = KIniData_Create(KINI_RELAXED_LINES | 0x100u);
    ASSERT_NE(relaxed, nullptr);
    EXPECT_EQ(reinterpret_cast<KIniData*>(relaxed)->flags, KINI_RELAXED_LINES);
    EXPECT_TRUE(KIniData_SetContentString(relaxed, "[s]\nbare\n"));
    KIniData_Destroy(relaxed);
    EXPECT_FALSE(KIniData_Open(nullptr, "x.ini"));
    EXPECT_EQ(KIniData_GetContentString(nullptr), nullptr);
    EXPECT_FALSE(KIniData_SetStringEntry(nullptr, "s", "k", "v"));
    KIniData_Destroy(nullptr);
}
