#include "app/check/problem_list.h"

#include <algorithm>

#include "lib/baselib/errors/enum_base.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

void PROBLEM_LIST::Add(const std::string& problem) {
    if (std::ranges::find(problems_, problem) == problems_.end()) problems_.push_back(problem);
}

void PROBLEM_LIST::AddNewErrors(const std::string& fallback) {
    const std::vector<std::string> lines = Log().Tally().LastErrors();
    const auto fresh = std::min<long long>(Log().Tally().Errors() - errors_seen_, std::ssize(lines));
    std::string problem;
    for (auto line = lines.end() - fresh; line != lines.end(); ++line) problem += (problem.empty() ? "" : "; ") + *line;
    Add(problem.empty() ? fallback : problem);
}

bool PROBLEM_LIST::Try(const std::function<void()>& step) {
    errors_seen_ = Log().Tally().Errors();
    try {
        step();
        return true;
    } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE& error) {
        AddNewErrors(error.Message() + " " + error.ValidValues());
    } catch (const ERROR_EXCEPTION& error) {
        AddNewErrors(error.Message());
    } catch (const std::exception& error) {
        AddNewErrors(error.what());
    } catch (const char* text) {
        AddNewErrors(text);
    }
    return false;
}
