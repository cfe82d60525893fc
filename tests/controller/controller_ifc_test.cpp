#include "lib/baselib/controller/controller_ifc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "lib/baselib/logging/logging.h"
#include "tests/controller/temporary_folder.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What a process of its own did with a controller: the controller changes signals, log and files of its process.
struct OUTCOME {
    int status = 0;
    std::string log;  ///< content of the file "log"
};

/// @param arguments  without the program's name, which is "/some/where/prog"
OUTCOME RunController(std::vector<std::string> arguments, const std::function<void(CONTROLLER_IFC&)>& use) {
    arguments.insert(arguments.begin(), "/some/where/prog");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        Log().SetScreenThreshold(10);
        Log().SetFileThreshold(1);
        CONTROLLER_IFC controller;
        controller.SetKnownKeys({"MASTER_POOL", "DEM", "LOOKS_RG", "pcf", "pid"});
        controller.init(static_cast<int>(arguments.size()), argv.data(), true);
        use(controller);
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), Content("log")};
}

class ControllerTest : public testing::Test {
  protected:
    ControllerTest() { temporary_log_ = LOGGING::Request().LogFileName(); }  // the children inherit it
    ~ControllerTest() override {
        LOGGING::Release();
        unlink(temporary_log_.c_str());
    }

    /// The value found among arguments, control file "pcf.prog" and environment; "none" when not found.
    static std::string Found(const std::vector<std::string>& arguments, const std::string& name) {
        RunController(arguments, [&name](CONTROLLER_IFC& controller) {
            std::string value = "none";
            controller.get_optional_parameter(name, value);
            Write("value", value);
        });
        return Content("value");
    }

    TEMPORARY_FOLDER folder_;
    std::string temporary_log_;
};

TEST_F(ControllerTest, TheFirstSourceWinsAndTheLastArgument) {
    Write("pcf.prog", "KEY file ignored\nALONE\nKEY second\n");
    setenv("KEY", "environment", 1);
    setenv("ONLY_ENV", "environment", 1);
    struct CASE {
        std::vector<std::string> arguments;
        std::string name, value;
    };
    const CASE cases[] = {
        {{"-KEY", "a", "-KEY", "b"}, "KEY", "b"},
        {{"-KEY", "a", "-KEY"}, "KEY", "a"},                        // the last argument has no value behind it
        {{"KEY", "a", "--KEY", "b", "-KEYS", "c"}, "KEY", "file"},  // exactly "-" and the name
        {{"-X", "-KEY", "c"}, "KEY", "c"},
        {{}, "KEY", "file"},
        {{}, "ALONE", ""},
        {{}, "key", "none"},
        {{"-pcf", "elsewhere"}, "KEY", "environment"},
        {{}, "ONLY_ENV", "environment"},
        {{}, "MISSING", "none"},
    };
    for (const CASE& c : cases) EXPECT_EQ(Found(c.arguments, c.name), c.value) << c.name;
    unsetenv("KEY");
    unsetenv("ONLY_ENV");
}

TEST_F(ControllerTest, TheControlFileIsReadOnwardAndWrappedRoundOnce) {
    Write("pcf.prog", "A 1\nB 2\nB 3\nC 4\nlfn log\n");
    const OUTCOME run = RunController({}, [](CONTROLLER_IFC& controller) {
        // "lfn" was the file's last key; from here on: B 2, then onward B 3, then round to B 2, then A by wrapping.
        std::string values;
        for (const char* name : {"B", "B", "B", "A", "C"}) values += controller.get_parameter(name);
        values += controller.parameter_exists("NONE") ? "yes" : "no";
        Write("value", values);
    });
    EXPECT_EQ(run.status, 7);
    EXPECT_EQ(Content("value"), "23214no");
    EXPECT_THAT(run.log, EndsWith("TRACE : global : Parameter NONE not found in argument list!\n"
                                  "TRACE : global : rewinding file position\n"
                                  "TRACE : global : parameter NONE not found in UNIX environment\n"));
    EXPECT_THAT(run.log, HasSubstr("DEBUG : global : Found parameter B=3\nTRACE : global : Parameter B not found in "
                                   "argument list!\nTRACE : global : rewinding file position\nDEBUG : global : Found "
                                   "parameter B=2\n"));
}

