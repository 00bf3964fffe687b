#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "path.h"

using namespace OHOS::Vorn;
using Strings = std::vector<std::string>;

TEST(PathTest, TokenizeDropsEmptyTokens)
{
    EXPECT_EQ(Path::Tokenize("//a//b/", "/"), (Strings {"a", "b"}));
    EXPECT_EQ(Path::Tokenize("a/b\\c", "/\\"), (Strings {"a", "b", "c"}));
    EXPECT_EQ(Path::Tokenize("a/b", ""), Strings {"a/b"});
    EXPECT_EQ(Path::Tokenize("/", "/"), Strings {});
    EXPECT_EQ(Path::Tokenize("", "/"), Strings {""});
}

TEST(PathTest, PosixPathsKeepTheirRootAndLoseEmptyComponents)
{
    EXPECT_EQ(Path("//etc//tarnix/").Str(Path::POSIX), "/etc/tarnix");
    EXPECT_EQ(Path("system/etc/a.json").Str(Path::POSIX), "system/etc/a.json");
    EXPECT_EQ(Path("/").Str(Path::POSIX), "/");
    EXPECT_EQ(Path("").Str(Path::POSIX), "");
    EXPECT_EQ(Path("/vorn-no-such-dir/a.json").FileSize(), 0u);
}

TEST(PathTest, WindowsFormsPrintWithTheirPrefixes)
{
    const std::string n256(256, 'n');
    const std::string n257(257, 'n');
    const std::string n254(254, 'n');
    struct Case {
        std::string set;
        std::string windows;
    };
    const std::vector<Case> cases = {
        {"C:\\dir/file.txt", "C:\\dir\\file.txt"},
        {"\\\\server\\share\\f", "\\\\server\\share\\f"},
        {"\\\\?\\UNC\\server\\share", "\\\\server\\share"},
        {"\\\\server", "server"}, // no further separator: no network path
        {"\\\\?\\C:\\x", "C:\\x"},
        {"x", "x"},
        {"dir\\" + n257, "dir\\" + n257}, // relative paths never gain the long-path prefix
        // The long-path prefix from 261 characters on.
        {"C:\\" + n256, "C:\\" + n256},
        {"C:\\" + n257, "\\\\?\\C:\\" + n257},
        {"\\\\srv\\" + n254, "\\\\?\\UNC\\srv\\" + n254},
    };
    Path path("/abs");
    for (const Case &c : cases) {
        path.Set(c.set, Path::WINDOWS);
        EXPECT_EQ(path.Str(Path::WINDOWS), c.windows) << c.set.substr(0, 20);
    }
    // The prefix follows the stored type, the separator the requested form.
    EXPECT_EQ(path.Str(Path::POSIX), "\\\\?\\UNC\\srv/" + n254);
}
