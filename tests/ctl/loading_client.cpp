// A program for kelprobectl trace to run that is not linked to hidapi. The argument says what it
// does:
//
// private    loads hidapi for itself, writes and reads a report
// twice      loads it for all libraries, writes, unloads it and does it again
// signal     loads it for all libraries; a signal handler writes while the program reads
//
// Each write makes the device send a report. Exit status: 0 if hidapi's results were right.
#include <array>
#include <csignal>
#include <cstdint>
#include <dlfcn.h>
#include <hidapi/hidapi.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/time.h>

namespace {

constexpr const char* kLibrary = "libhidapi-libusb.so.0";
constexpr int kLimitMs = 10'000;
constexpr std::array<uint8_t, 3> kReport{3, 1, 0};

// hidapi's functions as the program finds them in `library`.
struct Functions {
    explicit Functions(void* library)
        : openPath(find<decltype(&hid_open_path)>(library, "hid_open_path"))
        , write(find<decltype(&hid_write)>(library, "hid_write"))
        , read(find<decltype(&hid_read)>(library, "hid_read"))
        , readTimeout(find<decltype(&hid_read_timeout)>(library, "hid_read_timeout"))
        , close(find<decltype(&hid_close)>(library, "hid_close"))
        , exit(find<decltype(&hid_exit)>(library, "hid_exit"))
    {
    }

    template <class Function>
    static Function find(void* library, const char* name)
    {
        return reinterpret_cast<Function>(dlsym(library, name));
    }

    decltype(&hid_open_path) openPath;
    decltype(&hid_write) write;
    decltype(&hid_read) read;
    decltype(&hid_read_timeout) readTimeout;
    decltype(&hid_close) close;
    decltype(&hid_exit) exit;
};

const Functions* functions = nullptr; // for the signal handler
hid_device* hid = nullptr;

bool write(const Functions& from)
{
    return from.write(hid, kReport.data(), kReport.size()) == int{kReport.size()};
}

// In libhidapi-libusb, hid_read() ends with a call of hid_read_timeout().
bool usePrivately()
{
    const Functions from(dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL));
    hid = from.openPath("1-1:1.0");
    std::array<uint8_t, 8> bytes{};
    const bool right
        = hid && write(from) && from.read(hid, bytes.data(), bytes.size()) == int{kReport.size()};
    from.close(hid);
    return right;
}

bool useAndUnload()
{
    void* const library = dlopen(kLibrary, RTLD_NOW | RTLD_GLOBAL);
    const Functions from(dlopen(nullptr, RTLD_NOW));
    hid = from.openPath("1-1:1.0");
    const bool right = hid && write(from);
    from.close(hid);
    from.exit();
    void* const address = dlsym(library, "hid_open_path");
    dlclose(library);
    // So that it is loaded at another place the next time.
    constexpr size_t kPage = 4096;
    void* const page = static_cast<char*>(address) - reinterpret_cast<uintptr_t>(address) % kPage;
    const void* const taken
        = mmap(page, kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    return right && taken == page;
}

bool useTwice()
{
    const bool right = useAndUnload();
    return right && useAndUnload();
}

bool useInSignalHandler()
{
    constexpr suseconds_t kUntilReading = 50'000;
    dlopen(kLibrary, RTLD_NOW | RTLD_GLOBAL);
    const Functions from(dlopen(nullptr, RTLD_NOW));
    functions = &from;
    hid = from.openPath("1-1:1.0");
    std::signal(SIGALRM, [](int) { (void)write(*functions); });
    const itimerval once{{}, {.tv_sec = 0, .tv_usec = kUntilReading}};
    setitimer(ITIMER_REAL, &once, nullptr);
    std::array<uint8_t, 8> bytes{};
    const bool right
        = hid && from.readTimeout(hid, bytes.data(), bytes.size(), kLimitMs) == int{kReport.size()};
    from.close(hid);
    return right;
}

} // namespace

int main(int, char** argv)
{
    const std::string_view use = argv[1];
    const bool right = use == "private" ? usePrivately()
        : use == "twice"                ? useTwice()
                                        : useInSignalHandler();
    return right ? 0 : 1;
}
