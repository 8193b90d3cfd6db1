// A simulated device whose buttons a test, or a press command of kelprobectl, presses.
#pragma once

#include "tests/support/bus_test.h"
#include "tests/support/temp_directory.h"

#include <fcntl.h>
#include <functional>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

class PressedDevice {
public:
    using Reports = std::vector<sim::Bytes>;
    // The reports that the device sends for a press of "hook", "mute", "flash" or "busy", given
    // those of a right device.
    using Wrong = std::function<Reports(const std::string& word, Reports right)>;

    explicit PressedDevice(sim::UsbDevice& device, Wrong wrong = {})
        : device_(device)
        , wrong_(std::move(wrong))
        , pipe_(directory_.path() + "pipe")
    {
        mkfifo(pipe_.c_str(), 0600);
        end_ = open(pipe_.c_str(), O_RDWR | O_CLOEXEC);
        reader_ = std::thread([this] { readWords(); });
    }
    ~PressedDevice()
    {
        [[maybe_unused]] const ssize_t size = write(end_, "end\n", 4);
        reader_.join();
        close(end_);
        device_.setOutputCallback({});
        delayed_.clear(); // joins
    }
    PressedDevice(const PressedDevice&) = delete;
    PressedDevice& operator=(const PressedDevice&) = delete;

    // The path of a file in a temporary directory.
    std::string file(const std::string& name) const { return directory_.path() + name; }

    // A shell command that takes the word as its argument.
    std::string command() const
    {
        return directory_.file("press", "echo \"$1\" >'" + pipe_ + "'\n").insert(0, "sh ");
    }

    void press(const std::string& word)
    {
        if (word == "unplug")
            return device_.unplug();
        if (word == "replug")
            return device_.plug();
        Reports reports;
        for (const auto& input : device_.panel().push(word).value_or(sim::Panel::InputReports{}))
            reports.push_back(input.report);
        if (wrong_)
            reports = wrong_(word, reports);
        for (const auto& report : reports)
            device_.inject(report);
    }

    // From now on calls the function with each output report.
    void react(std::function<void(const sim::Bytes&)> reaction)
    {
        device_.setOutputCallback(std::move(reaction));
    }

    // Sends an input report after a delay. Any thread, also in a reaction.
    void send(const sim::Bytes& report, std::chrono::milliseconds delay)
    {
        if (delay.count() == 0) {
            device_.inject(report);
            return;
        }
        const std::lock_guard lock(mutex_);
        delayed_.emplace_back([this, report, delay] {
            std::this_thread::sleep_for(delay);
            device_.inject(report);
        });
    }

    // A report with every button released and the hook switch where it is.
    sim::Bytes position() const { return device_.panel().stateReport(); }

private:
    void readWords()
    {
        std::string word;
        for (char c = 0; read(end_, &c, 1) == 1;) {
            if (c != '\n') {
                word += c;
                continue;
            }
            if (word == "end")
                return;
            press(std::exchange(word, {}));
        }
    }

    sim::UsbDevice& device_;
    const Wrong wrong_;
    const test::TempDirectory directory_;
    const std::string pipe_;
    int end_ = -1;
    std::thread reader_;
    std::mutex mutex_; // guards delayed_
    std::vector<std::jthread> delayed_;
};
