#include "tools/ctl/trace/trace_command.h"

#include "tools/ctl/calls/trace_message.h"
#include "tools/ctl/trace/trace.h"
#include "tools/ctl/trace/trace_server.h"
#include "tools/ctl/trace/traced_program.h"
#include "tools/preload/preload_library.h"
#include "tools/text/printable.h"

#include <memory>

namespace fs = std::filesystem;

namespace ctl {
namespace {

constexpr const char* kPreloadLibrary = "kelprobe-trace-preload.so";

struct Options {
    Trace::Options trace;
    std::vector<std::string> command;
};

void explainEnd(const Options& options, const Trace& trace, const TraceServer& server)
{
    const std::string program = "kelprobectl: " + text::printable(options.command.front());
    if (server.isConnected())
        Output::err().line(program + " has ended; processes that it started continue untraced");
    if (trace.empty())
        Output::err().line(program
            + " made no hidapi calls that could be seen; programs that contain hidapi, that load it"
              " with dlopen(), or that run as another user cannot be traced");
}

// Not of files that are written directly, such as /dev/null.
bool isSameFile(const std::string& one, const std::string& other)
{
    if (one.empty() || other.empty())
        return false;
    const fs::path target = fs::weakly_canonical(fs::absolute(one));
    const bool isSpecial = fs::exists(target) && !fs::is_regular_file(target);
    return !isSpecial && target == fs::weakly_canonical(fs::absolute(other));
}

int traceProgram(const Options& options)
{
    if (isSameFile(options.trace.output, options.trace.record))
        throw Failure(kWrongUse, "--output and --record need different files");
    TracedProgram program; // first, so that no signal leaves the server's directory behind
    TraceServer server;
    const std::string library = preload::libraryPath(kPreloadLibrary, server.directory());
    Trace trace(options.trace);
    const auto add = [&trace](const Call& call) { trace.add(call); };
    try {
        program.start(options.command,
            {{TRACE_SOCKET_VARIABLE, server.socketPath()},
                {"LD_PRELOAD", preload::appended(library)}});
        trace.setProgram(program.pid());
        do
            server.receiveUntilReadable(program.signalFd(), add);
        while (!program.handleSignals());
        server.receiveRest(add);
        explainEnd(options, trace, server);
        const bool complete = trace.finish();
        return complete || program.exitStatus() != 0 ? program.exitStatus() : kNoAccess;
    } catch (const TracedProgram::StartError& error) {
        Output::err().line("kelprobectl: " + text::printable(error.text));
        return error.exitStatus;
    }
}

} // namespace

void addTraceCommand(Command program, Run& run)
{
    Command command = program.addCommand(
        "trace", "Run a program and print what it and its devices send to each other");
    const auto options = std::make_shared<Options>();
    command
        .addOption("--output", options->trace.output,
            "Write the trace to this file instead of standard error")
        .placeholder("FILE");
    command
        .addOption(
            "--record", options->trace.record, "Also write the reports to this file as a recording")
        .placeholder("FILE");
    command.addFlag("--json", options->trace.json, "Print one line of JSON for each call");
    command.addOption("PROGRAM", options->command, "The program and its arguments, after --")
        .required();
    command.footer(
        "The program is not changed and keeps its standard streams. Only programs that use the\n"
        "shared library of hidapi can be traced, not those that contain hidapi.\n"
        "A * (or bold text) marks what changed since the report before.\n"
        "Exit status: the program's own, or 128 + the signal that ended it; 127 if it is not\n"
        "found, 126 if it cannot be run.\n"
        "Example: kelprobectl trace -- kelprobe");
    command.action(run, [options] { return traceProgram(*options); });
}

} // namespace ctl
