#include "core/measurement/executable_name.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(ExecutableName, FileNameOfThePathOrElseOfTheCommand) {
    EXPECT_EQ(executableName("/Applications/Safari.app/Contents/MacOS/Safari",
                             "/Applications/Safari.app/Contents/MacOS/Safari"),
              "Safari");
    EXPECT_EQ(executableName("/Applications/Visual Studio Code.app/Contents/MacOS/Electron", "x"),
              "Electron");
    // Another user's process hides its path; the command still names it.
    EXPECT_EQ(executableName("", "/usr/libexec/logd"), "logd");
    EXPECT_EQ(executableName("", "kernel_task"), "kernel_task");
    EXPECT_EQ(executableName("", "/Library/Helper Tools/My Helper "), "My Helper");
    EXPECT_EQ(executableName("", ""), "");
}

} // namespace
} // namespace loadwarden
