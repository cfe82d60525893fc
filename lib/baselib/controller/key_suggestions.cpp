#include "lib/baselib/controller/key_suggestions.h"

#include <algorithm>
#include <cctype>

namespace {

std::string UpperCase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

size_t AllowedEdits(const std::string& key) {
    return key.size() <= 3 ? 0 : key.size() <= 7 ? 1 : 2;
}

/// Number of edits between two texts: the optimal string alignment distance, by rows of the usual table.
size_t Edits(const std::string& a, const std::string& b) {
    std::vector<std::vector<size_t>> edits(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                edits[i][j] = i + j;
                continue;
            }
            const size_t replaced = edits[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            edits[i][j] = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
        }
    }
    return edits[a.size()][b.size()];
}

/// Edits between word and key when they are close, else more than any key allows.
size_t EditsWhenClose(const std::string& word, const std::string& key) {
    constexpr size_t kFar = 100;
    const size_t allowed = AllowedEdits(key);
    if (word.size() > key.size() + allowed || key.size() > word.size() + allowed) return kFar;
    const size_t edits = Edits(UpperCase(word), UpperCase(key));
    return edits <= allowed ? edits : kFar;
}

}  // namespace

bool IsClose(const std::string& word, const std::string& key) {
    return EditsWhenClose(word, key) <= AllowedEdits(key);
}

std::string SuggestedKey(const std::string& word, const std::vector<std::string>& known_keys) {
    if (word.empty() || std::isalpha(static_cast<unsigned char>(word[0])) == 0) return "";
    if (std::find(known_keys.begin(), known_keys.end(), word) != known_keys.end()) return "";
    const auto closest =
        std::min_element(known_keys.begin(), known_keys.end(), [&word](const std::string& a, const std::string& b) {
            return EditsWhenClose(word, a) < EditsWhenClose(word, b);
        });
    return closest != known_keys.end() && IsClose(word, *closest) ? *closest : "";
}
