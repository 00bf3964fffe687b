#include <cstdio>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hilog/log.h"
#include "hilog_host.h"

#include "scoped_env.h"
#include "temp_dir.h"

namespace {
using HostPlatform::LogCapture;
using HostPlatform::LogRecord;
using namespace std::chrono_literals;

constexpr unsigned int DOMAIN = 0xD005540;
constexpr char TAG[] = "VornService";

using VornTest::ScopedEnv;

// Every test logs into its own temporary file with private values masked, as on a device.
class HiLogTest : public testing::Test {
protected:
    std::vector<std::string> FileLines(const std::string &path) const
    {
        std::ifstream in(path);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    std::vector<std::string> FileLines() const { return FileLines(path_); }

    // The text of the one line the last log call produced.
    std::string LoggedText(const LogCapture &capture) const
    {
        std::vector<LogRecord> records = capture.Records();
        return records.size() == 1 ? records[0].text : "<" + std::to_string(records.size()) + " lines>";
    }

    VornTestbed::TempDir dir_;
    std::string path_ = dir_.Path("hilog.log");
    ScopedEnv file_ {"VORN_HILOG_FILE", path_};
    ScopedEnv reveal_ {"VORN_HILOG_PRIVATE", std::nullopt};
};

TEST_F(HiLogTest, EachNonEmptyLineOfAMessageGetsItsOwnPrefix)
{
    HiLogPrint(LOG_CORE, LOG_WARN, DOMAIN, TAG, "first\n\nsecond\n");

    std::vector<std::string> lines = FileLines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_THAT(lines[0], testing::EndsWith(" W C05540/VornService: first"));
    EXPECT_THAT(lines[1], testing::EndsWith(" W C05540/VornService: second"));
}

TEST_F(HiLogTest, PrivateValuesAreMaskedUnlessRevealIsExactlyOne)
{
    struct Case {
        std::optional<std::string> reveal;
        std::string expected;
    };
    for (const Case &c : {Case {std::nullopt, "<private> failed to visit <private>, reason:11."},
             Case {"yes", "<private> failed to visit <private>, reason:11."},
             Case {"1", "app failed to visit https://example.invalid, reason:11."}}) {
        ScopedEnv reveal("VORN_HILOG_PRIVATE", c.reveal);
        LogCapture capture;
        HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "%s failed to visit %{private}s, reason:%{public}d.", "app",
            "https://example.invalid", 11);
        EXPECT_EQ(LoggedText(capture), c.expected) << c.reveal.value_or("<unset>");
    }
    // Only the revealing case may have put the value into the file.
    std::vector<std::string> lines = FileLines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].find("example"), std::string::npos);
    EXPECT_EQ(lines[1].find("example"), std::string::npos);
}

TEST_F(HiLogTest, MaskedConversionsStillConsumeTheirArgumentsAndLongLinesAreTruncated)
{
    LogCapture capture;
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "%lld %{public}s", 1234567890123LL, "after-ll");
    EXPECT_EQ(LoggedText(capture), "<private> after-ll");

    capture.Clear();
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "%{private}Lf|%{public}d|%{private}*.*f|%{public}s|%p|%{public}zu",
        static_cast<long double>(1.5), 42, 8, 2, 3.25, "mid", static_cast<void *>(&capture), static_cast<size_t>(99));
    EXPECT_EQ(LoggedText(capture), "<private>|42|<private>|mid|<private>|99");

    capture.Clear(); // an unknown conversion is printed as it stands and takes no argument
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "%{public}y %{public}s %", "kept");
    EXPECT_EQ(LoggedText(capture), "%{public}y kept %");

    capture.Clear(); // a long message and tag are truncated
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, std::string(40, 't').c_str(), "%{public}s", std::string(5000, 'm').c_str());
    ASSERT_EQ(capture.Records().size(), 1u);
    EXPECT_EQ(capture.Records()[0].text, std::string(4095, 'm'));
    EXPECT_EQ(capture.Records()[0].tag, std::string(31, 't'));

    capture.Clear(); // so is a short field that crosses the limit
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "%{public}s%{public}d", std::string(4093, 'm').c_str(), 123);
    EXPECT_EQ(LoggedText(capture), std::string(4093, 'm') + "12");
}

