#include "transfer_loop.h"

#include <mutex>
#include <system_error>
#include <utility>

#include <pthread.h>

#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
namespace {
// How long one turn may wait for sockets when nothing else wakes it. libcurl wakes the poll
// earlier for its own time-outs and for handed-over work; this only bounds the delay should a
// wake-up ever fail.
constexpr int MAX_POLL_MS = 1000;
constexpr const char *THREAD_NAME = "vorn_transfer";
} // namespace

TransferLoop::TransferLoop(StartKey, MultiPtr multi) : multi_(std::move(multi)), thread_([this] { Run(); }) {}

TransferLoop::~TransferLoop()
{
    {
        std::lock_guard<ffrt::mutex> lock(queueMutex_);
        stopping_ = true;
        const CURLMcode code = curl_multi_wakeup(multi_.get());
        if (code != CURLM_OK) {
            VORN_LOGW("TransferLoop: curl_multi_wakeup failed, code = %{public}d", static_cast<int>(code));
        }
    }
    thread_.join();
}

ffrt::future<CURLcode> TransferLoop::Perform(CURL *curl, const std::string &trustContext)
{
    TransferLoop *loop = Started();
    if (loop == nullptr) {
        return Finished(NOT_RUN);
    }
    return loop->Hand(curl, trustContext);
}

TransferLoop *TransferLoop::Started()
{
    static ffrt::mutex startMutex;
    static std::unique_ptr<TransferLoop> loop;
    std::lock_guard<ffrt::mutex> lock(startMutex);
    if (loop != nullptr) {
        return loop.get();
    }
    MultiPtr multi(curl_multi_init());
    if (multi == nullptr) {
        VORN_LOGE("TransferLoop: curl_multi_init failed");
        return nullptr;
    }
    // Multiplexing stays on (libcurl's default): streams only share a connection within one
    // trust context, as the connection pools are per context. The bound applies to each
    // context's pool, as libcurl checks it against the pool a transfer returns its connection to.
    const CURLMcode code = curl_multi_setopt(multi.get(), CURLMOPT_MAXCONNECTS, MAX_KEPT_CONNECTIONS);
    if (code != CURLM_OK) {
        VORN_LOGW("TransferLoop: CURLMOPT_MAXCONNECTS failed, code = %{public}d", static_cast<int>(code));
    }
    try {
        loop = std::make_unique<TransferLoop>(StartKey {}, std::move(multi));
    } catch (const std::system_error &error) {
        VORN_LOGE("TransferLoop: cannot start its thread: %{public}s", error.what());
        return nullptr;
    }
    return loop.get();
}

ffrt::future<CURLcode> TransferLoop::Finished(CURLcode code)
{
    ffrt::promise<CURLcode> done;
    done.set_value(code);
    return done.get_future();
}

ffrt::future<CURLcode> TransferLoop::Hand(CURL *curl, const std::string &trustContext)
{
    Transfer transfer;
    transfer.curl = curl;
    transfer.trustContext = trustContext;
    ffrt::future<CURLcode> result = transfer.done.get_future();
    {
        std::lock_guard<ffrt::mutex> lock(queueMutex_);
        if (stopping_) {
            return Finished(NOT_RUN);
        }
        queue_.push_back(std::move(transfer));
        // A queue that already held transfers has its wake-up on the way.
        if (queue_.size() > 1) {
            return result;
        }
    }
    // Outside the lock: the woken loop takes the queue at once instead of waiting for the lock.
    const CURLMcode code = curl_multi_wakeup(multi_.get());
    if (code != CURLM_OK) {
        // The loop still takes the transfer on its next turn, at most MAX_POLL_MS later.
        VORN_LOGW("TransferLoop: curl_multi_wakeup failed, code = %{public}d", static_cast<int>(code));
    }
    return result;
}

