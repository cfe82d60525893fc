#include "lib/baselib/controller/key_suggestions.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace {

std::string UpperCase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

size_t AllowedEdits(const std::string& key, bool surely_wrong) {
    if (key.size() <= 3) return surely_wrong ? 1 : 0;
    return key.size() <= 7 ? 1 : 2;
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

constexpr size_t kFar = 100;

/// Edits between word and key when they are close, else kFar.
size_t EditsWhenClose(const std::string& word, const std::string& key, bool surely_wrong) {
    const size_t allowed = AllowedEdits(key, surely_wrong);
    if (word.size() > key.size() + allowed || key.size() > word.size() + allowed) return kFar;
    const size_t edits = Edits(UpperCase(word), UpperCase(key));
    return edits <= allowed ? edits : kFar;
}

bool IsOneOf(const std::vector<std::string>& keys, const std::string& word) {
    return std::find(keys.begin(), keys.end(), word) != keys.end();
}

}  // namespace

std::string BareWord(const std::string& word) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    const size_t start = word.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    return word.substr(start, word.find('=', start) - start);
}

bool IsClose(const std::string& word, const std::string& key) {
    return EditsWhenClose(BareWord(word), key, false) != kFar;
}

std::string SuggestedKey(const std::string& word, const std::vector<std::string>& known_keys, bool surely_wrong) {
    const std::string bare = BareWord(word);
    if (bare.empty() || std::isalpha(static_cast<unsigned char>(bare[0])) == 0 || IsOneOf(known_keys, word)) return "";
    const auto edits = [&](const std::string& key) { return EditsWhenClose(bare, key, surely_wrong); };
    const auto closest =
        std::min_element(known_keys.begin(), known_keys.end(),
                         [&edits](const std::string& a, const std::string& b) { return edits(a) < edits(b); });
    return closest != known_keys.end() && edits(*closest) != kFar ? *closest : "";
}

std::string KeyWithPiece(const std::string& word, const std::vector<std::string>& keys) {
    constexpr size_t kShortestPiece = 4;
    const std::string bare = BareWord(word);
    if (bare.size() < kShortestPiece) return "";
    const std::string piece = "_" + UpperCase(bare) + "_";
    const auto holder = std::find_if(keys.begin(), keys.end(), [&piece](const std::string& key) {
        return ("_" + UpperCase(key) + "_").find(piece) != std::string::npos;
    });
    return holder != keys.end() ? *holder : "";
}
