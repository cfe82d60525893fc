#include "companions/companion_program.h"

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

COMPANION_PROGRAM::COMPANION_PROGRAM(const std::string& name, const std::string& description,
                                     const std::string& example)
    : app_(description, name), name_(name) {
    app_.footer(example);
    app_.formatter(std::make_shared<EXAMPLE_FIRST>());
    app_.require_subcommand(1);
}

CLI::App& COMPANION_PROGRAM::AddCommand(const std::string& name, const std::string& description,
                                        const std::string& example, std::function<void()> run) {
    CLI::App* const command = app_.add_subcommand(name, description);
    command->footer(example);
    command->final_callback(std::move(run));
    return *command;
}

int COMPANION_PROGRAM::Parse(int argc, char** argv) {
    try {
        app_.parse(argc, argv);
    } catch (const CLI::ParseError& end) {
        std::ostringstream results;
        std::ostringstream messages;
        const int status = app_.exit(end, results, messages);
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
