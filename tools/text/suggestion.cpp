#include "tools/text/suggestion.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace text {
namespace {

// The Levenshtein distance, row by row: cost[i] is that of the first i characters of `to`.
size_t distance(std::string_view from, std::string_view to)
{
    std::vector<size_t> cost(to.size() + 1);
    std::iota(cost.begin(), cost.end(), size_t{0});
    for (const char c : from) {
        size_t diagonal = cost[0]++;
        for (size_t i = 1; i < cost.size(); ++i) {
            const size_t replaced = diagonal + (c == to[i - 1] ? 0 : 1);
            diagonal = cost[i];
            cost[i] = std::min({replaced, cost[i] + 1, cost[i - 1] + 1});
        }
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
