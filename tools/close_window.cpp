// kelprobe-close-window WINDOW: asks a window to close, as a window manager's close button does.
// Where there is no window manager, nothing else does.
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    Display* display = argc == 2 ? XOpenDisplay(nullptr) : nullptr;
    if (!display) {
        std::fputs("usage: kelprobe-close-window WINDOW, with a display\n", stderr);
        return 2;
    }
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = std::strtoul(argv[1], nullptr, 0);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    const bool sent = XSendEvent(display, event.xclient.window, False, NoEventMask, &event) != 0;
    XCloseDisplay(display);
    return sent ? 0 : 1;
}
