#include "core/codesign/code_info.h"
#include "core/codesign/linux/package_index.h"
#include "core/network/linux/listening_sockets.h"

#include <gtest/gtest.h>

namespace loadwarden {

TEST(CodeInfoTest, CertificateSummariesNameTheDeveloperOrApple) {
    using Kind = CodeInfo::Signer::Kind;
    EXPECT_EQ(signerFromSummary("Developer ID Application: Acme Tools (ABCDE12345)"),
              (CodeInfo::Signer{Kind::developer, "Acme Tools (ABCDE12345)"}));
    EXPECT_EQ(signerFromSummary("Apple Distribution: Ann Lee").kind, Kind::apple);
    EXPECT_EQ(signerFromSummary("Software Signing").kind, Kind::apple);
    EXPECT_EQ(signerText({Kind::adHoc, {}}), "Ad hoc (no developer)");
}

TEST(CodeInfoTest, PackagesOwnTheirFilesUnderEitherPathOfAMergedUsr) {
    PackageIndex index;
    index.addDpkgList("coreutils.list", "/.\n/bin\n/bin/sleep\n/usr/bin/env\n");
    index.addDpkgList("libc6:amd64.list", "/lib/x86_64-linux-gnu/libc.so.6\n");
    EXPECT_EQ(index.packageOf("/usr/bin/sleep"), "coreutils");
    EXPECT_EQ(index.packageOf("/bin/env"), "coreutils");
    EXPECT_EQ(index.packageOf("/usr/lib/x86_64-linux-gnu/libc.so.6"), "libc6");
    EXPECT_EQ(index.packageOf("/opt/tool"), std::nullopt);

    const auto flatpak =
        sandboxedAppInfo("/var/lib/flatpak/app/org.example.Notes/x86_64/stable/active/files/bin/notes");
    ASSERT_TRUE(flatpak);
    EXPECT_TRUE(flatpak->sandboxed);
    EXPECT_EQ(signerText(flatpak->signer), "org.example.Notes (Flatpak)");
    EXPECT_EQ(signerText(sandboxedAppInfo("/snap/firefox/4173/usr/lib/firefox/firefox")->signer),
              "firefox (Snap)");
    EXPECT_FALSE(sandboxedAppInfo("/usr/bin/snapd"));
}

TEST(ListeningSocketsTest, FindsListeningTcpAndBoundUdpSockets) {
    const std::string tcp =
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
        "   0: 0100007F:1F90 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000        0 5001 1\n"
        "   1: 0100007F:9C40 0100007F:1F90 01 00000000:00000000 00:00000000 00000000  1000        0 5002 1\n";
    EXPECT_EQ(ListeningSockets::parse(tcp, false),
              (std::map<std::uint64_t, std::uint16_t>{{5001, 8080}}));
    const std::string udp =
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
        "  7: 00000000:14E9 00000000:0000 07 00000000:00000000 00:00000000 00000000   100        0 6001 2\n";
    EXPECT_EQ(ListeningSockets::parse(udp, true),
              (std::map<std::uint64_t, std::uint16_t>{{6001, 5353}}));
    EXPECT_TRUE(ListeningSockets::parse("garbage\n 0: x 0A\n", false).empty());
}

} // namespace loadwarden
