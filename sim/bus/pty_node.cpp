#include "sim/bus/pty_node.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <termios.h>

namespace sim {
namespace {

void require(bool ok, const char* what)
{
    if (!ok)
        throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

// O_NOCTTY: if the terminal became a process's controlling terminal, unplugging would end that
// process with SIGHUP.
PtyNode::PtyNode()
    : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    require(master_.get() >= 0, "pseudo terminal");
    require(grantpt(master_.get()) == 0 && unlockpt(master_.get()) == 0, "pseudo terminal");
    char path[64];
    require(ptsname_r(master_.get(), path, sizeof path) == 0, "pseudo terminal's name");
    path_ = path;
    slave_ = FileDescriptor(open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
    require(slave_.get() >= 0, path);
    setOpenable(true);
    setReady(false);
}

void PtyNode::setReady(bool ready)
{
    if (ready == ready_)
        return;
    ready_ = ready;
    tcflow(slave_.get(), ready ? TCOON : TCOOFF);
}

void PtyNode::setOpenable(bool openable)
{
    require(fchmod(slave_.get(), openable ? 0600 : 0) == 0, path_.c_str());
}

void PtyNode::hangUp()
{
    master_.reset();
    slave_.reset();
}

} // namespace sim
