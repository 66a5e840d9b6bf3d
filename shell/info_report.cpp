#include "shell/info_report.h"

#include "core/grouping/process_group.h"
#include "core/measurement/measurement_json.h"
#include "core/text/units_format.h"
#include "shell/terminal_text.h"

#include <ostream>

namespace loadwarden {

namespace {

constexpr std::size_t labelWidth = 14;
constexpr std::string_view dash = "-";

template <typename Value, typename Format>
std::string orDash(const std::optional<Value>& value, Format format) {
    return value ? format(*value) : std::string(dash);
}

std::string portsText(const std::optional<FileInfo>& files) {
    if (!files) {
        return std::string(dash);
    }
    if (files->ports.empty()) {
        return "none";
    }
    std::string text;
    for (const std::uint16_t port : files->ports) {
        text += (text.empty() ? "" : ", ") + std::to_string(port);
    }
    return text;
}

} // namespace

void printInfoReport(const InfoReport& report, std::ostream& out) {
    const ProcessRecord& record = report.process.record;
    const ProcessRates& rates = report.process.rates;
    const auto line = [&out](std::string_view label, const std::string& value) {
        out << TerminalText::padded(label, labelWidth, false) << value << '\n';
    };
    line("Process", record.name + " (pid " + std::to_string(record.pid) + ")");
    line("Path", record.path.empty() ? std::string(dash) : record.path);
    line("User", record.user);
    line("State", std::string(rawValue(record.state)));
    line("Threads", orDash(record.threads, [](int threads) { return std::to_string(threads); }));
    line("Architecture", std::string(rawValue(record.arch)));
    line("CPU", formatPercent(rates.cpuPercent));
    line("Memory", formatBytes(record.memoryBytes));
    line("Energy", orDash(rates.energyWatts, formatWatts));
    line("Disk", orDash(rates.diskBytesPerSecond, formatBytesPerSecond));
    line("Network", orDash(networkTotal(rates), formatBytesPerSecond));
    line("Made by", signerText(report.code.signer));
    line("Sandboxed", report.code.sandboxed ? "Yes" : "No");
    line("Open files", orDash(report.files, [](const FileInfo& files) {
             return std::to_string(files.files);
         }));
    line("Listening on", portsText(report.files));
}

void printInfoJSON(const InfoReport& report, std::ostream& out) {
    nlohmann::json files = nullptr;
    if (report.files) {
        files = {{"files", report.files->files}, {"ports", report.files->ports}};
    }
    const nlohmann::json json{
        {"process", report.process},
        {"codeInfo",
         {{"signer", signerText(report.code.signer)}, {"sandboxed", report.code.sandboxed}}},
        {"fileInfo", files},
    };
    out << json.dump(2) << '\n';
}

} // namespace loadwarden
