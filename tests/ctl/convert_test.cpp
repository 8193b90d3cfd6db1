// kelprobectl convert as a process.
#include "report/bytes.h"
#include "tests/support/temp_directory.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <pcap/pcap.h>
#include <pcap/usb.h>
#include <sstream>
#include <sys/stat.h>

namespace {

constexpr const char* kRecording = "D: 0\n"
                                   "R: 2 05 0b\n"
                                   "N: Headset\n"
                                   "I: 3 046d 0a38\n"
                                   "D: 1\n"
                                   "R: 1 c0\n"
                                   "D: 0\n"
                                   "# output 000010.000001 3 03 08 00 -> 3\n"
                                   "# output 000010.000002 2 00 01 -> failed timed out\n"
                                   "# feature 000010.000003 2 04 01 -> 2\n"
                                   "# feature 000010.000004 2 00 01 -> 2\n"
                                   "D: 1\n"
                                   "E: 000011.500000 3 03 01 00\n";

// "time bus.device endpoint C|I (control, interrupt) event status [setup] length: data"
std::string packetText(const pcap_pkthdr& head, const u_char* bytes)
{
    pcap_usb_header_mmapped header;
    EXPECT_GE(head.caplen, sizeof header);
    std::memcpy(&header, bytes, sizeof header);
    EXPECT_EQ(head.caplen, sizeof header + header.data_len);
    EXPECT_EQ(head.len, head.caplen);
    EXPECT_EQ(head.ts.tv_sec, header.ts_sec);
    EXPECT_EQ(head.ts.tv_usec, header.ts_usec);
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%lld.%06d %d.%d %02x %c%d %c %d",
        static_cast<long long>(header.ts_sec), header.ts_usec, header.bus_id, header.device_address,
        header.endpoint_number, header.event_type, static_cast<int>(header.id),
        header.transfer_type == URB_CONTROL ? 'C' : 'I', header.status);
    const u_char* const setup = bytes + offsetof(pcap_usb_header_mmapped, s.setup);
    return std::string(text.data())
        + (header.setup_flag ? "" : " [" + report::toHex({setup, sizeof header.s.setup}) + ']')
        + ' ' + std::to_string(header.urb_len)
        + (header.data_flag ? std::string(1, header.data_flag)
                            : ": " + report::toHex({bytes + sizeof header, header.data_len}))
        + '\n';
}

std::string captureText(const std::string& file)
{
    std::array<char, PCAP_ERRBUF_SIZE> error{};
    const std::unique_ptr<pcap_t, decltype(&pcap_close)> capture(
        pcap_open_offline(file.c_str(), error.data()), pcap_close);
    if (!capture)
        return error.data();
    EXPECT_EQ(pcap_datalink(capture.get()), DLT_USB_LINUX_MMAPPED);
    std::string text;
    pcap_pkthdr* head = nullptr;
    const u_char* bytes = nullptr;
    int result = 0;
    while ((result = pcap_next_ex(capture.get(), &head, &bytes)) == 1)
        text += packetText(*head, bytes);
    EXPECT_EQ(result, PCAP_ERROR_BREAK) << pcap_geterr(capture.get());
    return text;
}

class Convert : public testing::Test {
protected:
    // The exit status and all output of "kelprobectl convert" in the directory.
    std::string run(const std::string& arguments, const std::string& before = "")
    {
        const std::string command = "cd " + directory_.path() + "; " + before
            + " exec " KELPROBECTL " convert " + arguments + " 2>&1";
        FILE* const pipe = popen(command.c_str(), "r");
        std::string output;
        for (int c = 0; (c = fgetc(pipe)) != EOF;)
            output += static_cast<char>(c);
        return std::to_string(WEXITSTATUS(pclose(pipe))) + ' ' + output;
    }

    const test::TempDirectory directory_;
};

TEST_F(Convert, WritesTransfersOfDescriptorsAndReports)
{
    const std::string recording = directory_.file("r", kRecording);
    EXPECT_EQ(run("r --pcap out"), "0 ");
    const std::string config0
        = "09 02 29 00 01 01 00 80 32 09 04 00 00 02 03 00 00 00 "
          "09 21 11 01 00 01 22 02 00 07 05 81 03 40 00 01 07 05 01 03 40 00 01";
    std::string config1 = config0;
    config1.replace(config1.find("22 02"), 5, "22 01");
    EXPECT_EQ(captureText(directory_.path() + "out"),
        "10.000001 1.1 80 S1 C -115 [80 06 00 01 00 00 12 00] 18<\n"
        "10.000001 1.1 80 C1 C 0 18: 12 01 00 02 00 00 00 40 6d 04 38 0a 00 00 00 00 00 01\n"
        "10.000001 1.1 80 S2 C -115 [80 06 00 02 00 00 29 00] 41<\n"
        "10.000001 1.1 80 C2 C 0 41: "
            + config0
            + "\n"
              "10.000001 1.1 80 S3 C -115 [81 06 00 22 00 00 02 00] 2<\n"
              "10.000001 1.1 80 C3 C 0 2: 05 0b\n"
              "10.000001 1.2 80 S4 C -115 [80 06 00 01 00 00 12 00] 18<\n"
              "10.000001 1.2 80 C4 C 0 18: 12 01 00 02 00 00 00 40 00 00 00 00 00 00 00 00 00 01\n"
              "10.000001 1.2 80 S5 C -115 [80 06 00 02 00 00 29 00] 41<\n"
              "10.000001 1.2 80 C5 C 0 41: "
            + config1
            + "\n"
              "10.000001 1.2 80 S6 C -115 [81 06 00 22 00 00 01 00] 1<\n"
              "10.000001 1.2 80 C6 C 0 1: c0\n"
              "10.000001 1.1 01 S7 I -115 3: 03 08 00\n"
              "10.000001 1.1 01 C7 I 0 3>\n"
              "10.000002 1.1 01 S8 I -115 1: 01\n"
              "10.000002 1.1 01 C8 I -5 0>\n"
              "10.000003 1.1 00 S9 C -115 [21 09 04 03 00 00 02 00] 2: 04 01\n"
              "10.000003 1.1 00 C9 C 0 2>\n"
              "10.000004 1.1 00 S10 C -115 [21 09 00 03 00 00 01 00] 1: 01\n"
              "10.000004 1.1 00 C10 C 0 1>\n"
              "11.500000 1.2 81 S11 I -115 3<\n"
              "11.500000 1.2 81 C11 I 0 3: 03 01 00\n");
}

