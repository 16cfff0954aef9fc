#pragma once

#include <string>
#include <vector>

/// Up to three of `candidates` that resemble `name` (case-insensitive edit distance, or one
/// containing the other), closest first: the "did you mean" of every unknown-name message.
std::vector<std::string> FindCloseMatches(const std::string& name,
                                          const std::vector<std::string>& candidates);

/// " (close matches: 'a', 'b')" for the close matches of `name`, or "" when there are none.
std::string CloseMatchesNote(const std::string& name, const std::vector<std::string>& candidates);
