/// \file problem_list.h
/// Collects what is wrong, one text per problem, from code that logs a reason and throws.

#pragma once

#include <functional>
#include <string>
#include <vector>

class PROBLEM_LIST {
  public:
    /// Runs it. What a failing step logs at ALARM and EXCEPTION becomes one problem, told once; a failure that logged
    /// nothing stands under its own text.
    /// @return whether it went well
    bool Try(const std::function<void()>& step);

    void Add(const std::string& problem);
    [[nodiscard]] const std::vector<std::string>& Problems() const { return problems_; }

  private:
    void AddNewErrors(const std::string& fallback);

    std::vector<std::string> problems_;
    long long errors_seen_ = 0;
};
