#include "lib/baselib/pool/updated_content.h"

#include "lib/baselib/pool/entry_scanner.h"

std::string UpdatedContent(const std::string& text, PARAMETER_POOL_LIST items) {
    ENTRY_SCANNER scanner;
    std::string content;
    std::string comments_above;  // those of the item may stand there from the last update
    bool is_replaced = false;
    LINE_READER reader;
    for (reader.Start(text, 0, 1); reader.Next();) {
        const std::string_view line = reader.Line();
        const POOL_LINE kind = scanner.Classify(reader);
        if (kind == POOL_LINE::OUTSIDE) is_replaced = false;
        if (kind == POOL_LINE::ENTRY) {
            const auto item = items.Take(KeyOfLine(line));
            is_replaced = item.has_value();
            if (is_replaced) {
                const std::string comments = item->CommentText();
                content += (comments_above.ends_with(comments) ? "" : comments) + item->EntryText();
            }
        }
        if (line.front() != '#') comments_above.clear();
        if (is_replaced) continue;
        if (line.front() == '#') comments_above += line;
        content += line;
    }
    if (!items.IsEmpty() && !content.empty() && content.back() != '\n' && content.back() != '\r') content += '\n';
    for (const PARAMETER_POOL_ITEM& item : items) content += item.CommentText() + item.EntryText();
    return content;
}
