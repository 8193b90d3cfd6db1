// Compares logging with spdlog, formatting with fmt, and a disabled call with a load.
#include "bench/measure.h"

#include "base/src/log/log.h"
#include "base/src/log/logger_file_default.h"

#include <fmt/format.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace {

constexpr uint32_t module_id = 7;
constexpr size_t lines_per_batch = 4000;
constexpr size_t calls_per_batch = 1'000'000;
constexpr size_t texts_per_batch = 50'000;

struct report_t {
    uint32_t vendor = 0x0B0E;
    uint32_t product = 0x0410;
    uint64_t sequence = 0;
    const char* path = "/dev/hidraw3";
};

void log_with_ours(size_t lines)
{
    report_t report;
    for (; report.sequence < lines; ++report.sequence)
        RKB_LOG(module_id, rkb::log_info,
            "report read, vendor = " << report.vendor << ", product = " << report.product
                                     << ", sequence = " << report.sequence
                                     << ", path = " << report.path << "\n");
}

void log_with_spdlog(spdlog::logger& logger, size_t lines)
{
    report_t report;
    for (; report.sequence < lines; ++report.sequence)
        logger.info("report read, vendor = {}, product = {}, sequence = {}, path = {}",
            report.vendor, report.product, report.sequence, report.path);
}

template <typename routine_t>
void in_threads(size_t threads, const routine_t& routine)
{
    std::vector<std::thread> running;
    for (size_t i = 0; i < threads; ++i)
        running.emplace_back([&routine, threads] { routine(lines_per_batch / threads); });
    for (std::thread& thread : running)
        thread.join();
}

// Only the system calls that write a line. Neither library can avoid them.
void write_lines(int file, size_t lines)
{
    constexpr std::string_view line
        = "11/21/2026 14:44:39:022\tBENCH\t[7394:7394:709425152]\tINFO\t"
          "report read, vendor = 2830, product = 1040, sequence = 1000, path = /dev/hidraw3\n";
    for (size_t i = 0; i < lines; ++i)
        bench::keep(write(file, line.data(), line.size()));
}

void measure_lines(const std::string& directory)
{
    rkb::create_default_file_sink(directory.c_str(), "ours", "log", 1u << 30, 9);
    rkb::register_logger(module_id, "BENCH", rkb::log_info, nullptr, 3);
    const auto logger = spdlog::basic_logger_mt("BENCH", directory + "peer.log");
    logger->flush_on(spdlog::level::trace);

    bench::compare(
        "log line to a file, flushed; spdlog", "<= 0.80", lines_per_batch,
        [] { log_with_ours(lines_per_batch); }, [&] { log_with_spdlog(*logger, lines_per_batch); });
    bench::compare(
        "the same from 4 threads; spdlog", "<= 0.80", lines_per_batch,
        [] { in_threads(4, log_with_ours); },
        [&] { in_threads(4, [&](size_t lines) { log_with_spdlog(*logger, lines); }); });
    const int file = open((directory + "bare.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    bench::compare(
        "log line to a file, flushed; a bare write(2) of as many bytes", "", lines_per_batch,
        [] { log_with_ours(lines_per_batch); }, [file] { write_lines(file, lines_per_batch); });
    close(file);
    spdlog::drop_all();
}

void measure_disabled()
{
    std::atomic<uint32_t> word{1};
    bench::compare(
        "disabled log call; empty iteration with an atomic load", "+ 3 ns", calls_per_batch,
        [] {
            for (size_t i = 0; i < calls_per_batch; ++i) {
                RKB_LOG(module_id, rkb::log_debug, "value = " << i << "\n");
                bench::keep(i);
            }
        },
        [&word] {
            for (size_t i = 0; i < calls_per_batch; ++i) {
                bench::keep(word.load(std::memory_order_relaxed));
                bench::keep(i);
            }
        });
}

void measure_text()
{
    std::array<char, rkb::log_line_size> buffer{};
    const report_t report{.sequence = 123456};
    const bool muted = true;
    bench::compare(
        "text_stream_t, a typical line; fmt::format_to_n", "<= 1.00", texts_per_batch,
        [&] {
            for (size_t i = 0; i < texts_per_batch; ++i) {
                rkb::text_stream_t stream(buffer.data(), buffer.size());
                stream << "report read, vendor = " << report.vendor
                       << ", product = " << report.product << ", sequence = " << i
                       << ", path = " << report.path << ", muted = " << muted
                       << ", this = " << &report << "\n";
                bench::keep(stream.text());
            }
        },
        [&] {
            for (size_t i = 0; i < texts_per_batch; ++i) {
                *fmt::format_to_n(buffer.data(), buffer.size() - 1,
                    "report read, vendor = {}, product = {}, sequence = {}, path = {}, "
                    "muted = {}, this = {}\n",
                    report.vendor, report.product, i, report.path, muted, fmt::ptr(&report))
                     .out
                    = '\0';
                bench::keep(buffer.data());
            }
        });
}

void measure_double()
{
    std::array<char, rkb::log_line_size> buffer{};
    bench::compare(
        "text_stream_t << double; fmt {:.2f}", "<= 1.00", texts_per_batch,
        [&] {
            for (size_t i = 0; i < texts_per_batch; ++i) {
                rkb::text_stream_t stream(buffer.data(), buffer.size());
                stream << static_cast<double>(i) * 1.2345;
                bench::keep(stream.text());
            }
        },
        [&] {
            for (size_t i = 0; i < texts_per_batch; ++i) {
                fmt::format_to_n(
                    buffer.data(), buffer.size() - 1, "{:.2f}", static_cast<double>(i) * 1.2345);
                bench::keep(buffer.data());
            }
        });
}

} // namespace

int main()
{
    std::string directory = (std::filesystem::temp_directory_path() / "kelprobe-XXXXXX").string();
    if (!mkdtemp(directory.data()))
        return EXIT_FAILURE;
    directory += '/';
    bench::print_head();
    measure_lines(directory);
    measure_disabled();
    measure_text();
    measure_double();
    rkb::destroy_default_file_sink();
    std::filesystem::remove_all(directory);
}