TEST_F(HiLogTest, SystemLogOutsideTheSystemDomainsIsDropped)
{
    LogCapture capture;
    EXPECT_EQ(HiLogPrint(LOG_CORE, LOG_INFO, 0xD100000, TAG, "dropped"), -1);
    EXPECT_EQ(HiLogPrint(LOG_INIT, LOG_INFO, 0xCFFFFFF, TAG, "dropped"), -1);
    EXPECT_EQ(HiLogPrint(LOG_CORE, LOG_INFO, 0x1234, TAG, "dropped"), -1);
    EXPECT_GT(HiLogPrint(LOG_APP, LOG_INFO, 0x1234, TAG, "kept"), 0);

    EXPECT_EQ(capture.Count("dropped"), 0u);
    EXPECT_EQ(capture.Count("kept"), 1u);
    EXPECT_EQ(FileLines().size(), 1u);
}

// Each line follows the viewer's layout, whole, with the process id first.
TEST_F(HiLogTest, ConcurrentLoggersWriteWholeLinesInTheViewerLayout)
{
    constexpr int threads = 4;
    constexpr int linesPerThread = 200;
    std::vector<std::thread> loggers;
    for (int t = 0; t < threads; ++t) {
        loggers.emplace_back([t] {
            std::string body(300, static_cast<char>('a' + t));
            for (int i = 0; i < linesPerThread; ++i) {
                HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "%{public}d-%{public}s-end", t, body.c_str());
            }
        });
    }
    for (std::thread &logger : loggers) {
        logger.join();
    }

    std::vector<std::string> lines = FileLines();
    ASSERT_EQ(lines.size(), static_cast<size_t>(threads * linesPerThread));
    std::regex whole(
        R"(^\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} ([ \d]{5}) [ \d]{5} I C05540/VornService: (\d)-([a-d]{300})-end$)");
    for (const std::string &line : lines) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, whole)) << line;
        EXPECT_EQ(std::stoi(match[1].str()), getpid());
        EXPECT_EQ(match[3].str(), std::string(300, static_cast<char>('a' + std::stoi(match[2].str()))));
    }
}

// The sink stays open between lines; it must still follow the variable and a removed file.
TEST_F(HiLogTest, LinesGoToTheFileTheVariableNamesNow)
{
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "first");
    std::remove(path_.c_str());
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "after removal");
    const std::string otherPath = dir_.Path("other.log");
    {
        ScopedEnv other("VORN_HILOG_FILE", otherPath);
        HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "elsewhere");
    }
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "back");

    using testing::EndsWith;
    EXPECT_THAT(FileLines(),
        testing::ElementsAre(EndsWith("VornService: after removal"), EndsWith("VornService: back")));
    EXPECT_THAT(FileLines(otherPath), testing::ElementsAre(EndsWith("VornService: elsewhere")));
}

// Ids are kept between lines; a forked child must still log its own, and its main thread's id
// is its pid.
TEST_F(HiLogTest, AForkedChildLogsItsOwnIds)
{
    HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "parent");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN, TAG, "child");
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);

    std::vector<std::string> lines = FileLines();
    ASSERT_EQ(lines.size(), 2U);
    std::regex ids(R"(^\S+ \S+ +(\d+) +(\d+) I .*: (\w+)$)");
    std::smatch parent;
    std::smatch forked;
    ASSERT_TRUE(std::regex_match(lines[0], parent, ids)) << lines[0];
    ASSERT_TRUE(std::regex_match(lines[1], forked, ids)) << lines[1];
    EXPECT_EQ(std::stoi(parent[1].str()), getpid());
    EXPECT_EQ(std::stoi(forked[1].str()), child);
    EXPECT_EQ(std::stoi(forked[2].str()), child);
    EXPECT_EQ(forked[3].str(), "child");
}
} // namespace
