// nettop output: NetTopParser::feed and parseLine.
#include "core/network/net_top_parser.h"
#include "tests/fuzz/fuzz_support.h"

namespace loadwarden {
namespace {

constexpr std::string_view header = "\ntime,,bytes_in,bytes_out,\n";

// Every sample of the text, its last line and block closed by one more header.
std::vector<NetworkSample> samplesFed(const std::vector<std::string_view>& pieces) {
    NetTopParser parser;
    std::vector<NetworkSample> samples;
    for (const std::string_view piece : pieces) {
        for (auto& sample : parser.feed(piece)) {
            samples.push_back(std::move(sample));
        }
    }
    for (auto& sample : parser.feed(header)) {
        samples.push_back(std::move(sample));
    }
    return samples;
}

// A row as nettop prints it, with the time of day that makes the name the second field.
void checkReprinted(const NetworkBytes& row) {
    const auto again = NetTopParser::parseLine(
        "09:41:07.348212," + row.name + "." + std::to_string(row.pid) + "," +
        std::to_string(row.bytesIn) + "," + std::to_string(row.bytesOut) + ",");
    fuzz::check(again == row, "a row, printed again, reads the same");
}

} // namespace

void fuzz::run(std::string_view output) {
    const auto whole = samplesFed({output});
    const std::size_t third = output.size() / 3;
    check(samplesFed({output.substr(0, third), output.substr(third, third),
                      output.substr(2 * third)}) == whole,
          "text read in pieces gives the samples read at once");
    for (const NetworkSample& sample : whole) {
        check(!sample.empty(), "an empty block gives no sample");
        for (const auto& [pid, row] : sample) {
            check(pid == row.pid && pid >= 0, "rows are filed under their own pid");
            checkReprinted(row);
        }
    }
    for (const std::string_view line : leadingLines(output, 64)) {
        const auto row = NetTopParser::parseLine(line);
        check(!row || !(line.starts_with("time,") || line.starts_with(",bytes_in")),
              "a header is no row");
        if (row) {
            checkReprinted(*row);
        }
    }
}

} // namespace loadwarden
