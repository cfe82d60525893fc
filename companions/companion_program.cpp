#include "companions/companion_program.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <sstream>

#include "companions/companion_error.h"
#include "companions/results.h"
#include "companions/temporary_names.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// The help texts: the example, kept as the footer, comes first.
class EXAMPLE_FIRST : public CLI::Formatter {
  public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        if (mode == CLI::AppFormatMode::Sub) return CLI::Formatter::make_help(app, name, mode);
        return "Example:\n" + app->get_footer() + "\n" + CLI::Formatter::make_help(app, name, mode);
    }
    std::string make_footer(const CLI::App*) const override { return ""; }
};

/// The libraries of the processor log: alarms only, on standard error, and no log file.
void QuietLog() {
    Log().SetFileThreshold(static_cast<int>(LOGGING_LEVEL::NO_MESSAGE));
    Log().SetScreenThreshold(static_cast<int>(LOGGING_LEVEL::ALARM));
    Log().SetLogFile("/dev/null");
}

void PrintError(const std::string& program, const std::string& text) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), text.c_str());
}

}  // namespace

COMMAND_OPTION COMMAND_OPTION::Required() {
    option_->required();
    return *this;
}

COMMAND_OPTION COMMAND_OPTION::Takes(int words) {
    option_->expected(words);
    return *this;
}

COMMAND_OPTION COMMAND_OPTION::Takes(int least, int most) {
    option_->expected(least, most);
    return *this;
}

COMMAND_OPTION COMMAND_OPTION::Between(int lowest, int highest) {
    option_->check(CLI::Range(lowest, highest));
    return *this;
}

COMMAND_OPTION COMMAND_OPTION::OneOf(const std::vector<std::string>& words) {
    option_->check(CLI::IsMember(words));
    return *this;
}

COMMAND_OPTION COMMAND_OPTION::NotWith(COMMAND_OPTION other) {
    option_->excludes(other.option_);
    return *this;
}

template <class VALUE>
COMMAND_OPTION COMPANION_COMMAND::Add(const std::string& names, VALUE& value, const std::string& help) {
    return COMMAND_OPTION(*command_->add_option(names, value, help));
}

template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::string&, const std::string&);
template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, int&, const std::string&);
template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::optional<int>&, const std::string&);
template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::optional<double>&, const std::string&);
template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::vector<std::string>&, const std::string&);
template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::vector<int>&, const std::string&);
template COMMAND_OPTION COMPANION_COMMAND::Add(const std::string&, std::vector<double>&, const std::string&);

void COMPANION_COMMAND::AddFlag(const std::string& name, bool& value, const std::string& help) {
    command_->add_flag(name, value, help);
}

COMPANION_PROGRAM::COMPANION_PROGRAM(const std::string& name, const std::string& description,
                                     const std::string& example)
    : app_(std::make_unique<CLI::App>(description, name)), name_(name) {
    app_->footer(example);
    app_->formatter(std::make_shared<EXAMPLE_FIRST>());
    app_->require_subcommand(1);
}

COMPANION_PROGRAM::~COMPANION_PROGRAM() = default;

COMPANION_COMMAND COMPANION_PROGRAM::AddCommand(const std::string& name, const std::string& description,
                                                const std::string& example, std::function<void()> run) {
    CLI::App* const command = app_->add_subcommand(name, description);
    command->footer(example);
    command->final_callback(std::move(run));
    return COMPANION_COMMAND(*command);
}

int COMPANION_PROGRAM::Parse(int argc, char** argv) {
    try {
        app_->parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        std::ostringstream results;
        std::ostringstream messages;
        const int status = app_->exit(end, results, messages);
        PrintResultText(results.str());
        if (!messages.str().empty()) std::fputs(messages.str().c_str(), stderr);
        FlushResults();
        return status == 0 ? 0 : 1;
    }
    FlushResults();
    return 0;
}

int COMPANION_PROGRAM::Run(int argc, char** argv) {
    SeparateResultsFromMessages();
    QuietLog();
    InstallTemporaryFileRemoval();
    try {
        return Parse(argc, argv);
    } catch (const ERROR_EXCEPTION& error) {
        PrintError(name_, error.Message());
    } catch (const std::bad_alloc&) {
        PrintError(name_, "not enough memory");
    } catch (const std::exception& error) {
        PrintError(name_, error.what());
    } catch (const char* text) {
        PrintError(name_, text);
    }
    return 1;
}
