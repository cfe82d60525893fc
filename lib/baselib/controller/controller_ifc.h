/// \file controller_ifc.h
/// The link to whatever starts the program: a human at a shell or a processing chain. Resolves parameters from argument
/// list, control file, environment and keyboard, in this order; decides the names of control, log and status files;
/// tells the chain through status files how the run ended; honours a STOP file; reacts to fatal signals.
///
/// One object per process, on the main thread. Nothing here throws: what cannot go on ends the process, with a line at
/// ALARM that says why, the controller message line and status 1. Values and paths have at most 255 characters.
/// Life: constructed empty, init(), lookups, then one of the exits.

#pragma once

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lib/baselib/controller/control_file.h"
#include "lib/baselib/controller/fatal_signals.h"
#include "lib/baselib/controller/unused_words.h"

/// A parameter that some source had.
struct FOUND_PARAMETER {
    std::string value;
    const char* source = "";  ///< "argument", "control file", "environment" or "keyboard"
};

/// Paths of the files that the controller reads, writes or removes.
struct CONTROLLER_FILES {
    std::string control;
    std::string log;
    std::string ok;
    std::string error;
    std::string stop;
};

/// Why the run may not go on with its files, and which of them it may not touch.
struct FILE_PROBLEMS {
    std::vector<std::string> lines;  ///< empty: it may
    bool log = false;
    bool ok = false;
    bool error = false;
    bool report = false;
};

class CONTROLLER_IFC {
  public:
    CONTROLLER_IFC() = default;
    ~CONTROLLER_IFC();
    CONTROLLER_IFC(const CONTROLLER_IFC&) = delete;
    CONTROLLER_IFC& operator=(const CONTROLLER_IFC&) = delete;

    /// The keys that the program reads, for the recognition of mistyped ones. Call before init().
    void SetKnownKeys(std::vector<std::string> keys) { known_keys_ = std::move(keys); }

    /// Called in init() before the first file is changed. Problems end the process, after the lines.
    void SetCheckFiles(std::function<FILE_PROBLEMS()> check_files) { check_files_ = std::move(check_files); }

    /// Called in init() when parameters can be looked up, before a STOP file ends the process.
    void SetBeforeStart(std::function<void()> before_start) { before_start_ = std::move(before_start); }

    /// Resolves names and paths, opens the control file, moves the log to its final file, sets the log's thresholds.
    /// Ends the process with status 2 on a STOP file; otherwise the ERROR status file exists from here on.
    /// @param controller_messages fatal signals also produce the controller message line
    void init(int argc, char** argv, bool controller_messages);

    /// The same for a program that only looks: no log file, no status file, nobody is asked at the keyboard.
    void init_to_look(int argc, char** argv);

    /// Mandatory: asks the keyboard when no source has the parameter, and ends the process when there is no answer.
    [[nodiscard]] std::string get_parameter(const std::string& name);
    /// @return whether the parameter was found; value is changed only then
    bool get_optional_parameter(const std::string& name, std::string& value);
    [[nodiscard]] bool parameter_exists(const std::string& name);

    /// When all lookups are done: WARNINGs about words that nothing has read or that are doubtful, and one line at INFO
    /// with the keys of the control file that were not asked for (it may serve many programs).
    void ReportUnusedWords();
    /// All parameters found so far, by name.
    [[nodiscard]] const std::map<std::string, FOUND_PARAMETER>& Found() const { return found_; }

    /// Every text that a lookup of this name could give, without asking the keyboard and without a line in the log.
    [[nodiscard]] std::vector<std::string> PossibleValues(const std::string& name) const;
    /// Known from the moment in which init() checks the files.
    [[nodiscard]] const CONTROLLER_FILES& Files() const { return files_; }

    /// Forms every file name: the last path component of the first argument, or the value of the parameter `pid`.
    [[nodiscard]] std::string get_binary_name() const;
    /// The last path component of the first argument.
    [[nodiscard]] std::string get_process_name() const { return process_name_; }
    [[nodiscard]] std::string get_configuration_file_name() const { return configuration_file_path_; }

    void set_controller_messages(bool on);
    [[nodiscard]] bool controller_messages() const { return controller_messages_; }
    void close_configuration_file() { configuration_file_.Close(); }

    [[noreturn]] void exit_success();
    [[noreturn]] void exit_error();
    /// The file work of the two exits. @return the exit status, 0 and 1
    int set_status_success();
    int set_status_error();

  private:
    bool Lookup(const std::string& name, std::string& value);
    /// Of the value; 0: none.
    [[nodiscard]] int PlaceInArguments(const std::string& name) const;
    bool FindInArguments(const std::string& name, std::string& value);
    bool FindInConfigurationFile(const std::string& name, std::string& value);
    bool FindInEnvironment(const std::string& name, std::string& value);
    /// The source that has it, or null.
    const char* Find(const std::string& name, std::string& value);
    std::string AskKeyboard(const std::string& name);
    [[nodiscard]] GIVEN_WORDS GivenWords();
    void WarnOnce(const std::vector<std::string>& lines);
    void WarnBeforeAsking(const std::string& name);

    void ResolveStatusPaths();
    void OpenConfigurationFile();
    [[nodiscard]] std::string NameLogFile(bool pid_given);
    void EndForFiles(const FILE_PROBLEMS& problems);
    void SetLogThresholds();
    void EndWhenStopped();
    void RequireReadableConfiguration();
    void TakeStatusFilesOver();
    void PublishForSignals();
    void WriteStatus(const std::string& path, char digit);

    void RequireFitting(const std::string& name, const std::string& text);
    void Complain(const std::string& reason) const;
    [[noreturn]] void EndWithError(const std::string& reason);

    int argument_count_ = 0;
    char** arguments_ = nullptr;
    bool initialised_ = false;
    std::string binary_name_;
    std::string process_name_;
    std::string status_path_;
    CONTROL_FILE configuration_file_;
    std::string ok_file_path_;
    std::string stop_file_path_;
    std::string error_file_path_;
    std::string configuration_file_path_;
    bool controller_messages_ = false;
    bool only_looks_ = false;
    std::vector<std::string> known_keys_;
    LOOKUP_RECORD lookups_;
    std::set<std::string> warned_;
    CONTROLLER_FILES files_;
    std::function<FILE_PROBLEMS()> check_files_;
    std::function<void()> before_start_;
    std::map<std::string, FOUND_PARAMETER> found_;
    std::deque<FATAL_SIGNAL_REACTION> reactions_;  ///< all published so far: a handler may be reading an earlier one
};
