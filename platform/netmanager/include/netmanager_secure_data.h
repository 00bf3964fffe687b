#ifndef NETMANAGER_SECURE_DATA_H
#define NETMANAGER_SECURE_DATA_H

#include <string>

namespace OHOS {
namespace NetManagerStandard {
// A string holding a credential; its buffer is wiped when it goes away.
struct SecureData : public std::string {
    using std::string::string;
    SecureData() = default;
    SecureData(const SecureData &) = default;
    SecureData(SecureData &&) = default;
    SecureData &operator=(const SecureData &) = default;
    SecureData &operator=(SecureData &&) = default;
    ~SecureData();
};
} // namespace NetManagerStandard
} // namespace OHOS

#endif // NETMANAGER_SECURE_DATA_H
