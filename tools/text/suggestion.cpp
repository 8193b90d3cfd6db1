#include "tools/text/suggestion.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace text {
namespace {

// The Levenshtein distance, but a swap of two neighbours counts as one change. Row by row: cost[i]
// is the distance of the characters of `from` so far to the first i characters of `to`.
size_t distance(std::string_view from, std::string_view to)
{
    std::vector<size_t> cost(to.size() + 1);
    std::iota(cost.begin(), cost.end(), size_t{0});
    std::vector<size_t> before; // the row before the last one
    for (size_t row = 1; row <= from.size(); ++row) {
        std::vector<size_t> next(cost.size(), row);
        for (size_t i = 1; i < cost.size(); ++i) {
            const bool same = from[row - 1] == to[i - 1];
            next[i] = std::min({cost[i - 1] + (same ? 0 : 1), cost[i] + 1, next[i - 1] + 1});
            if (row > 1 && i > 1 && from[row - 1] == to[i - 2] && from[row - 2] == to[i - 1])
                next[i] = std::min(next[i], before[i - 2] + 1);
        }
        before = std::exchange(cost, std::move(next));
    }
    return cost.back();
}

} // namespace

std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates)
{
    std::string_view best;
    size_t bestDistance = std::string_view::npos;
    for (const std::string_view candidate : candidates) {
        const size_t changes = distance(word, candidate);
        if (changes < bestDistance && 2 * changes < candidate.size()) {
            best = candidate;
            bestDistance = changes;
        }
    }
    return best;
}

} // namespace text
