// The commands of a bench from each front end, and its control socket under hostile clients.
#include "tests/sim/control_client.h"
#include "tests/sim/sim_process.h"

#include <list>

namespace {

class Control : public KelprobeSim { };

struct Row {
    std::string command;
    std::string event;  // the line of the transcript; empty if there is none
    std::string answer; // the line of text, or the error
    int status = 0;
};

const std::vector<Row> kRows = {
    {"press mute", "1:  in   03 08 00     mute pressed  (no program listens)", "", 0},
    {"raw", "1:  in   03 00 00     mute released  (no program listens)", "expected raw HEX",
        2}, // the second report of the press
    {"1:  hook  off ", "1:  in   03 01 00     hook off  (no program listens)", "", 0},
    {"hook", "1:  in   03 00 00     hook on  (no program listens)", "", 0},
    {"press mute --hold", "1:  in   03 08 00     mute pressed  (no program listens)", "", 0},
    {"press hook", "1:  in   03 09 00     hook off  (no program listens)", "", 0},
    {"release mute", "1:  in   03 01 00     mute released  (no program listens)", "", 0},
    {"release hook", "1:  in   03 00 00     hook on  (no program listens)", "", 0},
    {"2: press busy", "", "the device has no button busy", 2},
    {"press mutt", "", "the device has no button mutt; did you mean mute?", 2},
    {"press", "", "expected press BUTTON [--hold]", 2},
    {"press mute flash", "", "expected press BUTTON [--hold]", 2},
    {"press mute --held", "", "unknown option --held; did you mean --hold?", 2},
    {"hook up", "", "expected hook on or hook off", 2},
    {"raw 01 02", "1:  in   01 02        raw: Volume Increment on  (no program listens)", "", 0},
    {"raw 0", "", "raw takes bytes in hexadecimal, such as 03 01 00", 2},
    {"2: lamps", "", "mute            off", 0},
    {"2: lamps --json", "",
        R"({"lamps":[{"label":"Mute","name":"mute","state":"off","usage":"00080009"}]})", 0},
    {"expect ring off", "", "", 0},
    {"expect ring on", "", "ring is off, not on", 1},
    {"expect ring blink --within 30ms", "", "ring is off, not blinking", 1},
    {"expect rin on", "", "the device has no lamp rin; did you mean ring?", 2},
    {"expect ring red", "", "expected on, off or blink after the lamp's name", 2},
    {"wait closed", "", "", 0},
    {"wait open --within 30ms", "", "the device is closed, not open", 1},
    {"wait open --within 3", "", "--within takes a time such as 500ms or 2s", 2},
    {"wait for", "", "expected wait open, wait closed or wait idle", 2},
    {"fault short", "", "fault short takes a length in bytes, or off", 2},
    {"fault open 2", "", "fault open takes no number", 2},
    {"fault clam", "", "unknown fault clam; did you mean claim?", 2},
    {"fault claim x", "", "expected a number or off, not x", 2},
    {"fault stall 3", "1:  --   fault stall on", "", 0},
    {"fault stall off", "1:  --   fault stall off", "", 0},
    {"fault flood 65537", "", "fault flood takes a number of reports from 1 to 65536", 2},
    {"unplug", "1:  --   unplugged", "", 0},
    {"unplug", "", "", 0},
    {"replug", "1:  --   plugged in", "", 0},
    {"3: mute", "", "no such device; there are 2", 2},
    {"0: mute", "", "no such device; there are 2", 2},
    {"mutt", "", "unknown command mutt; did you mean mute?", 2},
};

TEST_F(Control, TheSameCommandsWorkFromEveryFrontEnd)
{
    const std::string bench = "kelprobe-sim 2>&1 run speakerphone webcam -- sleep 60";

    start(bench); // standard input
    for (const Row& row : kRows) {
        give(row.command);
        if (!row.event.empty()) {
            EXPECT_EQ(line(), row.event) << row.command;
        }
        if (!row.answer.empty()) {
            EXPECT_EQ(line(), (row.status ? "kelprobe-sim: " : "") + row.answer) << row.command;
        }
    }
    give("quit");
    EXPECT_EQ(exitStatus(), 0);

    start(bench); // a process for each
    for (const Row& row : kRows) {
        int status = -1;
        const std::string printed = outputOf(
            "kelprobe-sim --socket " + socket() + " " + row.command + " 2>&1 3>&-", &status);
        if (!row.event.empty()) {
            EXPECT_EQ(line(), row.event) << row.command;
        }
        const std::string answer = (row.status ? "kelprobe-sim: " : "") + row.answer + '\n';
        EXPECT_EQ(printed, row.answer.empty() ? "" : answer);
        EXPECT_EQ(status, row.status) << row.command;
    }
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);

