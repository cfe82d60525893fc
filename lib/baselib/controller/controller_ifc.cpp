#include "lib/baselib/controller/controller_ifc.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "lib/baselib/controller/key_suggestions.h"
#include "lib/baselib/controller/status_files.h"
#include "lib/baselib/logging/log_texts.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr size_t kLongestText = 255;
constexpr int kStatusSuccess = 0;
constexpr int kStatusError = 1;
constexpr int kStatusStopped = 2;

std::string LastPathComponent(const char* path) {
    const std::string text = path == nullptr ? "" : path;
    return text.substr(text.rfind('/') + 1);
}

/// 120 s, or the environment's number; a text that is no number counts as 0: no limit.
int SecondsOnParameterInput() {
    const char* const text = std::getenv("SECONDS_ON_PARAMETER_INPUT");
    if (text == nullptr) return 120;
    return static_cast<int>(std::clamp(std::strtol(text, nullptr, 10), 0L, long{INT_MAX}));
}

/// One word delimited by blanks, cut one character behind the longest text allowed; empty at the end of the input.
std::string WordFromKeyboard() {
    int c = std::getchar();
    while (c != EOF && std::isspace(c) != 0) c = std::getchar();
    std::string word;
    for (; c != EOF && std::isspace(c) == 0 && word.size() <= kLongestText; c = std::getchar())
        word += static_cast<char>(c);
    return word;
}

}  // namespace

CONTROLLER_IFC::~CONTROLLER_IFC() {
    if (!reactions_.empty()) RegisterForFatalSignals(nullptr);
}

void CONTROLLER_IFC::init(int argc, char** argv, bool controller_messages) {
    controller_messages_ = controller_messages;
    argument_count_ = argc;
    arguments_ = argv;
    process_name_ = LastPathComponent(argc > 0 ? argv[0] : nullptr);
    binary_name_ = process_name_;
    initialised_ = true;
    InstallFatalSignalHandlers();
    PublishForSignals();

    const bool pid_given = get_optional_parameter("pid", binary_name_);
    Log() << LOGGING_LEVEL::TRACE << "binary name is " << binary_name_ << "\n";
    ResolveStatusPaths();
    OpenConfigurationFile();
    const std::string log_file = NameLogFile(pid_given);
    files_ = {configuration_file_path_, log_file, status_path_ + "OK." + binary_name_,
              status_path_ + "ERROR." + binary_name_, stop_file_path_};
    const FILE_PROBLEMS problems = check_files_ ? check_files_() : FILE_PROBLEMS{};
    if (!problems.log) Log().SetLogFile(only_looks_ ? "/dev/null" : log_file);
    if (!problems.lines.empty()) EndForFiles(problems);
    RequireReadableConfiguration();
    if (!configuration_file_.IsOpen())
        Log() << LOGGING_LEVEL::WARNING << "Configuration file " << configuration_file_path_ << " does not exist!\n";
    SetLogThresholds();
    if (before_start_) before_start_();
    EndWhenStopped();
    if (!only_looks_) TakeStatusFilesOver();
}

/// An OK file that stayed would say of a failed run that it succeeded, an ERROR file the opposite.
void CONTROLLER_IFC::TakeStatusFilesOver() {
    for (const std::string* path : {&ok_file_path_, &error_file_path_}) {
        if (CanBeRemoved(path->c_str())) continue;
        EndWithError("status file " + *path +
                     " of another run can not be removed: its owner, folder or kind forbids it");
    }
    if (!RemoveStatusFile(ok_file_path_.c_str()))
        EndWithError("status file " + ok_file_path_ + " can not be removed: " + std::strerror(errno));
    WriteStatus(error_file_path_, '1');
}

/// A control file that can not be read to its end is not one that ends earlier.
void CONTROLLER_IFC::RequireReadableConfiguration() {
    const std::string& problem = configuration_file_.Problem();
    if (!problem.empty())
        EndWithError("configuration file " + configuration_file_path_ + " can not be read: " + problem);
}

void CONTROLLER_IFC::init_to_look(int argc, char** argv) {
    only_looks_ = true;
    init(argc, argv, false);
}

