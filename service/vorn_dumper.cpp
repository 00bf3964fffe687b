#include "vorn_dumper.h"

#include <cerrno>
#include <cstddef>
#include <sstream>

#include <unistd.h>

#include "omsa_util.h"
#include "vorn_metrics.h"
#include "vorn_sa_id.h"
#include "vorn_thread.h"

namespace OHOS {
namespace Vorn {
namespace {
const std::u16string HELP_OPTION = u"-h";

std::string Narrow(const std::u16string &text)
{
    std::string narrow;
    for (char16_t unit : text) {
        // Options are ASCII; anything else is shown as '?', never decoded.
        narrow.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
    }
    return narrow;
}
} // namespace

std::string VornDumper::Render(const std::vector<std::u16string> &args, bool running)
{
    if (args.empty()) {
        return Status(running);
    }
    if (args.size() == 1 && args.front() == HELP_OPTION) {
        return Usage();
    }
    std::string text = "unknown option: ";
    for (const std::u16string &arg : args) {
        text.append(Narrow(arg)).append(" ");
    }
    text.back() = '\n';
    return text + Usage();
}

bool VornDumper::Write(int fd, const std::string &text)
{
    size_t written = 0;
    while (written < text.size()) {
        ssize_t n = write(fd, text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        written += static_cast<size_t>(n);
    }
    return true;
}

std::string VornDumper::Usage()
{
    return "usage: hidumper -s " + std::to_string(VORN_SA_ID) +
        " [-a \"-h\"]\n"
        "  (no option)  service state, pools, work in flight and counters since start\n"
        "  -h           this list\n";
}

std::string VornDumper::Status(bool running)
{
    std::ostringstream out;
    out << "vorn service, system ability " << VORN_SA_ID << "\n";
    out << "state: " << (running ? "running" : "not running") << "\n";
    for (const VornThread::PoolStatus &pool : VornThread::PoolStatuses()) {
        out << "pool " << pool.name << ": tasks running " << pool.running << ", tasks waiting " << pool.waiting << "\n";
    }
    for (size_t i = 0; i < static_cast<size_t>(VornMetrics::Gauge::COUNT); ++i) {
        auto gauge = static_cast<VornMetrics::Gauge>(i);
        out << VornMetrics::Name(gauge) << ": " << VornMetrics::Get(gauge) << "\n";
    }
    for (size_t i = 0; i < static_cast<size_t>(VornMetrics::Counter::COUNT); ++i) {
        auto counter = static_cast<VornMetrics::Counter>(i);
        out << VornMetrics::Name(counter) << ": " << VornMetrics::Get(counter) << "\n";
    }
    out << "analytics: " << (OMSAUtil::IsInited() ? "set up" : "not set up") << "\n";
    return out.str();
}
} // namespace Vorn
} // namespace OHOS
