#ifndef VORN_HTTP_TRANSFER_LOOP_H
#define VORN_HTTP_TRANSFER_LOOP_H

#include <memory>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <curl/curl.h>

#include "ffrt_inner.h"
#include "trust_shares.h"

namespace OHOS {
namespace Vorn {
// The one thread that runs every transfer of the process. A transfer waiting for the network
// must not hold a task-runtime worker, and libcurl handles may only be used by one thread at a
// time, so a single dedicated thread owns one multi handle and every easy handle while it is
// in there; attempts hand their prepared handles over through a locked queue and wait on a
// runtime-aware future, which suspends the task instead of blocking its worker.
class TransferLoop {
public:
    // What an attempt gets when the loop cannot run its transfer (not started, handle refused).
    static constexpr CURLcode NOT_RUN = CURLE_FAILED_INIT;

    // Idle connections kept per trust context, and how long one may stay idle.
    static constexpr long MAX_KEPT_CONNECTIONS = 16;
    static constexpr long MAX_IDLE_SECONDS = 60;

    // Runs the prepared `curl` on the process's loop, starting the loop on first use (libcurl's
    // global set-up has then been done by the caller's curl_easy_init). The future is set once
    // the handle is out of the loop's multi handle again; until then the caller must neither
    // touch nor free it. A loop that cannot start or take the handle gives NOT_RUN at once.
    // `trustContext` names everything that decides how a connection is verified and routed:
    // the transfer may reuse connections and TLS sessions of earlier transfers of the same
    // context only. An empty context opens a connection of its own and keeps nothing.
    static ffrt::future<CURLcode> Perform(CURL *curl, const std::string &trustContext = "");

private:
    struct MultiDeleter {
        void operator()(CURLM *multi) const { curl_multi_cleanup(multi); }
    };
    // Only Started() makes loops.
    struct StartKey {
        explicit StartKey() = default;
    };

public:
    using MultiPtr = std::unique_ptr<CURLM, MultiDeleter>;

    TransferLoop(StartKey, MultiPtr multi);
    ~TransferLoop();
    TransferLoop(const TransferLoop &) = delete;
    TransferLoop &operator=(const TransferLoop &) = delete;

private:
    struct Transfer {
        CURL *curl = nullptr;
        std::string trustContext;
        ffrt::promise<CURLcode> done;
    };
    struct Running {
        std::string trustContext;
        ffrt::promise<CURLcode> done;
    };

    // The running loop, started here on first use; null (logged) when it cannot start, in which
    // case the next call tries again.
    static TransferLoop *Started();
    static ffrt::future<CURLcode> Finished(CURLcode code);

    ffrt::future<CURLcode> Hand(CURL *curl, const std::string &trustContext);
    void Run();
    // One turn's hand-over: adds what was queued; false once the loop is to stop.
    bool TakeQueued();
    // False (logged) when the multi handle refuses the transfer; its promise is then untouched.
    bool Add(Transfer &transfer);
    // Attaches the share of the transfer's context and returns the context now held, or makes
    // the transfer keep nothing and returns an empty one.
    std::string Attach(const Transfer &transfer);
    void Detach(CURL *curl, const std::string &heldContext);
    void ReportDone();
    void Report(CURL *curl, CURLcode code);
    void AbortAll();

    // Used only by the loop thread once it has started; others only wake it, which libcurl
    // allows from any thread.
    MultiPtr multi_;
    std::unordered_map<CURL *, Running> running_;
    TrustShares shares_;

    // Taken by attempts, which are runtime tasks: the runtime's mutex lets a waiting task
    // give its worker back.
    ffrt::mutex queueMutex_;
    std::vector<Transfer> queue_;
    bool stopping_ = false;
    // Declared last: the thread starts once everything it uses is in place.
    std::thread thread_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_TRANSFER_LOOP_H
