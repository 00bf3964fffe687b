#include <climits>
#include <filesystem>
#include <fstream>
#include <ios>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

#include "file_utils.h"
#include "hilog_host.h"
#include "temp_dir.h"
#include "working_directory.h"

using namespace OHOS::Vorn;
namespace fs = std::filesystem;

namespace {
const uint32_t BINARY_MODE = static_cast<uint32_t>(std::ios_base::binary);
const std::string UNTOUCHED = "untouched";

class FileUtilsTest : public testing::Test {
protected:
    int32_t Read(const std::string &path, std::string &content) const
    {
        content = UNTOUCHED;
        return FileUtils::ReadFile(path, content, BINARY_MODE);
    }

    VornTestbed::TempDir temp_;
    const fs::path dir_ = temp_.Path();
};
} // namespace

TEST_F(FileUtilsTest, ReadsWholeFileByteForByteAtItsCanonicalPath)
{
    const std::string content("{\"a\": 1}\r\n\0\xff tail", 16);
    const std::string path = temp_.WriteFile("config.json", content);
    std::string read;
    EXPECT_EQ(Read(path, read), FileUtils::READ_FILE_OK);
    EXPECT_EQ(read, content);

    // Through a symbolic link and a path that needs canonicalising.
    fs::create_symlink(path, dir_ / "link.json");
    EXPECT_EQ(Read((dir_ / "." / "link.json").string(), read), FileUtils::READ_FILE_OK);
    EXPECT_EQ(read, content);
    fs::create_directory(dir_ / "sub");
    EXPECT_EQ(FileUtils::NormalizedFilePath((dir_ / "sub" / ".." / "." / "config.json").string()),
        fs::canonical(path).string());
    EXPECT_EQ(FileUtils::NormalizedFilePath((dir_ / "missing").string()), "");
    EXPECT_EQ(FileUtils::NormalizedFilePath(""), "");
}

// procfs reports size 0 even though reading yields text.
TEST_F(FileUtilsTest, MissingOrNonRegularPathsGiveOneAndFilesReportedEmptyGiveTwo)
{
    fs::create_directory(dir_ / "sub");
    fs::create_symlink(dir_ / "gone.json", dir_ / "dangling.json");
    ASSERT_EQ(mkfifo((dir_ / "fifo").c_str(), 0600), 0);
    const std::pair<std::string, int32_t> cases[] = {{(dir_ / "sub").string(), FileUtils::READ_FILE_NOT_FOUND},
        {(dir_ / "missing.json").string(), FileUtils::READ_FILE_NOT_FOUND},
        {(dir_ / "dangling.json").string(), FileUtils::READ_FILE_NOT_FOUND},
        {(dir_ / "fifo").string(), FileUtils::READ_FILE_NOT_FOUND}, {"", FileUtils::READ_FILE_NOT_FOUND},
        {temp_.WriteFile("empty.json", ""), FileUtils::READ_FILE_EMPTY},
        {"/proc/self/status", FileUtils::READ_FILE_EMPTY}};
    for (const auto &[path, code] : cases) {
        std::string read;
        EXPECT_EQ(Read(path, read), code) << path;
        EXPECT_EQ(read, UNTOUCHED) << path;
    }
}

TEST_F(FileUtilsTest, SizeDifferentFromStatGivesThreeAndEmptiesContent)
{
    // sysfs attributes report a whole page as their size but read back a few bytes, which is what
    // ReadFile sees when a file changes between its size query and its read.
    std::string candidate;
    for (const char *path : {"/sys/devices/system/cpu/online", "/sys/kernel/mm/transparent_hugepage/enabled",
             "/sys/class/net/lo/address"}) {
        struct stat sb {};
        if (stat(path, &sb) == 0 && S_ISREG(sb.st_mode) && sb.st_size > 0) {
            candidate = path;
            break;
        }
    }
    if (candidate.empty()) {
        GTEST_SKIP() << "no sysfs attribute to read";
    }
    std::string read;
    EXPECT_EQ(Read(candidate, read), FileUtils::READ_FILE_SIZE_MISMATCH);
    EXPECT_EQ(read, "");
}

TEST_F(FileUtilsTest, CanonicalPathFailureIsLogged)
{
    // stat() accepts the short relative name, but realpath() cannot return an absolute path longer
    // than PATH_MAX.
    VornTest::WorkingDirectory cwd(dir_.string());
    const std::string level(200, 'd');
    for (size_t depth = 0; depth * (level.size() + 1) <= PATH_MAX; ++depth) {
        ASSERT_EQ(mkdir(level.c_str(), 0700), 0);
        ASSERT_EQ(chdir(level.c_str()), 0);
    }
    std::ofstream("deep.json") << "{}";
    EXPECT_EQ(FileUtils::NormalizedFilePath("deep.json"), "");

    HostPlatform::LogCapture capture;
    std::string read;
    EXPECT_EQ(Read("deep.json", read), FileUtils::READ_FILE_NOT_FOUND);
    EXPECT_EQ(read, UNTOUCHED);
    EXPECT_TRUE(capture.Contains("ReadFile canonical path fail"));

    // remove_all cannot reach this deep by absolute path: climb out and remove level by level.
    unlink("deep.json");
    while (chdir("..") == 0 && rmdir(level.c_str()) == 0) {
    }
}
