#include "app/control/applications.h"

namespace loadwarden {

namespace {

class SignalledApplications final : public Applications {
public:
    bool isRegularApp(std::int32_t) override { return false; }
    void terminate(std::int32_t) override {}
    bool forceTerminate(std::int32_t) override { return false; }
};

} // namespace

std::unique_ptr<Applications> systemApplications() {
    return std::make_unique<SignalledApplications>();
}

} // namespace loadwarden