void CONTROLLER_IFC::ResolveStatusPaths() {
    status_path_.clear();
    get_optional_parameter("status", status_path_);
    if (!status_path_.empty() && status_path_.back() != '/') status_path_ += "/";
    Log() << LOGGING_LEVEL::TRACE << "status path is [" << status_path_ << "]\n";
    const std::string error_file_name = "ERROR." + binary_name_;  // the longest of the three
    const std::string error_file_path = status_path_ + error_file_name;
    RequireFitting("pid", error_file_name);
    RequireFitting("status", error_file_path);
    stop_file_path_ = status_path_ + "STOP." + binary_name_;
    if (only_looks_) return;  // without their paths no status files are written
    ok_file_path_ = status_path_ + "OK." + binary_name_;
    error_file_path_ = error_file_path;
    PublishForSignals();
}

void CONTROLLER_IFC::OpenConfigurationFile() {
    configuration_file_path_ = "pcf." + binary_name_;
    get_optional_parameter("pcf", configuration_file_path_);
    RequireFitting("pcf", configuration_file_path_);
    // A failure is reported when the log has its final file.
    (void)configuration_file_.Open(configuration_file_path_);
}

std::string CONTROLLER_IFC::NameLogFile(bool pid_given) {
    std::string name;
    if (!get_optional_parameter("lfn", name)) {
        // The temporary file's name is nobody's choice; a name set by the program before stays.
        const bool keep = !Log().HasTemporaryFile() && !Log().LogFileName().empty() && !pid_given;
        name = keep ? Log().LogFileName() : "log." + binary_name_;
    }
    RequireFitting("lfn", name);
    return name;
}

/// What lies at the place of a status file may be another file of the run, which stays; a digit is a status file.
void CONTROLLER_IFC::EndForFiles(const FILE_PROBLEMS& problems) {
    if (problems.ok && !HoldsAtMostADigit(ok_file_path_.c_str())) ok_file_path_.clear();
    if (problems.error && !HoldsAtMostADigit(error_file_path_.c_str())) error_file_path_.clear();
    PublishForSignals();
    if (!problems.report && before_start_) before_start_();
    if (problems.log && !only_looks_) Complain("the log stays in " + Log().LogFileName());
    for (std::size_t i = 0; i + 1 < problems.lines.size(); ++i) Complain(problems.lines[i]);
    EndWithError(problems.lines.back());
}

void CONTROLLER_IFC::SetLogThresholds() {
    if (only_looks_) return;
    std::string level;
    if (get_optional_parameter("lfl", level)) Log().SetFileThreshold(LevelFromName(level));
    if (get_optional_parameter("lsl", level)) Log().SetScreenThreshold(LevelFromName(level));
}

void CONTROLLER_IFC::EndWhenStopped() {
    if (!CanBeRead(stop_file_path_.c_str())) return;
    constexpr const char* kRule = "====================================================\n";
    Log() << LOGGING_LEVEL::INFO << kRule;
    Log() << LOGGING_LEVEL::INFO << "Program execution interrupted - STOP file was found!\n";
    Log() << LOGGING_LEVEL::INFO << kRule;
    Log() << LOGGING_LEVEL::INFO << "found file: " << stop_file_path_ << "\n";
    if (only_looks_) std::printf("STOP file %s holds the run back\n", Printable(stop_file_path_).c_str());
    std::exit(kStatusStopped);
}

void CONTROLLER_IFC::PublishForSignals() {
    reactions_.emplace_back(process_name_, controller_messages_, ok_file_path_, error_file_path_);
    RegisterForFatalSignals(&reactions_.back());
}

std::string CONTROLLER_IFC::get_parameter(const std::string& name) {
    std::string value;
    return Lookup(name, value) ? value : AskKeyboard(name);
}

bool CONTROLLER_IFC::get_optional_parameter(const std::string& name, std::string& value) {
    return Lookup(name, value);
}

bool CONTROLLER_IFC::parameter_exists(const std::string& name) {
    std::string scratch;
    return Lookup(name, scratch);
}

const char* CONTROLLER_IFC::Find(const std::string& name, std::string& value) {
    if (FindInArguments(name, value)) return "argument";
    if (FindInConfigurationFile(name, value)) return "control file";
    return FindInEnvironment(name, value) ? "environment" : nullptr;
}

