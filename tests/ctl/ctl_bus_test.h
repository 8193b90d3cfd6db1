// For tests that run kelprobectl as a process, on the simulated bus of the test's process. They
// need the compile definition KELPROBECTL.
#pragma once

#include "tests/support/bus_test.h"
#include "tests/support/temp_directory.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>

// kelprobectl while it runs.
class CtlProcess {
public:
    // Standard error goes to the file `errors`.
    CtlProcess(const std::string& arguments, const std::string& errors)
    {
        const std::string script = "echo $$; exec " KELPROBECTL " " + arguments + " 2>" + errors;
        output_ = popen(script.c_str(), "r");
        pid_ = std::stoi(line());
    }
    ~CtlProcess()
    {
        if (output_)
            (void)end(SIGKILL);
    }
    CtlProcess(const CtlProcess&) = delete;
    CtlProcess& operator=(const CtlProcess&) = delete;

    // The next line of standard output; "end" after the last.
    std::string line()
    {
        char text[10'000];
        if (!fgets(text, sizeof text, output_))
            return "end";
        return std::string(text, strcspn(text, "\n"));
    }

    // Standard output until it ends.
    std::string rest()
    {
        std::string text;
        for (int c = 0; (c = fgetc(output_)) != EOF;)
            text += static_cast<char>(c);
        return text;
    }

    void kill(int signal) const { ::kill(pid_, signal); }

    // From now on nobody reads standard output.
    void closeOutput() const
    {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, fileno(output_)); // which pclose() closes
        close(nothing);
    }

    // Sends the signal, unless it is 0. Returns the exit status, 128 + N after signal N.
    int end(int signal = 0)
    {
        if (signal)
            kill(signal);
        const int status = pclose(std::exchange(output_, nullptr));
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    FILE* output_ = nullptr;
    pid_t pid_ = -1;
};

class CtlBusTest : public BusTest {
protected:
    // Runs kelprobectl to its end and returns its exit status.
    int run(const std::string& arguments)
    {
        CtlProcess process(arguments, errorFile());
        out_ = process.rest();
        const int status = process.end();
        err_ = test::content(errorFile());
        return status;
    }

    // The file that standard error of a CtlProcess goes to.
    std::string errorFile() const { return directory_.path() + "err"; }

    // Where /sys and /dev of the simulated bus are.
    static std::string busDirectory()
    {
        const char* const directory = getenv("UMOCKDEV_DIR");
        return directory ? directory : "";
    }

    // The device's directory below /sys of the simulated bus.
    static std::string sysDirectory(const sim::UsbDevice& device)
    {
        const std::string path = device.hidPath();
        return busDirectory() + "/sys/devices/usb1/" + path.substr(0, path.find(':')) + '/';
    }

    // As if another driver had the interface: its report descriptor is not in sysfs.
    static void hideDescriptor(const sim::UsbDevice& device)
    {
        std::filesystem::remove_all(sysDirectory(device) + device.hidPath());
    }

    std::string out_;
    std::string err_;

private:
    const test::TempDirectory directory_;
};
