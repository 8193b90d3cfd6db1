#include "base/src/log/logger_file.h"

#include "base/src/auxi/text_stream.h"
#include "base/src/log/log.h"
#include "base/src/log/log_file_name.h"
#include "base/src/toolkit/toolkit.h"
#include "base/src/util/util.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <stdio_ext.h>
#include <unistd.h>

namespace rkb {

namespace {

// The source file and lines that assert lines name. They are fixed texts.
constexpr const char* log_source_file = "../src/log";
constexpr int size_line = 150;
constexpr int index_line = 151;

bool has_text(const char* text)
{
    return text && *text;
}

bool in_range(uint32_t value, uint32_t low, uint32_t high)
{
    return value >= low && value <= high;
}

// Writes all bytes or none. If a full disk cut a line, the next line would follow it without a line
// end.
void write_whole(int file, const char* data, size_t length)
{
    size_t done = 0;
    while (done < length) {
        const ssize_t written = write(file, data + done, length - done);
        if (written > 0)
            done += static_cast<size_t>(written);
        else if (written == 0 || errno != EINTR)
            break;
    }
    if (done == length || done == 0)
        return;
    const off_t begin = lseek(file, -static_cast<off_t>(done), SEEK_CUR);
    if (begin >= 0 && ftruncate(file, begin) != 0)
        lseek(file, 0, SEEK_END);
}

// Programs that the process starts do not inherit the file.
FILE* open_for_this_process(const char* path)
{
    FILE* const file = fopen(path, "w+t");
    if (file)
        fcntl(fileno(file), F_SETFD, FD_CLOEXEC);
    return file;
}

} // namespace

logger_file_base_t::logger_file_base_t(const char* directory, const char* base_name,
    const char* extension, uint32_t max_size, uint32_t max_index)
    : m_extension(extension ? extension : ".log")
    , m_max_size(std::max(max_size, min_log_size))
    , m_max_index(max_index)
    , m_date(coarse_local_time())
{
    set_directory(directory);
    m_prefix += has_text(base_name) ? base_name : program_name();
    if (m_resume_index)
        resume_index();
}

logger_file_base_t::~logger_file_base_t() = default;

void logger_file_base_t::set_directory(const char* directory)
{
    m_directory = has_text(directory) ? directory : default_log_directory();
    create_directories(m_directory); // a failure is reported when a file is opened
    m_prefix = m_directory;
    if (m_prefix.back() != '/')
        m_prefix += '/';
}

uint32_t logger_file_base_t::configure(uint32_t max_size, uint32_t max_index)
{
    RKB_LOG(log_module_util, log_info,
        "logger_file_base_t::configure, max_size = "
            << max_size << ", m_max_size = " << m_max_size << ", max_idx = " << max_index
            << ", m_max_idx = " << m_max_index << ", this = " << this << "\n");
    if (!in_range(max_size, min_log_size, max_log_size)) {
        RKB_LOG_ASSERT_TAIL(log_source_file, size_line, ", this = " << this << "\n",
            "logger_file_base_t::configure size out of limitation"
                << ", max_size = " << max_size << ", MIN_LOG_SIZE = " << min_log_size
                << ", MAX_LOG_SIZE = " << max_log_size);
        return log_bad_value;
    }
    if (!in_range(max_index, min_log_index, max_log_index)) {
        RKB_LOG_ASSERT_TAIL(log_source_file, index_line, ", this = " << this << "\n",
            "logger_file_base_t::configure index out of limitation"
                << ", max_idx = " << max_index << ", MIN_LOG_IDX = " << min_log_index
                << ", MAX_LOG_IDX = " << max_log_index);
        return log_bad_value;
    }
    m_max_size = max_size;
    m_max_index = max_index;
    return 0;
}

void logger_file_base_t::close()
{
    m_file.reset();
    m_written = 0;
}

uint32_t logger_file_base_t::write(
    uint32_t /*module_id*/, uint32_t /*level*/, const char* data, size_t length)
{
    if (!m_file && !open_file()) {
        const int error = errno;
        fprintf(stderr, "failed to open file [%s] errno = %d\n", m_prefix.c_str(), error);
        return log_sink_failed;
    }
    write_raw(m_file.get(), data, length);
    constexpr size_t most = std::numeric_limits<uint32_t>::max();
    m_written = static_cast<uint32_t>(std::min(most, m_written + std::min(most, length)));
    rotate_if_due();
    return 0;
}

void logger_file_base_t::write_raw(FILE* stream, const char* data, size_t length)
{
    if (!stream || !data || !length)
        return;
    const int file = fileno_unlocked(stream);
    if (file >= 0 && __fpending(stream) == 0) {
        write_whole(file, data, length); // as fwrite() and fflush() do, but with less work
        return;
    }
    fwrite(data, 1, length, stream);
    fflush(stream);
}

void logger_file_base_t::rotate_if_due()
{
    const local_time_t now = coarse_local_time();
    const bool same_day = now.day == m_date.day;
    if (same_day && m_written <= m_max_size)
        return;
    if (same_day) {
        m_index = next_log_file_index(m_index, m_max_index);
    } else {
        m_index = 0;
        m_date = now;
    }
    close();
    open_file(); // the line has been written: if this fails, the next write tries and reports it
}

void logger_file_base_t::resume_index()
{
    std::array<char, 32> text{};
    ssize_t length = -1;
    const int file
        = open((m_directory + log_id_file_name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file >= 0) {
        length = read(file, text.data(), text.size());
        ::close(file);
    }
    const std::string_view content(text.data(), static_cast<size_t>(std::max<ssize_t>(length, 0)));
    m_index = first_log_file_index(parse_log_file_id(content), m_max_index);
}

bool logger_file_base_t::open_file()
{
    const log_file_stamp_t stamp = log_file_stamp(local_time(), process_id(), m_index);
    std::array<char, PATH_MAX> path{};
    text_stream_t stream(path.data(), path.size());
    if (m_prefix.size() + stamp.size() + m_extension.size() + 2 > path.size()) {
        errno = ENAMETOOLONG;
        return false;
    }
    stream << m_prefix << "_" << stamp.data() << "." << m_extension;
    store_index();
    remove_earlier_files();
    m_file.reset(open_for_this_process(path.data()));
    if (!m_file && errno == ENOENT && create_directories(m_directory)) {
        store_index();
        m_file.reset(open_for_this_process(path.data()));
    }
    m_written = 0;
    return m_file != nullptr;
}

void logger_file_base_t::store_index() const
{
    const int file = open((m_directory + log_id_file_name).c_str(),
        O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (file < 0)
        return;
    dprintf(file, "%u", m_index); // if this fails, the next run begins with another index
    ::close(file);
}

void logger_file_base_t::remove_earlier_files() const
{
    const auto suffix = log_file_suffix(m_index, m_extension);
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(m_directory.c_str()), closedir);
    if (!suffix || !directory)
        return;
    std::array<char, 128> path{};
    while (const dirent* entry = readdir(directory.get())) {
        if (!strstr(entry->d_name, suffix->data()))
            continue;
        const int length
            = snprintf(path.data(), path.size(), "%s%s", m_directory.c_str(), entry->d_name);
        if (length > 0 && static_cast<size_t>(length) < path.size())
            unlink(path.data()); // a cut path would name another file
    }
}

} // namespace rkb
