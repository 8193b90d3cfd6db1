#include "sim/control/process_group.h"

#include <fstream>
#include <string>

namespace sim {
namespace {

std::string bootId()
{
    std::string id;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> id;
    return id;
}

} // namespace

std::optional<ProcessGroup> ProcessGroup::ledBy(pid_t leader)
{
    const std::optional<ProcessStat> stat = statOf(leader);
    if (!stat || stat->group != leader)
        return std::nullopt;
    ProcessGroup group;
    group.leader_ = *stat;
    return group;
}

std::optional<ProcessGroup> ProcessGroup::load(const std::filesystem::path& file)
{
    ProcessGroup group;
    ProcessStat& leader = group.leader_;
    std::string boot;
    if (!(std::ifstream(file) >> leader.group >> leader.session >> leader.start >> boot)
        || leader.group <= 1 || boot != bootId())
        return std::nullopt;
    const std::optional<ProcessStat> present = statOf(leader.group);
    if (present && present->start != leader.start)
        return std::nullopt;
    return group;
}

void ProcessGroup::save(const std::filesystem::path& file) const
{
    std::ofstream(file) << leader_.group << ' ' << leader_.session << ' ' << leader_.start << ' '
                        << bootId() << '\n';
}

bool ProcessGroup::contains(const ProcessStat& process) const
{
    return process.group == leader_.group && process.session == leader_.session
        && process.start >= leader_.start;
}

} // namespace sim