TEST_F(ControllerTest, InitialisationTellsItsStepsAndLeavesTheErrorFile) {
    std::filesystem::create_directory("status");
    Write("status/OK.job7", "0");
    Write("status/ERROR.job7", "a longer text");
    const OUTCOME run =
        RunController({"-pid", "job7", "-status", "status", "-lfn", "log"}, [](CONTROLLER_IFC& controller) {
            Write("names", controller.get_binary_name() + " " + controller.get_process_name() + " " +
                               controller.get_configuration_file_name());
        });
    EXPECT_EQ(run.status, 7);
    EXPECT_EQ(Content("names"), "job7 prog pcf.job7");
    EXPECT_EQ(Content("status/ERROR.job7"), "1");
    EXPECT_FALSE(std::filesystem::exists("status/OK.job7"));
    EXPECT_EQ(run.log,
              "DEBUG : global : Found parameter in argument list pid = job7\n"
              "TRACE : global : binary name is job7\n"
              "DEBUG : global : Found parameter in argument list status = status\n"
              "TRACE : global : status path is [status/]\n"
              "TRACE : global : Parameter pcf not found in argument list!\n"
              "TRACE : global : parameter pcf not found in UNIX environment\n"
              "DEBUG : global : Found parameter in argument list lfn = log\n"
              "WARN  : global : Configuration file pcf.job7 does not exist!\n"
              "TRACE : global : Parameter lfl not found in argument list!\n"
              "TRACE : global : parameter lfl not found in UNIX environment\n"
              "TRACE : global : Parameter lsl not found in argument list!\n"
              "TRACE : global : parameter lsl not found in UNIX environment\n");
}

TEST_F(ControllerTest, NamesOfTheLogFile) {
    RunController({}, [](CONTROLLER_IFC&) {});
    EXPECT_TRUE(std::filesystem::exists("log.prog"));
    RunController({"-pid", "job7"}, [](CONTROLLER_IFC&) {});
    EXPECT_TRUE(std::filesystem::exists("log.job7"));
}

TEST_F(ControllerTest, ExitsExchangeTheStatusFiles) {
    const std::vector<std::string> arguments = {"-lfn", "log", "-status", "./"};
    EXPECT_EQ(RunController(arguments, [](CONTROLLER_IFC& controller) { controller.exit_success(); }).status, 0);
    EXPECT_EQ(Content("OK.prog"), "0");
    EXPECT_FALSE(std::filesystem::exists("ERROR.prog"));
    EXPECT_EQ(RunController(arguments, [](CONTROLLER_IFC& controller) { controller.exit_error(); }).status, 1);
    EXPECT_EQ(Content("ERROR.prog"), "1");
    EXPECT_FALSE(std::filesystem::exists("OK.prog"));
    EXPECT_EQ(
        RunController(arguments, [](CONTROLLER_IFC& c) { _exit(10 + c.set_status_error() + c.set_status_success()); })
            .status,
        11);
    EXPECT_EQ(Content("OK.prog"), "0");
}

TEST_F(ControllerTest, AStopFileEndsTheRunBeforeAnyStatusFile) {
    Write("STOP.prog", "");
    Write("OK.prog", "0");
    const OUTCOME run = RunController({"-lfn", "log"}, [](CONTROLLER_IFC&) {});
    EXPECT_EQ(run.status, 2);
    const std::string rule = "INFO  : global : ====================================================\n";
    EXPECT_THAT(run.log, EndsWith("lsl not found in UNIX environment\n" + rule +
                                  "INFO  : global : Program execution interrupted - STOP file was found!\n" + rule +
                                  "INFO  : global : found file: STOP.prog\n"));
    EXPECT_EQ(Content("OK.prog"), "0");
    EXPECT_FALSE(std::filesystem::exists("ERROR.prog"));
}

TEST_F(ControllerTest, AnUnwritableStatusPathIsAWarning) {
    Write("file", "");
    const OUTCOME run = RunController({"-lfn", "log", "-status", "file"},
                                      [](CONTROLLER_IFC& controller) { controller.exit_success(); });
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.log, EndsWith("WARN  : global : Can not create file file/ERROR.prog!\n"
                                  "WARN  : global : Can not create file file/OK.prog!\n"));
}

TEST_F(ControllerTest, TextsOfMoreThan255CharactersEndInAnErrorThatNamesTheKey) {
    const std::string fits(255, 'x');
    const std::string too_long(256, 'x');
    EXPECT_EQ(Found({"-KEY", fits}, "KEY"), fits);
    const auto ask = [](CONTROLLER_IFC& controller) { (void)controller.parameter_exists("KEY"); };
    const auto expect_error = [](const OUTCOME& run, const char* key) {
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.log, HasSubstr(std::string("ALARM : global : parameter ") + key + ": a text of "));
        EXPECT_THAT(run.log, HasSubstr("ALARM : global : ORQ_MSG|ERROR|prog terminated with error!\n"));
        std::filesystem::remove("log");
    };
    expect_error(RunController({"-lfn", "log", "-KEY", too_long}, ask), "KEY");
    EXPECT_EQ(Content("ERROR.prog"), "1");
    Write("pcf.prog", "OTHER " + too_long + too_long + "\nKEY " + too_long + "\n");
    expect_error(RunController({"-lfn", "log"}, ask), "KEY");
    std::filesystem::remove("pcf.prog");
    setenv("KEY", too_long.c_str(), 1);
    expect_error(RunController({"-lfn", "log"}, ask), "KEY");
    unsetenv("KEY");
    // The parts fit, the path does not; the log is still the temporary one.
    EXPECT_EQ(RunController({"-status", fits}, ask).status, 1);
    EXPECT_EQ(RunController({"-pid", too_long}, ask).status, 1);
}

