#include "shell/info_report.h"

#include "core/details/process_details.h"
#include "core/grouping/row_figures.h"
#include "core/measurement/measurement_json.h"
#include "core/text/units_format.h"
#include "shell/terminal_text.h"

#include <ostream>

namespace loadwarden {

namespace {

constexpr std::size_t labelWidth = 14;

} // namespace

void printInfoReport(const InfoReport& report, std::ostream& out) {
    const ProcessRecord& record = report.process.record;
    const RowFigures figures = memberFigures(report.process);
    const auto line = [&out](std::string_view label, const std::string& value) {
        out << TerminalText::padded(label, labelWidth, false) << value << '\n';
    };
    const ProcessExtras extras{&report.code, &report.files};
    const auto factLine = [&](ProcessFact fact) {
        line(title(fact), factText(fact, report.process, extras));
    };
    line("Process", record.name + " (pid " + std::to_string(record.pid) + ")");
    line("Path", record.path.empty() ? std::string(noFigure) : record.path);
    for (const ProcessFact shared :
         {ProcessFact::user, ProcessFact::state, ProcessFact::threads, ProcessFact::architecture,
          ProcessFact::cpu, ProcessFact::memory}) {
        factLine(shared);
    }
    line("Energy", figureOf(figures, ProcessColumn::energy).text);
    line("Disk", figureOf(figures, ProcessColumn::disk).text);
    line("Network", figureOf(figures, ProcessColumn::network).text);
    for (const ProcessFact shared : {ProcessFact::madeBy, ProcessFact::sandboxed,
                                     ProcessFact::openFiles, ProcessFact::ports}) {
        factLine(shared);
    }
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
