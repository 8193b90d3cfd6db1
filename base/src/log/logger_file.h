// The file sink: writes log lines to rotating files in one directory.
#pragma once

#include "base/src/log/log_it.h"
#include "base/src/util/local_time.h"
#include "base/src/util/no_copy.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace rkb {

// The line that exceeds a file's maximum size is the file's last; the next line is written to a
// file with the next index. After the maximum index comes 0. Each day starts with index 0. Opening
// a file removes earlier files of the same index from the directory, except those whose path is
// longer than 127 characters. The id file in the directory holds the last index used, so that the
// next run continues after it.
//
// Not thread-safe: one thread at a time may call the operations. The logging control does so with
// its mutex locked. Sizes are in bytes. Programs that the process starts do not inherit the file.
class logger_file_base_t : public log_it, no_copy {
public:
    static constexpr uint32_t min_log_size = 1'048'576;
    static constexpr uint32_t max_log_size = 1'073'741'824;
    static constexpr uint32_t min_log_index = 9;
    static constexpr uint32_t max_log_index = 99;

    ~logger_file_base_t() override;

    // Writes the line to the current file and starts another file when this one is full or of an
    // earlier day. Opens a file if none is open, and creates the directory if it is missing.
    // Returns 0, even if the disk was full and the line is lost; or log_sink_failed when no file
    // could be opened, which it also reports on standard error. The next call tries again.
    uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length) override;

    // Appends the bytes to the file with one block write, after what the stream has buffered; they
    // are in the file on return. If the disk is too full for all of them, none is written, not even
    // later. Does nothing if the stream or the data is null or the length 0.
    virtual void write_raw(FILE* stream, const char* data, size_t length);

    // Logs its call and changes the limits. Returns 0. A size outside min_log_size..max_log_size or
    // an index outside min_log_index..max_log_index changes nothing: it logs an assert line and
    // returns log_bad_value.
    uint32_t configure(uint32_t max_size, uint32_t max_index);

    // Closes the file; the next write opens another one.
    void close();

protected:
    // `directory`: created if missing; null or empty means default_log_directory(). It should end
    // in "/". Without it the id file's path is the directory's name directly followed by the file's
    // name, so the id file is next to the directory, and no earlier files are removed. That is
    // deliberate.
    // `base_name`: the start of the files' names; null or empty means the program's name.
    // `extension`: the end of the files' names, after a ".". Null means ".log", which gives two
    // dots. That is deliberate, too; "log" gives one.
    // `max_size`: raised to min_log_size if it is smaller.
    // `max_index`: taken as it is.
    // Opens no log file yet. A directory that cannot be created is reported by the first write.
    logger_file_base_t(const char* directory, const char* base_name, const char* extension,
        uint32_t max_size, uint32_t max_index);

private:
    struct closer_t {
        void operator()(FILE* stream) const { fclose(stream); }
    };

    void set_directory(const char* directory);
    void resume_index();
    bool open_file();
    void store_index() const;
    void remove_earlier_files() const;
    void rotate_if_due();

    std::string m_prefix; // directory, "/" and base name: the start of every file's path
    std::string m_extension;
    std::string m_directory; // as given, see the constructor
    uint32_t m_max_size;
    uint32_t m_written = 0; // to the current file
    uint32_t m_index = 0;
    uint32_t m_max_index;
    bool m_resume_index = true;
    local_time_t m_date; // of the current file
    std::unique_ptr<FILE, closer_t> m_file;
};

class logger_file : public logger_file_base_t {
public:
    logger_file(const char* directory, const char* base_name, const char* extension,
        uint32_t max_size, uint32_t max_index)
        : logger_file_base_t(directory, base_name, extension, max_size, max_index)
    {
    }
};

} // namespace rkb