bool CONTROLLER_IFC::Lookup(const std::string& name, std::string& value) {
    if (configuration_file_.IsOpen()) lookups_.asked_with_file.insert(name);
    const char* const source = Find(name, value);
    if (source == nullptr) return false;
    lookups_.found.insert(name);
    found_[name] = {value, source};
    return true;
}

int CONTROLLER_IFC::PlaceInArguments(const std::string& name) const {
    const std::string key = "-" + name;
    // Backwards, so that the last of several wins; the last argument has no value behind it.
    for (int i = argument_count_ - 2; i >= 1; --i)
        if (key == arguments_[i]) return i + 1;
    return 0;
}

bool CONTROLLER_IFC::FindInArguments(const std::string& name, std::string& value) {
    const int place = PlaceInArguments(name);
    if (place == 0) {
        Log() << LOGGING_LEVEL::TRACE << "Parameter " << name << " not found in argument list!\n";
        return false;
    }
    RequireFitting(name, arguments_[place]);
    lookups_.used_arguments.insert(place - 1);
    value = arguments_[place];
    Log() << LOGGING_LEVEL::DEBUG << "Found parameter in argument list " << name << " = " << value << "\n";
    return true;
}

std::vector<std::string> CONTROLLER_IFC::PossibleValues(const std::string& name) const {
    if (const int place = PlaceInArguments(name); place != 0) return {arguments_[place]};
    std::vector<std::string> values;
    if (configuration_file_.IsOpen()) values = configuration_file_.ValuesOf(name);
    const char* const text = std::getenv(name.c_str());
    if (values.empty() && text != nullptr) values.emplace_back(text);
    return values;
}

bool CONTROLLER_IFC::FindInConfigurationFile(const std::string& name, std::string& value) {
    if (!configuration_file_.IsOpen()) return false;
    // From where the last lookup stopped to the end, then the whole file once more.
    for (bool rewound = false;;) {
        const std::optional<CONTROL_FILE::ENTRY> entry = configuration_file_.NextEntry();
        if (!entry) {
            if (rewound) return false;
            Log() << LOGGING_LEVEL::TRACE << "rewinding file position\n";
            configuration_file_.Rewind();
            rewound = true;
        } else if (entry->key == name) {
            RequireFitting(name, entry->value);
            value = entry->value;
            Log() << LOGGING_LEVEL::DEBUG << "Found parameter " << name << "=" << value << "\n";
            return true;
        }
    }
}

bool CONTROLLER_IFC::FindInEnvironment(const std::string& name, std::string& value) {
    const char* const text = std::getenv(name.c_str());
    if (text == nullptr) {
        Log() << LOGGING_LEVEL::TRACE << "parameter " << name << " not found in UNIX environment\n";
        return false;
    }
    RequireFitting(name, text);
    value = text;
    Log() << LOGGING_LEVEL::DEBUG << "Found parameter in UNIX environment " << name << "=" << value << "\n";
    return true;
}

std::string CONTROLLER_IFC::AskKeyboard(const std::string& name) {
    if (only_looks_) EndWithError("parameter " + name + " is missing");
    WarnBeforeAsking(name);
    Log() << LOGGING_LEVEL::WARNING << "No configuration file or parameter not found!\n";
    Log() << LOGGING_LEVEL::WARNING << "\t  Please input value of parameter : <" << name << ">\n";
    Log() << LOGGING_LEVEL::WARNING << "\t  (" << process_name_ << " --help tells the parameters)\n";
    const int seconds = SecondsOnParameterInput();
    Log() << LOGGING_LEVEL::DEBUG << "waiting " << seconds << " seconds for input\n";
    // Nobody handles SIGALRM: an unattended run ends by it, with the ERROR file of init() left behind.
    alarm(static_cast<unsigned>(seconds));
    std::printf("%s := ", name.c_str());
    std::fflush(stdout);
    std::string value = WordFromKeyboard();
    alarm(0);
    if (value.empty()) EndWithError("end of input at the keyboard: no value of parameter " + name);
    RequireFitting(name, value);
    Log() << LOGGING_LEVEL::DEBUG << "Read from keyboard parameter " << name << " = " << value << "\n";
    found_[name] = {value, "keyboard"};
    return value;
}

