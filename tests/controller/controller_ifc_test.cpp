#include "lib/baselib/controller/controller_ifc.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <tuple>

#include "lib/baselib/logging/logging.h"
#include "tests/kit/in_process.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/temporary_folder.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/// What a process of its own did with a controller: the controller changes signals, log and files of its process.
struct OUTCOME {
    int status = 0;
    std::string log;  ///< content of the file "log"
};

using USE = std::function<void(CONTROLLER_IFC&)>;

/// @param arguments  without the program's name, which is "/some/where/prog"
OUTCOME RunController(
    std::vector<std::string> arguments, const USE& use, const USE& prepare = [](CONTROLLER_IFC&) {}) {
    arguments.insert(arguments.begin(), "/some/where/prog");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    const int status = InProcess([&] {
        Log().SetScreenThreshold(10);
        Log().SetFileThreshold(1);
        CONTROLLER_IFC controller;
        controller.SetKnownKeys({"MASTER_POOL", "DEM", "LOOKS_RG", "pcf", "pid"});
        prepare(controller);
        controller.init(static_cast<int>(arguments.size()), argv.data(), true);
        use(controller);
        _exit(7);
    });
    return {status, Content("log")};
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
            std::string value;
            const bool found = controller.get_optional_parameter(name, value);
            Write("value", found ? value : "none");
        });
        return Content("value");
    }

    WORKING_FOLDER folder_;
    std::string temporary_log_;
};

TEST_F(ControllerTest, TheFirstSourceWinsAndTheLastArgument) {
    Write("pcf.prog", "KEY file ignored\nALONE\nKEY second\n");
    setenv("KEY", "environment", 1);
    const std::tuple<std::vector<std::string>, const char*, const char*> cases[] = {
        {{"-KEY", "a", "-KEY", "b"}, "KEY", "b"},
        {{"-KEY", "a", "-KEY"}, "KEY", "a"},                        // the last argument has no value behind it
        {{"KEY", "a", "--KEY", "b", "-KEYS", "c"}, "KEY", "file"},  // exactly "-" and the name
        {{}, "ALONE", ""},
        {{"-pcf", "elsewhere"}, "KEY", "environment"}};
    for (const auto& [arguments, name, value] : cases) EXPECT_EQ(Found(arguments, name), value) << name;
    unsetenv("KEY");
}

TEST_F(ControllerTest, TheControlFileIsReadOnwardAndWrappedRoundOnce) {
    Write("pcf.prog", "A 1\nB 2\nB 3\nC 4\nlfn log\n");
    RunController({}, [](CONTROLLER_IFC& controller) {
        // "lfn" was the file's last key; from here on: B 2, then onward B 3, then round to B 2, then A by wrapping.
        std::string values;
        for (const char* name : {"B", "B", "B", "A", "C"}) values += controller.get_parameter(name);
        Write("value", values + (controller.parameter_exists("NONE") ? "yes" : "no"));
    });
    EXPECT_EQ(Content("value"), "23214no");
}

TEST_F(ControllerTest, InitialisationTellsItsSteps) {
    const OUTCOME run = RunController({"-pid", "job7", "-status", ".", "-lfn", "log"}, [](CONTROLLER_IFC&) {});
    EXPECT_EQ(run.log,
              "DEBUG : global : Found parameter in argument list pid = job7\n"
              "TRACE : global : binary name is job7\n"
              "DEBUG : global : Found parameter in argument list status = .\n"
              "TRACE : global : status path is [./]\n"
              "TRACE : global : Parameter pcf not found in argument list!\n"
              "TRACE : global : parameter pcf not found in UNIX environment\n"
              "DEBUG : global : Found parameter in argument list lfn = log\n"
              "WARN  : global : Configuration file pcf.job7 does not exist!\n"
              "TRACE : global : Parameter lfl not found in argument list!\n"
              "TRACE : global : parameter lfl not found in UNIX environment\n"
              "TRACE : global : Parameter lsl not found in argument list!\n"
              "TRACE : global : parameter lsl not found in UNIX environment\n");
}

