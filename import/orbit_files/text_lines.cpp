#include "import/orbit_files/text_lines.h"

#include <algorithm>
#include <sstream>

bool TEXT_LINES::Next() {
    while (position_ < content_.size()) {
        const std::size_t end = std::min(content_.find('\n', position_), content_.size());
        line_ = Trimmed(content_.substr(position_, end - position_));
        position_ = end + 1;
        ++number_;
        if (!line_.empty()) return true;
    }
    return false;
}

std::vector<std::string> WordsOf(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

std::vector<std::string> FieldsOf(const std::string& line, char separator) {
    std::vector<std::string> fields;
    std::size_t begin = 0;
    while (begin <= line.size()) {
        const std::size_t end = std::min(line.find(separator, begin), line.size());
        fields.push_back(Trimmed(line.substr(begin, end - begin)));
        begin = end + 1;
    }
    return fields;
}
