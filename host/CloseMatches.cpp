#include "host/CloseMatches.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace {

std::string Lower(const std::string& text) {
    std::string result = text;
    for (char& c : result)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            const std::size_t cost = a[i - 1] == b[j - 1] ? 0 : 1;
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + cost});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::vector<std::string> FindCloseMatches(const std::string& name,
                                          const std::vector<std::string>& candidates) {
    const std::string wanted = Lower(name);
    std::vector<std::pair<std::size_t, std::string>> scored;
    for (const std::string& original : candidates) {
        const std::string candidate = Lower(original);
        std::size_t distance = EditDistance(wanted, candidate);
        const bool contains = !wanted.empty() && (candidate.find(wanted) != std::string::npos ||
                                                  wanted.find(candidate) != std::string::npos);
        if (contains)
            distance = std::min<std::size_t>(distance, 1);
        if (distance <= std::max<std::size_t>(2, wanted.size() / 3))
            scored.emplace_back(distance, original);
    }
    std::stable_sort(scored.begin(), scored.end(),
                     [](const auto& l, const auto& r) { return l.first < r.first; });
    std::vector<std::string> result;
    for (std::size_t i = 0; i < scored.size() && i < 3; ++i)
        result.push_back(scored[i].second);
    return result;
}

std::string CloseMatchesNote(const std::string& name, const std::vector<std::string>& candidates) {
    const std::vector<std::string> matches = FindCloseMatches(name, candidates);
    std::string note;
    for (std::size_t i = 0; i < matches.size(); ++i)
        note += (i == 0 ? " (close matches: '" : ", '") + matches[i] + "'";
    return matches.empty() ? note : note + ")";
}