TEST_F(ControllerTest, TextsOfMoreThan255CharactersEndInAnErrorThatNamesTheKey) {
    const std::string fits(255, 'x');
    const std::string too_long(256, 'x');
    EXPECT_EQ(Found({"-KEY", fits}, "KEY"), fits);
    const auto ask = [](CONTROLLER_IFC& controller) { (void)controller.parameter_exists("KEY"); };
    const auto expect_error = [&ask](const std::vector<std::string>& arguments) {
        EXPECT_EQ(RunController(arguments, ask).status, 1);
        EXPECT_THAT(Content(arguments[1]), HasSubstr("ALARM : global : parameter KEY: a text of "));
    };
    expect_error({"-lfn", "log", "-KEY", too_long});
    setenv("KEY", too_long.c_str(), 1);
    expect_error({"-lfn", "log2"});
    unsetenv("KEY");
    Write("pcf.prog", "OTHER " + too_long + too_long + "\nKEY " + too_long + "\n");
    expect_error({"-lfn", "log3"});
    // The parts fit, the path does not.
    EXPECT_EQ(RunController({"-status", fits}, ask).status, 1);
}

TEST_F(ControllerTest, WhatCanNotBeRightAtTheEndStopsTheRunAtTheBeginning) {
    const std::tuple<std::vector<std::string>, const char*, const char*> cases[] = {
        {{"-pid", std::string(250, 'x')}, "ERROR.none", "ALARM : global : parameter pid: a text of 256 characters"},
        {{"-pcf", "/proc/self/mem"},
         "ERROR.prog",
         "configuration file /proc/self/mem can not be read: Input/output error"},
        {{"-pid", "job"},
         "ERROR.job",
         "status file OK.job of another run can not be removed: its owner, folder or kind forbids it"}};
    std::filesystem::create_directories("OK.job");
    for (auto [arguments, error_file, text] : cases) {
        arguments.insert(arguments.end(), {"-lfn", "log"});
        const OUTCOME run = RunController(arguments, [](CONTROLLER_IFC&) {});
        EXPECT_EQ(run.status, 1);
        const std::string log = run.log.empty() ? Content(temporary_log_) : run.log;
        EXPECT_THAT(log, HasSubstr(text));
        EXPECT_EQ(std::filesystem::exists(error_file), std::string(error_file) != "ERROR.none");
        std::filesystem::remove("log");
    }
}

TEST_F(ControllerTest, ProblemsOfFilesEndTheRunAndSpareWhatIsNoStatusFile) {
    struct CASE {
        const char* name;
        std::string before;  ///< content of OK.prog and ERROR.prog
        bool ok_is_other, error_is_other, log_is_other;
        std::string ok, error;  ///< contents afterwards
    };
    const CASE cases[] = {{"log and report", "0", false, false, true, "", "1"},  // as long as the first log is there
                          {"other files", "long", false, false, false, "", "1"},
                          {"in both places", "long", true, true, false, "long", "long"},
                          {"in that of OK", "long", true, false, false, "long", "1"},
                          {"in that of ERROR", "long", false, true, false, "", "long"},
                          {"status files", "0", true, true, false, "", "1"}};
    for (const CASE& c : cases) {
        for (const bool signal : {false, true}) {  // while the reasons are told
            SCOPED_TRACE(c.name);
            Write("log", "older");
            for (const char* path : {"OK.prog", "ERROR.prog"}) Write(path, c.before);
            Write("started", "no");
            const auto prepare = [&](CONTROLLER_IFC& controller) {
                controller.SetCheckFiles([&] {
                    return FILE_PROBLEMS{
                        {"first", "last"}, c.log_is_other, c.ok_is_other, c.error_is_other, c.log_is_other};
                });
                controller.SetBeforeStart([signal] {
                    Write("started", "yes");
                    if (signal) raise(SIGTERM);
                });
            };
            const USE nothing = [](CONTROLLER_IFC&) {};
            EXPECT_EQ(RunController({"-lfn", "log"}, nothing, prepare).status, 1);
            EXPECT_EQ(Content("OK.prog"), c.ok);
            EXPECT_EQ(Content("ERROR.prog"), c.error);
            EXPECT_EQ(Content("started"), c.log_is_other ? "no" : "yes");
            EXPECT_EQ(Content("log") == "older", c.log_is_other);
            const std::string stays =
                c.log_is_other ? "ALARM : global : the log stays in " + temporary_log_ + "\n" : "";
            const std::string reasons = "ALARM : global : first\nALARM : global : last\n";
            EXPECT_THAT(Content("log"), Not(HasSubstr("Can not create file")));
            if (signal && !c.log_is_other) continue;
            EXPECT_THAT(Content(c.log_is_other ? temporary_log_ : "log"),
                        EndsWith(stays + reasons + "ALARM : global : ORQ_MSG|ERROR|prog terminated with error!\n"));
        }
    }
}

