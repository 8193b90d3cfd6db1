// kelprobe-close-window: asks a window to close, as the close button of a window manager does. For
// displays without a window manager.
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int kUsageError = 2;

void printHelp(std::FILE* file)
{
    std::fputs("usage: kelprobe-close-window WINDOW\n"
               "       kelprobe-close-window --help | --version\n"
               "\n"
               "Asks the window with the id WINDOW, on the display $DISPLAY, to close.\n",
        file);
}

bool askToClose(Display* display, Window window)
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    return XSendEvent(display, window, False, NoEventMask, &event) != 0;
}

int closeWindow(const char* id)
{
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fputs("kelprobe-close-window: cannot open the display\n", stderr);
        return EXIT_FAILURE;
    }
    const bool sent = askToClose(display, std::strtoul(id, nullptr, 0));
    XCloseDisplay(display);
    return sent ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view argument = argc == 2 ? argv[1] : "";
    if (argument == "--version") {
        std::puts("kelprobe-close-window " KELPROBE_VERSION);
        return EXIT_SUCCESS;
    }
    if (argument == "--help") {
        printHelp(stdout);
        return EXIT_SUCCESS;
    }
    if (argument.empty() || argument.starts_with('-')) {
        printHelp(stderr);
        return kUsageError;
    }
    return closeWindow(argv[1]);
}
