// The handle interface: most calls only forward and are used all through the suite;
// here the ones that copy out or cut to the caller's buffer.
#include "KIniData.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

using namespace korv;

class KIniDataFlat : public korv::testing::TraceContextTest {};

TEST_F(KIniDataFlat, CopiesOutAndCutsToTheCallersBuffer) {
    KIniDataHandle handle = KIniData_Create();
    EXPECT_FALSE(KIniData_SetStringEntry(handle, "s", ";c", "v"));
    EXPECT_STREQ(KIniData_GetErrorText(handle), "cannot add comment as an entry: \";c=v\"");

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
    EXPECT_FALSE(KIniData_GetStringEntry(handle, "s", "x", target, sizeof target));
    EXPECT_STREQ(target, "1234");
    KIniData_Destroy(handle);
}

TEST_F(KIniDataFlat, UnknownFlagsAreDroppedAndNullIsRefused) {
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
