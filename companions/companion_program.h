/// \file companion_program.h
/// A companion program: commands with options, each with a --help that begins with an example. Exit status 0 or 1,
/// results on standard output, messages on standard error.
/// CLI11 reads the options. It stays behind this header: its own costs the compiler 6 s in every file that includes it.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// What an option's words have to be; each call narrows it and returns the option.
class COMMAND_OPTION {
  public:
    explicit COMMAND_OPTION(CLI::Option& option) : option_(&option) {}

    COMMAND_OPTION Required();
    COMMAND_OPTION Takes(int words);
    COMMAND_OPTION Takes(int least, int most);
    COMMAND_OPTION Between(int lowest, int highest);
    COMMAND_OPTION OneOf(const std::vector<std::string>& words);
    COMMAND_OPTION NotWith(COMMAND_OPTION other);

  private:
    CLI::Option* option_;
};

/// A handle, as COMMAND_OPTION is: values that are filled have to live until the program has run.
class COMPANION_COMMAND {
  public:
    explicit COMPANION_COMMAND(CLI::App& command) : command_(&command) {}

    /// @param names  "-o,--output", or "FILE" for words without a dash
    /// @param value  receives what is given, and stays as it is else
    template <class VALUE>
    COMMAND_OPTION Add(const std::string& names, VALUE& value, const std::string& help);

    void AddFlag(const std::string& name, bool& value, const std::string& help);

  private:
    CLI::App* command_;
};

extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::string&, const std::string&);
extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, int&, const std::string&);
extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::optional<int>&, const std::string&);
extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::optional<double>&, const std::string&);
extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::vector<std::string>&,
                                                      const std::string&);
extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::vector<int>&, const std::string&);
extern template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::vector<double>&, const std::string&);

class COMPANION_PROGRAM {
  public:
    /// @param example  lines that a user would type
    COMPANION_PROGRAM(const std::string& name, const std::string& description, const std::string& example);
    ~COMPANION_PROGRAM();

    /// @param run  called after the options were read; throws COMPANION_ERROR or what the libraries throw
    COMPANION_COMMAND AddCommand(const std::string& name, const std::string& description, const std::string& example,
                                 std::function<void()> run);

    /// Reads the arguments and runs the command. @return the exit status
    [[nodiscard]] int Run(int argc, char** argv);

  private:
    [[nodiscard]] int Parse(int argc, char** argv);

    std::unique_ptr<CLI::App> app_;
    std::string name_;
};
