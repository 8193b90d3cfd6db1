#include "sim/control/process_stat.h"

#include <fstream>
#include <sstream>
#include <string>

namespace sim {

std::string contentOf(const std::string& path)
{
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf(); // an iterator would throw if the process ends now
    return content.str();
}

std::optional<ProcessStat> statOf(pid_t pid)
{
    constexpr int kBeforeStart = 15; // fields from the session to the start
    std::string text = contentOf("/proc/" + std::to_string(pid) + "/stat");
    text.erase(0, text.rfind(')') + 1); // the name may contain anything
    std::istringstream fields(text);
    std::string skipped;
    char state = 0;
    ProcessStat stat;
    fields >> state >> stat.parent >> stat.group >> stat.session;
    for (int i = 0; i < kBeforeStart; ++i)
        fields >> skipped;
    fields >> stat.start;
    stat.ended = state == 'Z' || state == 'X';
    return fields ? std::optional(stat) : std::nullopt;
}

} // namespace sim
