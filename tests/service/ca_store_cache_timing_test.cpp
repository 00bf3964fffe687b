#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ca_store_cache.h"
#include "certificate_authority.h"
#include "temp_dir.h"
#include "transport_fixture.h"

namespace {
using OHOS::Vorn::CaStoreCache;

// A client naming a huge CA file must not hold up the first load of another client's file.
TEST(CaStoreCacheTimingTest, ASlowLoadHoldsNoLoadOfAnotherFile)
{
    constexpr int SMALL_FILES = 10;
    constexpr int BIG_FILE_COPIES = 10000;
    VornTestbed::TempDir dir;
    auto files = VornTestbed::MakeCertificateFiles(dir.Path("pki"));
    ASSERT_TRUE(files.has_value());
    const std::string pem = VornTest::ReadFile(files->caFile);
    std::string bigContent;
    bigContent.reserve(pem.size() * BIG_FILE_COPIES);
    for (int i = 0; i < BIG_FILE_COPIES; ++i) {
        bigContent += pem;
    }
    const std::string big = dir.WriteFile("big.pem", bigContent);
    std::vector<std::string> small;
    for (int i = 0; i < SMALL_FILES; ++i) {
        small.push_back(dir.WriteFile("small" + std::to_string(i) + ".pem", pem));
    }

    CaStoreCache &cache = CaStoreCache::GetInstance();
    std::atomic<bool> bigStarted {false};
    std::atomic<bool> bigDone {false};
    std::thread slow([&] {
        bigStarted.store(true);
        EXPECT_NE(cache.Acquire(big), nullptr);
        bigDone.store(true);
    });
    while (!bigStarted.load()) {
        std::this_thread::yield();
    }
    const uint64_t loadsBefore = cache.Loads();
    int loadedMeanwhile = 0;
    for (const std::string &file : small) {
        ASSERT_NE(cache.Acquire(file), nullptr);
        loadedMeanwhile += bigDone.load() ? 0 : 1;
    }
    const bool bigStillLoading = !bigDone.load();
    slow.join();

    EXPECT_TRUE(bigStillLoading) << "the big file loaded too fast to tell; make it bigger";
    EXPECT_EQ(loadedMeanwhile, SMALL_FILES);
    EXPECT_GE(cache.Loads(), loadsBefore + SMALL_FILES);
}
} // namespace
