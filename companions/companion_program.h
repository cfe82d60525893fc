/// \file companion_program.h
/// A companion program: commands with options (CLI11), each with a --help that begins with an example. Exit status 0
/// or 1, results on standard output, messages on standard error.

#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

class COMPANION_PROGRAM {
  public:
    /// @param example  lines that a user would type
    COMPANION_PROGRAM(const std::string& name, const std::string& description, const std::string& example);

    /// @param run  called after the options were read; throws COMPANION_ERROR or what the libraries throw
    CLI::App& AddCommand(const std::string& name, const std::string& description, const std::string& example,
                         std::function<void()> run);

    /// Reads the arguments and runs the command. @return the exit status
    [[nodiscard]] int Run(int argc, char** argv);

  private:
    [[nodiscard]] int Parse(int argc, char** argv);

    CLI::App app_;
    std::string name_;
};