TEST_F(ControllerTest, MistypedKeysAreToldOnceEach) {
    Write("pcf.prog", "lfn log\nMASTER_POL x\nmaster_pol y\n#LOOKS_RG 1\nFOREIGN_KEY 3\nDEM x\nMASTER_POL z\n");
    const OUTCOME run = RunController({"-LOOKS_GR", "-dem", "-X", "-1e-6", "-looks_RG", "5"},
                                      [](CONTROLLER_IFC& controller) { controller.WarnAboutMistypedKeys(); });
    EXPECT_THAT(run.log, EndsWith("WARN  : global : unknown parameter LOOKS_GR: is LOOKS_RG meant?\n"
                                  "WARN  : global : unknown parameter MASTER_POL: is MASTER_POOL meant?\n"
                                  "WARN  : global : unknown parameter looks_RG: is LOOKS_RG meant?\n"
                                  "WARN  : global : unknown parameter master_pol: is MASTER_POOL meant?\n"));
}

TEST_F(ControllerTest, BeforeInitialisationTheNameIsUnknown) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(CONTROLLER_IFC().get_binary_name(), "unknown");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "WARN  : global : CONTROLLER_IFC::get_binary_name: Controller interface not initialized!\n"
              "\033[4mWARN  : global : Function CONTROLLER_IFC::init must be called before accessing a controller "
              "object!\n\033[0m");
}

/// Gives the process a standard input with this content. Without end the writing side stays open.
void SetKeyboard(const std::string& content, bool with_end) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], content.data(), content.size()), static_cast<ssize_t>(content.size()));
    dup2(ends[0], STDIN_FILENO);
    if (with_end) close(ends[1]);
}

TEST_F(ControllerTest, TheKeyboardIsAskedLast) {
    Write("pcf.prog", "lfn log\nMASTER_POL x\nFOREIGN y\n");
    const OUTCOME run = RunController({}, [](CONTROLLER_IFC& controller) {
        SetKeyboard("  \n answer rest\n", true);
        const std::string first = controller.get_parameter("MASTER_POOL");
        Write("value", first + " " + controller.get_parameter("DEM"));
    });
    EXPECT_EQ(Content("value"), "answer rest");
    EXPECT_THAT(run.log, HasSubstr("TRACE : global : parameter MASTER_POOL not found in UNIX environment\n"
                                   "WARN  : global : unknown parameter MASTER_POL: is MASTER_POOL meant?\n"
                                   "WARN  : global : No configuration file or parameter not found!\n"
                                   "WARN  : global : \t  Please input value of parameter : <MASTER_POOL>\n"
                                   "DEBUG : global : waiting 120 seconds for input\n"
                                   "DEBUG : global : Read from keyboard parameter MASTER_POOL = answer\n"));
}

TEST_F(ControllerTest, TheKeyboardsEndEndsTheRun) {
    const OUTCOME run = RunController({"-lfn", "log"}, [](CONTROLLER_IFC& controller) {
        SetKeyboard("  \n", true);
        (void)controller.get_parameter("DEM");
    });
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.log, EndsWith("ALARM : global : end of input at the keyboard: no value of parameter DEM\n"
                                  "ALARM : global : ORQ_MSG|ERROR|prog terminated with error!\n"));
    EXPECT_EQ(Content("ERROR.prog"), "1");
}

TEST_F(ControllerTest, NobodyAtTheKeyboardEndsTheRunByTheAlarm) {
    const auto ask = [](CONTROLLER_IFC& controller) {
        SetKeyboard("", false);
        (void)controller.get_parameter("DEM");
    };
    setenv("SECONDS_ON_PARAMETER_INPUT", "1", 1);
    EXPECT_EQ(RunController({"-lfn", "log"}, ask).status, -SIGALRM);
    EXPECT_EQ(Content("ERROR.prog"), "1") << "the file of the initialisation stays";
    // No number, zero, or less: no limit.
    for (const char* seconds : {"0", "soon", "-5"}) {
        setenv("SECONDS_ON_PARAMETER_INPUT", seconds, 1);
        const OUTCOME run = RunController({"-lfn", "log"}, [](CONTROLLER_IFC& controller) {
            SetKeyboard("answer\n", true);
            Write("value", controller.get_parameter("DEM"));
        });
        EXPECT_EQ(Content("value"), "answer");
        EXPECT_THAT(run.log, HasSubstr("DEBUG : global : waiting 0 seconds for input\n"));
    }
    unsetenv("SECONDS_ON_PARAMETER_INPUT");
}

}  // namespace