    start(bench); // the socket
    {
        ControlClient client(socket());
        for (const Row& row : kRows) {
            const std::string end = "{\"status\":" + std::to_string(row.status) + "}\n";
            const std::string error = "{\"error\":\"" + row.answer
                + "\",\"status\":" + std::to_string(row.status) + "}\n";
            const std::string text = row.answer[0] == '{' ? row.answer + '\n' + end
                : row.answer.empty()                      ? end
                : row.status                              ? error
                             : "{\"text\":\"" + row.answer + "\"}\n" + end;
            EXPECT_EQ(client.answer(row.command), text) << row.command;
            if (!row.event.empty()) {
                EXPECT_EQ(line(), row.event) << row.command;
            }
        }
    }
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(Control, EventsTellWhatHappensUntilTheNextCommand)
{
    start("kelprobe-sim run -- sim-client open w 030000 r 030100 w 030800 w 030000 w 030800 gone");
    EXPECT_EQ(lineWith("out"), "out  03 00 00     no change");
    ControlClient events(socket());
    events.send("events\n");
    EXPECT_NE(events.line().find(R"("event":"start")"), std::string::npos);
    ControlClient other(socket());
    EXPECT_EQ(other.answer("hook off"), "{\"status\":0}\n");
    const auto event = [&events] { // without its time
        const std::string object = events.line();
        return object.substr(0, object.find(",\"time\""));
    };
    for (const char* const expected :
        {
            R"({"cause":"hook off","device":1,"event":"input","meaning":["Hook Switch on"],"read":true,"report":"030100")",
            R"({"device":1,"event":"hook","position":"off")",
            R"({"device":1,"event":"output","lamps":{"ring":"on"},"meaning":["Ring on"],"report":"030800")",
            R"({"device":1,"event":"lamp","name":"ring","state":"on")",
            R"({"device":1,"event":"output","lamps":{"ring":"off"},"meaning":["Ring off"],"report":"030000")",
            R"({"device":1,"event":"lamp","name":"ring","state":"off")",
            R"({"device":1,"event":"output","lamps":{"ring":"on"},"meaning":["Ring on"],"report":"030800")",
            R"({"device":1,"event":"lamp","name":"ring","state":"on")",
        })
        EXPECT_EQ(event(), expected);
    EXPECT_EQ(events.answer("expect ring on"), "{\"status\":0}\n"); // of events
    EXPECT_EQ(events.line(), "{\"status\":0}");
    EXPECT_EQ(other.answer("quit"), "{\"status\":0}\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Control, AConditionThatHoldsForAMomentIsNotMissed)
{
    start("kelprobe-sim run -- sim-client open r 01 w 030800 w 030000 gone");
    EXPECT_EQ(lineWith("opened"), "--   opened");
    ControlClient client(socket());
    client.send("expect ring on --within 20s\n");
    EXPECT_EQ(ControlClient(socket()).answer("raw 01"), "{\"status\":0}\n");
    EXPECT_EQ(client.line(), "{\"status\":0}");
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(Control, HostileLinesAreRefusedAndTheConnectionIsClosed)
{
    start("kelprobe-sim run -- sleep 60");
    const std::string many(300'000, 'x');
    for (const auto& [line, error] : {
             std::pair{std::string("mute\0\n", 6), "the line is not text in UTF-8"},
             {std::string("mute \xff\n"), "the line is not text in UTF-8"},
             {many, "the line is too long"}, // without an end
             {many + '\n', "the line is too long"},
         }) {
        ControlClient client(socket());
        client.send(line);
        EXPECT_EQ(client.line(), std::string("{\"error\":\"") + error + "\",\"status\":2}");
        EXPECT_EQ(client.line(), "end") << error;
    }
    EXPECT_EQ(ControlClient(socket()).answer("expect ring off"), "{\"status\":0}\n");
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(Control, AHundredClientsAreServedOrRefused)
{
    start("kelprobe-sim run -- sleep 60");
    const std::string path = socket();
    std::list<ControlClient> clients;
    int served = 0;
    for (int i = 0; i < 100; ++i) {
        clients.emplace_back(path);
        const std::string answer = clients.back().answer("expect ring off");
        served += answer == "{\"status\":0}\n";
        if (answer != "{\"status\":0}\n") {
            EXPECT_EQ(answer, "{\"error\":\"the bench has too many clients\",\"status\":3}\n");
        }
    }
    EXPECT_EQ(served, 64);
    clients.clear();
    EXPECT_EQ(ControlClient(path).answer("quit"), "{\"status\":0}\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Control, AClientThatDoesNotReadIsDropped)
{
    start("kelprobe-sim run -- sleep 60 >/dev/null");
    const std::string path = socket();
    ControlClient silent(path);
    silent.send("events\n");
    ControlClient greedy(path); // asks until nobody listens
    while (greedy.sendNow("devices --json\n")) { }
    ControlClient other(path);
    for (int i = 0; i < 15'000; ++i)
        ASSERT_EQ(other.answer("raw 030000"), "{\"status\":0}\n");
    std::string last;
    do
        last = silent.line();
    while (last[0] == '{');
    EXPECT_EQ(last, "end");
    EXPECT_EQ(other.answer("quit"), "{\"status\":0}\n");
    exitStatus();
}

TEST_F(Control, AClientThatClosesBeforeAnEventIsSentToItIsRemoved)
{
    start("kelprobe-sim run -- sleep 60");
    const auto openFiles = [this] {
        const std::filesystem::directory_iterator files("/proc/" + std::to_string(pid_) + "/fd");
        return std::distance(begin(files), end(files));
    };
    const std::string path = socket();
    ControlClient other(path);
    EXPECT_EQ(other.answer("expect ring off"), "{\"status\":0}\n");
    std::ptrdiff_t before = 0;
    {
        ControlClient events(path);
        events.send("events\n");
        EXPECT_NE(events.line().find("start"), std::string::npos);
        kill(pid_, SIGSTOP); // it finds the command and the end of the events at the same time
        before = openFiles();
        other.send("raw 030000\n");
    }
    kill(pid_, SIGCONT);
    EXPECT_EQ(other.line(), "{\"status\":0}");
    for (int i = 0; i < 1000 && openFiles() == before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_LT(openFiles(), before);
    EXPECT_EQ(other.answer("quit"), "{\"status\":0}\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Control, ATranscriptThatNobodyReadsStopsNeitherCommandsNorSignals)
{
    start("kelprobe-sim run -- sim-client open flood 3000");
    {
        ControlClient client(socket());
        for (int i = 0; i < 5000; ++i) // more than the pipe holds
            ASSERT_EQ(client.answer("raw 030000"), "{\"status\":0}\n");
    }
    int reports = 0;
    while (reports < 8000 && lineWith("03 00 00") != "end")
        ++reports;
    EXPECT_EQ(reports, 8000); // none is missing
    EXPECT_EQ(exitStatus(), 0);

    for (const int signal : {SIGTERM, SIGINT}) {
        const test::TempDirectory files;
        const std::string full = files.path() + "full"; // the output is
        start("kelprobe-sim run -- sh -c 'until test -e " + full
            + "; do sleep .01; done; kelprobectl lamp ring on --for 60'");
        ControlClient client(socket());
        for (int i = 0; i < 5000; ++i)
            ASSERT_EQ(client.answer("raw 030000"), "{\"status\":0}\n");
        std::ofstream(full) << "";
        ASSERT_EQ(client.answer("expect ring on --within 20s"), "{\"status\":0}\n");
        kill(pid_, signal);
        EXPECT_TRUE(endsUnread()) << signal;
        EXPECT_EQ(exitStatus(), 128 + signal);
    }
}

TEST_F(Control, StandardInputIsNotReadWhileACommandWaits)
{
    start("kelprobe-sim run -- sleep 60");
    give("wait open --within 60s");
    EXPECT_LT(fillInput(), 200'000U);
    kill(pid_, SIGTERM);
    EXPECT_EQ(exitStatus(), 128 + SIGTERM);
}

TEST_F(Control, CommandsThatStartTogetherAllReachTheBench)
{
    start("kelprobe-sim 2>&1 run -- sh -c 'for i in $(seq 60); do kelprobe-sim expect ring off || "
          "echo failed; done & for i in $(seq 60); do kelprobe-sim wait closed || echo failed & "
          "done; wait'");
    EXPECT_EQ(line(), "end");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Control, WithoutABenchACommandFails)
{
    int status = -1;
    EXPECT_EQ(outputOf("env -u KELPROBE_SIM kelprobe-sim devices 2>&1", &status),
        "kelprobe-sim: there is no bench here; run this in kelprobe-sim run FILE -- PROGRAM, or "
        "name its socket with --socket\n");
    EXPECT_EQ(status, 3);
}

} // namespace
