// Files by handle, listings and the crash-safe replacement over the Win32
// calls: dispositions, the read-only attribute, no temporary file left over.
#include "kplatform_file.h"
#include "kplatform_listing.h"
#include "kplatform_replace.h"
#include "scratch_dir.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace korv::platform;

namespace {

// The entries of a folder, "." and ".." left out, folders marked with '/'.
std::vector<std::string> listing(const std::string& folder) {
    std::vector<std::string> names;
    FolderListing list;
    EXPECT_TRUE(list.open(folder));
    FolderEntry entry;
    while (list.next(entry))
        if (entry.name != "." && entry.name != "..")
            names.push_back(entry.name + (entry.is_folder() ? "/" : ""));
    EXPECT_EQ(last_error(), 0u);
    std::sort(names.begin(), names.end());
    return names;
}

bool write_all(FileHandle file, const std::string& text) {
    std::uint32_t done = 0;
    return write_file(file, text.data(), static_cast<std::uint32_t>(text.size()), done) &&
           done == text.size();
}

} // namespace

TEST(FileWin32, DispositionsAccessAndListings) {
    korv::testing::ScratchDir dir;
    const std::string path = dir.path() + "\\a.ini";
    EXPECT_EQ(open_file(path, Access::Read, Disposition::OpenExisting), INVALID_FILE_HANDLE);
    EXPECT_EQ(last_error(), 2u); // ERROR_FILE_NOT_FOUND

    FileHandle file = open_file(path, Access::Write, Disposition::CreateNew);
    ASSERT_NE(file, INVALID_FILE_HANDLE);
    EXPECT_TRUE(write_all(file, "one\r\n"));
    EXPECT_TRUE(flush_file(file));
    EXPECT_TRUE(close_file(file));
    EXPECT_EQ(open_file(path, Access::Write, Disposition::CreateNew), INVALID_FILE_HANDLE);
    EXPECT_EQ(last_error(), 80u); // ERROR_FILE_EXISTS

    file = open_file(path, Access::Append, Disposition::OpenAlways);
    ASSERT_NE(file, INVALID_FILE_HANDLE);
    EXPECT_TRUE(write_all(file, "two\r\n"));
    EXPECT_TRUE(close_file(file));
    EXPECT_EQ(dir.read("a.ini"), "one\r\ntwo\r\n");

    file = open_file(path, Access::Read, Disposition::OpenExisting);
    char buffer[64];
    std::uint32_t got = 0;
    EXPECT_TRUE(read_file(file, buffer, sizeof buffer, got));
    EXPECT_EQ(std::string(buffer, got), "one\r\ntwo\r\n");
    EXPECT_TRUE(close_file(file));

    dir.write("sub/b.txt", "b");
    EXPECT_EQ(open_file(dir.path() + "\\sub", Access::Read, Disposition::OpenExisting),
              INVALID_FILE_HANDLE);
    FileInfo info;
    ASSERT_TRUE(get_file_info(dir.path() + "\\sub", info));
    EXPECT_EQ(info.attributes, FILE_ATTR_DIRECTORY);
    ASSERT_TRUE(find_first_file_info(dir.path() + "\\A.*", info));
    EXPECT_EQ(info.attributes, FILE_ATTR_NORMAL);
    EXPECT_EQ(info.size, 10);
    EXPECT_EQ(listing(dir.path()), (std::vector<std::string>{"a.ini", "sub/"}));
    FolderListing missing;
    EXPECT_FALSE(missing.open(dir.path() + "\\none"));

    std::string temp;
    ASSERT_TRUE(temp_file_name(dir.path() + "\\sub\\", "krvx", temp));
    EXPECT_EQ(temp.rfind(dir.path() + "\\sub\\krv", 0), 0u) << temp;
    EXPECT_TRUE(delete_file(temp));
    EXPECT_FALSE(path_exists(temp));
}

TEST(FileWin32, ReplacementIsWholeRefusesReadOnlyAndLeavesNoTemporaryFile) {
    korv::testing::ScratchDir dir;
    const std::string path = dir.path() + "\\loader.ini";
    EXPECT_TRUE(replace_file(path, std::string_view("new\r\n")));
    EXPECT_TRUE(replace_file(path, std::string_view("newer\r\n")));
    EXPECT_EQ(dir.read("loader.ini"), "newer\r\n");

    // A write that fails keeps the old bytes and removes its temporary file.
    ReplaceFailure failure;
    EXPECT_FALSE(replace_file(
        path, [](FileHandle) { return false; }, &failure));
    EXPECT_EQ(failure.step, ReplaceStep::Write);
    EXPECT_EQ(dir.read("loader.ini"), "newer\r\n");
    EXPECT_EQ(listing(dir.path()), std::vector<std::string>{"loader.ini"});

    dir.write("ro.ini", "old");
    const std::string read_only = dir.path() + "\\ro.ini";
    ASSERT_TRUE(::SetFileAttributesA(read_only.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_FALSE(replace_file(read_only, std::string_view("x"), &failure));
    EXPECT_EQ(failure.step, ReplaceStep::Target);
    EXPECT_EQ(dir.read("ro.ini"), "old");
    ::SetFileAttributesA(read_only.c_str(), FILE_ATTRIBUTE_NORMAL);
}
