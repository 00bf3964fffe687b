#ifndef VORN_SERVICE_VORN_DUMPER_H
#define VORN_SERVICE_VORN_DUMPER_H

#include <string>
#include <vector>

namespace OHOS {
namespace Vorn {
// What the platform's dump tool prints for the service: its state, its pools, the work in flight
// and the counters since start. It only reads; nothing it prints is private (no URL, request,
// response or event content ever reaches a counter).
class VornDumper {
public:
    // Text for the dump tool's arguments: the status without options, the option list for -h,
    // and a complaint plus the list for anything else.
    static std::string Render(const std::vector<std::u16string> &args, bool running);
    // Writes Render's text to fd; false when the write failed.
    static bool Write(int fd, const std::string &text);

private:
    static std::string Usage();
    static std::string Status(bool running);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_SERVICE_VORN_DUMPER_H
