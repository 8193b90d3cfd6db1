// The cost of one more line in a long log.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"

#include "bench/program/log_list.h"

namespace bench {
namespace {

double appendLines(const Client& client, LogList list, LogView view)
{
    client.send({static_cast<int32_t>(list), static_cast<int32_t>(view)});
    const int64_t begin = client.await(Moment::Acted);
    const int64_t end = client.await(Moment::Report);
    return static_cast<double>(end - begin) / kAppendedLines;
}

Samples measure(const Client& client, LogView view)
{
    Samples samples;
    for (int round = 0; round < kRounds; ++round) {
        samples.subject.push_back(appendLines(client, LogList::Long, view));
        samples.peer.push_back(appendLines(client, LogList::Short, view));
    }
    return samples;
}

} // namespace

void measureLogList(sim::UsbBus&)
{
    const Client client({BENCH_LOG_LIST}, Probe::None);
    client.await(Moment::Ready);
    printRow({"log line at 100,000 lines, view at the top", "at 10 lines", "<= 1.5", kMicroseconds},
        measure(client, LogView::AtTop));
    printRow(
        {"log line at 100,000 lines, view moved to it", "at 10 lines", "<= 1.5", kMicroseconds},
        measure(client, LogView::MovedToEnd));
}

} // namespace bench
