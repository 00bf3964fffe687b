#ifndef VORN_TESTS_SUPPORT_WORKING_DIRECTORY_H
#define VORN_TESTS_SUPPORT_WORKING_DIRECTORY_H

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

namespace VornTest {
// Makes `dir` the working directory while it lives: the service reads its configuration by
// paths relative to a device's root.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const std::string &dir) : previous_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        EXPECT_EQ(chdir(dir.c_str()), 0);
    }
    ~WorkingDirectory()
    {
        EXPECT_EQ(fchdir(previous_), 0);
        close(previous_);
    }
    WorkingDirectory(const WorkingDirectory &) = delete;
    WorkingDirectory &operator=(const WorkingDirectory &) = delete;

private:
    int previous_;
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_WORKING_DIRECTORY_H