// curl's multi-poll shape: take the handed-over transfers, let libcurl work, report what
// finished, then sleep until a socket, a libcurl timer or a wake-up needs the thread.
void TransferLoop::Run()
{
    (void)pthread_setname_np(pthread_self(), THREAD_NAME);
    while (TakeQueued()) {
        int running = 0;
        CURLMcode code = curl_multi_perform(multi_.get(), &running);
        if (code != CURLM_OK) {
            VORN_LOGE("TransferLoop: curl_multi_perform failed, code = %{public}d", static_cast<int>(code));
            AbortAll();
            continue;
        }
        ReportDone();
        code = curl_multi_poll(multi_.get(), nullptr, 0, MAX_POLL_MS, nullptr);
        if (code != CURLM_OK) {
            VORN_LOGE("TransferLoop: curl_multi_poll failed, code = %{public}d", static_cast<int>(code));
            AbortAll();
        }
    }
    AbortAll();
    // The shares and the multi handle die on this thread, the only one that ever used them.
    shares_ = TrustShares();
    multi_.reset();
}

bool TransferLoop::TakeQueued()
{
    std::vector<Transfer> taken;
    bool stopping = false;
    {
        std::lock_guard<ffrt::mutex> lock(queueMutex_);
        taken.swap(queue_);
        stopping = stopping_;
    }
    for (Transfer &transfer : taken) {
        if (stopping || !Add(transfer)) {
            transfer.done.set_value(NOT_RUN);
        }
    }
    return !stopping;
}

bool TransferLoop::Add(Transfer &transfer)
{
    std::string held = Attach(transfer);
    const CURLMcode code = curl_multi_add_handle(multi_.get(), transfer.curl);
    if (code != CURLM_OK) {
        VORN_LOGE("TransferLoop: curl_multi_add_handle failed, code = %{public}d", static_cast<int>(code));
        Detach(transfer.curl, held);
        return false;
    }
    running_.emplace(transfer.curl, Running {std::move(held), std::move(transfer.done)});
    return true;
}

// The share must be on the handle before it joins the multi handle, which picks the pool a
// transfer takes connections from when it is added. A transfer without a share would use the
// multi handle's own pool, common to all contexts, so it must neither take nor leave anything there.
std::string TransferLoop::Attach(const Transfer &transfer)
{
    CURLSH *share = transfer.trustContext.empty() ? nullptr : shares_.Hold(transfer.trustContext);
    if (share != nullptr && curl_easy_setopt(transfer.curl, CURLOPT_SHARE, share) == CURLE_OK) {
        (void)curl_easy_setopt(transfer.curl, CURLOPT_MAXAGE_CONN, MAX_IDLE_SECONDS);
        return transfer.trustContext;
    }
    if (share != nullptr) {
        shares_.Release(transfer.trustContext);
    }
    (void)curl_easy_setopt(transfer.curl, CURLOPT_FRESH_CONNECT, 1L);
    (void)curl_easy_setopt(transfer.curl, CURLOPT_FORBID_REUSE, 1L);
    return "";
}

// Called once the handle is out of the multi handle, so that the attempt's thread, which frees
// the handle, never touches a share.
void TransferLoop::Detach(CURL *curl, const std::string &heldContext)
{
    if (heldContext.empty()) {
        return;
    }
    CURLSH *none = nullptr;
    (void)curl_easy_setopt(curl, CURLOPT_SHARE, none);
    shares_.Release(heldContext);
}

void TransferLoop::ReportDone()
{
    int queued = 0;
    while (CURLMsg *message = curl_multi_info_read(multi_.get(), &queued)) {
        if (message->msg == CURLMSG_DONE) {
            // The message belongs to the handle and goes with it: copy before removing.
            Report(message->easy_handle, message->data.result);
        }
    }
}

// Takes `curl` out of the multi handle, then hands it back to its attempt with `code`.
void TransferLoop::Report(CURL *curl, CURLcode code)
{
    const CURLMcode removed = curl_multi_remove_handle(multi_.get(), curl);
    if (removed != CURLM_OK) {
        VORN_LOGE("TransferLoop: curl_multi_remove_handle failed, code = %{public}d", static_cast<int>(removed));
    }
    auto found = running_.find(curl);
    if (found == running_.end()) {
        return;
    }
    Detach(curl, found->second.trustContext);
    found->second.done.set_value(code);
    running_.erase(found);
}

// Ends every transfer in the multi handle as not run, so that no attempt waits for a loop that
// can no longer drive it.
void TransferLoop::AbortAll()
{
    while (!running_.empty()) {
        Report(running_.begin()->first, NOT_RUN);
    }
}
} // namespace Vorn
} // namespace OHOS
