#pragma once

// Reading a command's options: values of options and the errors that a user
// sees for bad ones.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

// The arguments of one command, consumed front to back.
class ArgumentList {
public:
    explicit ArgumentList(const std::vector<std::string>& arguments) : arguments_(arguments) {}

    bool atEnd() const { return next_ == arguments_.size(); }
    // The next argument; for "--name=value" only "--name", its value waiting.
    std::string take();
    // The value of the option just taken: after "=" or the next argument.
    std::optional<std::string> takeValue();
    // The option just taken came with "=value".
    bool hasAttachedValue() const { return attachedValue_.has_value(); }

private:
    const std::vector<std::string>& arguments_;
    std::size_t next_ = 0;
    std::optional<std::string> attachedValue_;
};

// A number of seconds above zero, such as "2" or "0.5".
std::optional<double> parsePositiveSeconds(std::string_view text);

// A whole number of at least 1.
std::optional<int> parsePositiveCount(std::string_view text);

} // namespace loadwarden
