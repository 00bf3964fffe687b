#ifndef VORN_TESTBED_TEMP_DIR_H
#define VORN_TESTBED_TEMP_DIR_H

#include <string>

namespace VornTestbed {
// A fresh directory under $TMPDIR (or /tmp), removed with everything in it on destruction.
// Failures throw std::runtime_error: a test cannot go on without its files.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    const std::string &Path() const;
    // Absolute path of `relative` inside the directory.
    std::string Path(const std::string &relative) const;
    // Writes `content` to `relative`, creating parent directories; returns the absolute path.
    std::string WriteFile(const std::string &relative, const std::string &content) const;

private:
    std::string path_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_TEMP_DIR_H