TEST_F(ControllerTest, ASignalBeforeTheStartLeavesTheStatusOfARunThatFailed) {
    for (const bool looks : {false, true}) {
        Write("OK.prog", "0");
        std::filesystem::remove("ERROR.prog");
        const int status = InProcess([looks] {
            CONTROLLER_IFC controller;
            controller.SetBeforeStart([] { raise(SIGTERM); });
            std::string name = "prog";
            char* argv[] = {name.data(), nullptr};
            looks ? controller.init_to_look(1, argv) : controller.init(1, argv, true);
        });
        EXPECT_EQ(status, 1);
        EXPECT_EQ(Content("OK.prog"), looks ? "0" : "");
        EXPECT_EQ(Content("ERROR.prog"), looks ? "" : "1");
    }
}

TEST_F(ControllerTest, AStatusThatCanNotBeChangedIsToldAndTheOtherOneIsWritten) {
    const OUTCOME run = RunController({"-lfn", "log"}, [](CONTROLLER_IFC& controller) {
        unlink("ERROR.prog");
        std::filesystem::create_directories("ERROR.prog/full");  // by somebody, during the run
        _exit(controller.set_status_success() == 0 ? 5 : 6);
    });
    EXPECT_EQ(run.status, 5);
    EXPECT_THAT(run.log, EndsWith("WARN  : global : Can not remove file ERROR.prog: Is a directory!\n"
                                  "WARN  : global : Can not create file ERROR.prog!\n"));
    EXPECT_EQ(Content("OK.prog"), "0");
    EXPECT_THAT(LoggedBy([] { EXPECT_EQ(CONTROLLER_IFC().get_binary_name(), "unknown"); }),
                HasSubstr("Controller interface not initialized!\n"));
}

TEST_F(ControllerTest, MistypedKeysAreToldOnceEach) {
    Write("pcf.prog", "lfn log\nMASTER_POL x\n#LOOKS_RG 1\nFOREIGN_KEY 3\nDEM x\nMASTER_POL z\n");
    const OUTCOME run = RunController({"-LOOKS_GR", "x", "-X", "-1e-6"},
                                      [](CONTROLLER_IFC& controller) { controller.ReportUnusedWords(); });
    EXPECT_THAT(run.log,
                EndsWith("WARN  : global : unknown parameter LOOKS_GR: is LOOKS_RG meant?\n"
                         "WARN  : global : argument -X is not used\n"
                         "WARN  : global : unknown parameter MASTER_POL: is MASTER_POOL meant?\n"
                         "INFO  : global : keys of pcf.prog that this run did not use: MASTER_POL FOREIGN_KEY DEM\n"));
}

TEST_F(ControllerTest, TheKeyboardIsAskedLast) {
    Write("pcf.prog", "lfn log\nMASTER_POL x\nFOREIGN y\n");
    setenv("SECONDS_ON_PARAMETER_INPUT", "-5", 1);  // no number, zero, or less: no limit
    const OUTCOME run = RunController({}, [](CONTROLLER_IFC& controller) {
        int ends[2];
        const std::string typed = "  \n answer rest\n";
        ASSERT_EQ(pipe(ends), 0);
        ASSERT_EQ(write(ends[1], typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
        dup2(ends[0], STDIN_FILENO);
        const std::string first = controller.get_parameter("MASTER_POOL");
        Write("value", first + " " + controller.get_parameter("DEM"));
    });
    unsetenv("SECONDS_ON_PARAMETER_INPUT");
    EXPECT_EQ(Content("value"), "answer rest");
    EXPECT_THAT(run.log, HasSubstr("WARN  : global : unknown parameter MASTER_POL: is MASTER_POOL meant?\n"
                                   "WARN  : global : No configuration file or parameter not found!\n"
                                   "WARN  : global : \t  Please input value of parameter : <MASTER_POOL>\n"
                                   "WARN  : global : \t  (prog --help tells the parameters)\n"
                                   "DEBUG : global : waiting 0 seconds for input\n"
                                   "DEBUG : global : Read from keyboard parameter MASTER_POOL = answer\n"));
}

}  // namespace
