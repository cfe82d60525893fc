#include "lib/baselib/pool/entry_scanner.h"

#include "lib/baselib/pool/pool_type.h"

POOL_LINE ENTRY_SCANNER::Classify(LINE_READER& reader) {
    std::string_view line = reader.Line();
    std::string first_word;
    std::string second_word;
    reader.SetCursor(0);
    reader.Token(first_word);
    const int type = reader.Token(second_word) ? PoolTypeNumber(second_word) : 0;
    reader.SetCursor(0);

    if (state_ == STATE::BRACE_EXPECTED) state_ = first_word == "{" ? STATE::IN_BLOCK : STATE::BEHIND_ENTRY;
    if (state_ == STATE::IN_BLOCK) {
        // The second word of a string element can look like a tag, but a key cannot begin with a quote.
        if (IsEntryLine(line) && line.front() != '"' && type != 0) return ClassifyOutside(line, type);
        if (first_word == "{") ++open_braces_;
        if (first_word == "}" && --open_braces_ == 0) state_ = STATE::BEHIND_ENTRY;
        return POOL_LINE::OWN;
    }
    if (state_ == STATE::BEHIND_ENTRY && (line == "\n" || line == "\r\n" || line == "\r")) {
        state_ = STATE::OUTSIDE;
        return POOL_LINE::OWN;
    }
    return ClassifyOutside(line, type);
}

POOL_LINE ENTRY_SCANNER::ClassifyOutside(std::string_view line, int type) {
    state_ = STATE::OUTSIDE;
    if (!IsEntryLine(line)) return POOL_LINE::OUTSIDE;
    open_braces_ = 0;
    state_ = IsPoolVector(type) || IsPoolMatrix(type) ? STATE::BRACE_EXPECTED : STATE::BEHIND_ENTRY;
    return POOL_LINE::ENTRY;
}