TEST_F(Convert, OrdersThePacketsOfDevicesByTime)
{
    directory_.file("r",
        "D: 0\nR: 1 c0\nE: 000002.000000 1 01\nE: 000003.000000 1 02\n"
        "D: 1\nR: 1 c0\nE: 000001.000000 1 03\nE: 000002.000000 1 04\n");
    EXPECT_EQ(run("r --pcap out"), "0 ");
    std::istringstream packets(captureText(directory_.path() + "out"));
    std::string order;
    for (std::string packet; std::getline(packets, packet);) {
        if (packet.find(" 81 C") != packet.npos)
            order += packet.substr(0, 2) + packet.substr(packet.size() - 2) + ' ';
        if (packet.find(" 80 ") != packet.npos) {
            EXPECT_EQ(packet.substr(0, 9), "1.000000 ") << "descriptors";
        }
    }
    EXPECT_EQ(order, "1.03 2.01 2.04 3.02 ");
}

TEST_F(Convert, SaysWhyItCannot)
{
    directory_.file("r", kRecording);
    directory_.file("empty", "");
    directory_.file("back", "N: a\nE: 000001.000000 1 01\nE: 000000.000000 1 01\n");
    directory_.file("out", "earlier");
    for (const auto& [arguments, outcome] : {
             std::pair{"empty --pcap out",
                 "2 kelprobectl: empty:1:1: expected a recording, found no device\n"},
             {"back --pcap out",
                 "2 kelprobectl: back:3:4: expected 000001.000000 or later, found an earlier "
                 "time\n"},
             {"none --pcap out", "3 kelprobectl: none: No such file or directory\n"},
             {". --pcap out", "3 kelprobectl: .: Is a directory\n"},
             {"r --pcap ./r",
                 "2 kelprobectl: ./r: the capture would replace the recording; give it another "
                 "name\n"},
             {"r --pcap none/out", "3 kelprobectl: none/out: No such file or directory\n"},
             {"r --pcap /dev/full", "3 kelprobectl: /dev/full: No space left on device\n"},
             {"r --pcap -",
                 "2 kelprobectl: -: convert writes files; for standard output use --pcap "
                 "/dev/stdout\n"},
             {"r", "2 kelprobectl: --pcap is required\nTry kelprobectl convert --help.\n"},
         })
        EXPECT_EQ(run(arguments), outcome) << arguments;
    EXPECT_EQ(run("r --pcap out", "ulimit -f 1;"), "3 kelprobectl: out: File too large\n");
    // A signal, while it waits for the recording.
    ASSERT_EQ(mkfifo((directory_.path() + "pipe").c_str(), 0600), 0);
    EXPECT_EQ(run("pipe --pcap out", "{ sleep 0.3; kill $$; } & sleep 3 >pipe &"),
        "3 kelprobectl: stopped by a signal; no capture was written\n");
    EXPECT_EQ(test::filesIn(directory_.path()),
        (std::map<std::string, std::string>{{"back", test::content(directory_.path() + "back")},
            {"empty", ""}, {"out", "earlier"}, {"r", kRecording}}))
        << "no part of a capture is left, and the earlier one is as it was";
}

TEST(CommandLine, HelpIsACommandToo)
{
    const auto run = [](const std::string& arguments) {
        FILE* const pipe = popen((KELPROBECTL " " + arguments + " 2>&1").c_str(), "r");
        std::string output;
        for (int c = 0; (c = fgetc(pipe)) != EOF;)
            output += static_cast<char>(c);
        return std::to_string(WEXITSTATUS(pclose(pipe))) + ' ' + output;
    };
    EXPECT_EQ(run("help"), run("--help"));
    EXPECT_EQ(run("help convert"), run("convert --help"));
    EXPECT_EQ(run("convert --help").substr(0, 2), "0 ");
    EXPECT_EQ(run("help convrt"),
        "2 kelprobectl: unknown command convrt; did you mean convert?\nTry kelprobectl --help.\n");
    EXPECT_EQ(run(""), "2 kelprobectl: a command is required\nTry kelprobectl --help.\n");
}

TEST_F(Convert, WarnsOfAMissingDescriptor)
{
    directory_.file("r", "N: a\nE: 000000.000000 1 01\n");
    EXPECT_EQ(run("r --pcap out"),
        "0 kelprobectl: device 0 has no R: line; without its descriptor no reader can decode its "
        "reports\n");
    EXPECT_EQ(captureText(directory_.path() + "out").find("[81 06"), std::string::npos);
}

} // namespace