GIVEN_WORDS CONTROLLER_IFC::GivenWords() {
    return {.arguments = std::vector<std::string>(arguments_, arguments_ + argument_count_),
            .file_keys = configuration_file_.Keys(),
            .file_path = configuration_file_path_,
            .file_is_open = configuration_file_.IsOpen(),
            .known_keys = known_keys_};
}

void CONTROLLER_IFC::WarnOnce(const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
        if (warned_.insert(line).second) Log().Message(LOGGING_LEVEL::WARNING, "%s", line.c_str());
}

void CONTROLLER_IFC::ReportUnusedWords() {
    const GIVEN_WORDS words = GivenWords();
    WarnOnce(UnusedArgumentLines(words, lookups_, false));
    WarnOnce(DoubtfulFileKeyLines(words, lookups_));
    const std::string unused = UnusedFileKeysLine(words, lookups_);
    if (!unused.empty()) Log().Message(LOGGING_LEVEL::INFO, "%s", unused.c_str());
}

/// What may be the reason that a mandatory key is missing.
void CONTROLLER_IFC::WarnBeforeAsking(const std::string& name) {
    const GIVEN_WORDS words = GivenWords();
    WarnOnce(UnusedArgumentLines(words, lookups_, true));
    for (const std::string& word : words.file_keys)
        if (word != name && SuggestedKey(word, {name}) == name && SuggestedKey(word, known_keys_) == name)
            WarnOnce({MistypedFileKeyLine(words, word, name)});
}

std::string CONTROLLER_IFC::get_binary_name() const {
    if (initialised_) return binary_name_;
    Log() << LOGGING_LEVEL::WARNING << "CONTROLLER_IFC::get_binary_name: Controller interface not initialized!\n";
    Log().Message(LOGGING_LEVEL::WARNING,
                  "Function CONTROLLER_IFC::init must be called before accessing a controller object!");
    return "unknown";
}

void CONTROLLER_IFC::set_controller_messages(bool on) {
    controller_messages_ = on;
    if (initialised_) PublishForSignals();
}

void CONTROLLER_IFC::WriteStatus(const std::string& path, char digit) {
    if (path.empty()) return;  // the names of the status files are not known yet
    if (!WriteStatusFile(path.c_str(), digit))
        Log() << LOGGING_LEVEL::WARNING << "Can not create file " << path << "!\n";
}

int CONTROLLER_IFC::set_status_success() {
    close_configuration_file();
    if (!RemoveStatusFile(error_file_path_.c_str())) {
        Log().Message(LOGGING_LEVEL::WARNING, "Can not remove file %s: %s!", error_file_path_.c_str(),
                      std::strerror(errno));
        WriteStatus(error_file_path_, '0');
    }
    WriteStatus(ok_file_path_, '0');
    return kStatusSuccess;
}

int CONTROLLER_IFC::set_status_error() {
    close_configuration_file();
    RemoveStatusFile(ok_file_path_.c_str());
    WriteStatus(error_file_path_, '1');
    return kStatusError;
}

void CONTROLLER_IFC::exit_success() {
    std::exit(set_status_success());
}

void CONTROLLER_IFC::exit_error() {
    std::exit(set_status_error());
}

void CONTROLLER_IFC::RequireFitting(const std::string& name, const std::string& text) {
    if (text.size() <= kLongestText) return;
    EndWithError("parameter " + name + ": a text of " + std::to_string(text.size()) + " characters, at most " +
                 std::to_string(kLongestText) + " are allowed: " + text.substr(0, 40) + "...");
}

void CONTROLLER_IFC::Complain(const std::string& reason) const {
    Log().Message(LOGGING_LEVEL::ALARM, "%s", reason.c_str());
    if (only_looks_) std::printf("  problem: %s\n", Printable(reason).c_str());
}

void CONTROLLER_IFC::EndWithError(const std::string& reason) {
    Complain(reason);
    Log() << LOGGING_LEVEL::ALARM << "ORQ_MSG|ERROR|" << binary_name_ << " terminated with error!\n";
    exit_error();
}
