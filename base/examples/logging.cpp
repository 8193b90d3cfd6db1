// A program that logs: it reads its configuration file, registers a module, logs from several
// threads until the log rotates, and prints a summary of the log files. README.md shows its output.
#include "base/src/ini/ini.h"
#include "base/src/ini/ini_config.h"
#include "base/src/log/log.h"
#include "base/src/util/thread.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr uint32_t module_phone = 2;

// Configuration and logs are below RKB_HOME, here a new directory.
std::string make_home()
{
    std::string home = (std::filesystem::temp_directory_path() / "logging-XXXXXX").string();
    if (!mkdtemp(home.data()))
        return {};
    setenv("RKB_HOME", home.c_str(), 1);
    std::filesystem::create_directory(home + "/conf");
    std::ofstream(home + "/conf/rkb-logging.cfg") << "[log]\n"
                                                     "level = 3        ; up to INFO\n"
                                                     "max size = 1048576\n"
                                                     "[run]\n"
                                                     "threads = 4\n"
                                                     "lines = 3000\n";
    return home;
}

struct caller_t {
    int number = 0;
    int lines = 0;
    rkb::thread_t thread;
};

void make_calls(void* argument)
{
    const auto* caller = static_cast<caller_t*>(argument);
    for (int i = 0; i < caller->lines; ++i) {
        RKB_LOG(module_phone, rkb::log_info,
            "call, caller = " << caller->number << ", number = " << i << ", seconds = " << i * 0.5
                              << ", this = " << caller << "\n");
        RKB_LOG(module_phone, rkb::log_debug, "not enabled, so this is never formatted\n");
    }
}

void call_from_threads(int threads, int lines)
{
    std::vector<caller_t> callers(static_cast<size_t>(threads));
    int number = 0;
    for (caller_t& caller : callers) {
        caller.number = number++;
        caller.lines = lines;
        if (!caller.thread.start(make_calls, &caller))
            std::cerr << "no thread for caller " << caller.number << "\n";
    }
    for (caller_t& caller : callers)
        caller.thread.join();
}

// Prints the name, size and first line of each log file, and the number of lines in all of them.
void report(const std::string& directory, int threads)
{
    std::vector<std::filesystem::path> logs;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        if (entry.path().extension() == ".log")
            logs.push_back(entry.path());
    std::sort(logs.begin(), logs.end());
    size_t lines = 0;
    for (const std::filesystem::path& log : logs) {
        std::cout << log.filename().string() << ", " << file_size(log) << " bytes, begins\n";
        std::ifstream file(log);
        std::string line;
        for (size_t number = 0; std::getline(file, line); ++number, ++lines)
            if (number == 0)
                std::cout << line << "\n";
    }
    std::cout << lines << " lines from " << threads << " threads in " << logs.size() << " files\n";
}

} // namespace

int main(int /*argc*/, char** argv)
{
    const std::string home = make_home();
    if (home.empty())
        return EXIT_FAILURE;
    rkb::ini_t configuration(rkb::config_file_path(argv[0]));
    if (!configuration.load())
        return EXIT_FAILURE;
    const int threads = std::clamp(configuration.get_int("run", "threads", 1), 1, 64);

    rkb::enable_logger(static_cast<uint32_t>(configuration.get_int("log", "level", 3)));
    rkb::configure_logger(
        static_cast<uint32_t>(configuration.get_int("log", "max size", 1 << 20)), 9);
    rkb::register_logger(module_phone, "PHONE", rkb::log_debug, nullptr, rkb::log_to_secondary);

    call_from_threads(threads, configuration.get_int("run", "lines", 1));
    rkb::log_control_t::release(); // from here on log calls do nothing
    report(home + "/logs", threads);
    std::filesystem::remove_all(home);
    return EXIT_SUCCESS;
}
