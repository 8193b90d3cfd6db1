// The file sink: log lines into a circle of files in one directory.
#pragma once

#include "base/src/log/log_it.h"
#include "base/src/util/local_time.h"
#include "base/src/util/no_copy.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace rkb {

// Each file stays within a maximum size but for the line that exceeds it; the next line goes to a
// file of the next index. A new day begins with index 0. Indices run in a circle, and opening a
// file removes the earlier ones of its index from the directory, as far as their paths have at most
// 127 characters: below a longer directory all files stay. The last index used is kept in the
// directory's id file, so that the next run goes on behind it.
//
// Takes no lock: all operations are called by one thread at a time, as the logging control does.
// Sizes are in bytes.
class logger_file_base_t : public log_it, no_copy {
public:
    static constexpr uint32_t min_log_size = 1'048'576;
    static constexpr uint32_t max_log_size = 1'073'741'824;
    static constexpr uint32_t min_log_index = 9;
    static constexpr uint32_t max_log_index = 99;

    ~logger_file_base_t() override;

    // Writes the line to the current file and starts another file when this one is full or of an
    // earlier day. Opens a file if none is open, and creates the directory if it is missing.
    // Returns 0, also when the disk was full and the line is lost; or log_sink_failed when no file
    // could be opened, which it also reports on standard error. The next call tries again.
    uint32_t write(uint32_t module_id, uint32_t level, const char* data, size_t length) override;

    // Writes the bytes with one block write, behind what the stream holds, so that they are in the
    // file on return. Does nothing without a stream, data or length. When the disk cannot take all
    // bytes, none of them stay, and none are kept for a later write.
    virtual void write_raw(FILE* stream, const char* data, size_t length);

    // Changes the limits: size min_log_size..max_log_size, index min_log_index..max_log_index.
    // Logs its call. 0; or log_bad_value, an assert line logged and nothing changed.
    uint32_t configure(uint32_t max_size, uint32_t max_index);

    // Closes the file; the next write opens another one.
    void close();

protected:
    // `directory`, created if missing, should end in "/". If it does not, the id file stands
    // beside it (its name glued to the directory's) and no earlier files are removed, which is
    // kept deliberately. None (null or empty): default_log_directory().
    // `base_name` begins the files' names; none: the program's name.
    // `extension` is what follows the "." at their end. Null means ".log", so that these names
    // have two dots; also deliberate. "log" makes one.
    // `max_size` is raised to min_log_size, `max_index` is taken as it is. Nothing is opened yet.
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

    std::string m_prefix; // directory, "/" and base name: what every file's path begins with
    std::string m_extension;
    std::string m_directory; // as given, see the constructor
    uint32_t m_max_size;
    uint32_t m_written = 0; // to the current file
    uint32_t m_index = 0;
    uint32_t m_max_index;
    bool m_resume_index = true;
    local_time_t m_date; // of the current file; its day tells when to begin another
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
