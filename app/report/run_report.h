/// \file run_report.h
/// The key REPORT: one JSON document (docs/run_report.schema.json) when the run ends, however it ends: by success,
/// failure, STOP file or fatal signal; not by SIGKILL, nor by the alarm that ends an unanswered keyboard question.
///
/// A document that is complete but for its end is kept ready all the time: the handler of a fatal signal writes what
/// was known when the last stage began, the exit of the process writes the latest.
/// One object per process, on the main thread.

#pragma once

#include <string>
#include <vector>

#include "app/report/stage_clock.h"
#include "app/simulation_state.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/image/product_set.h"
#include "lib/baselib/logging/version_record.h"

class JSON_TEXT;

class RUN_REPORT {
  public:
    RUN_REPORT() = default;
    RUN_REPORT(const RUN_REPORT&) = delete;
    RUN_REPORT& operator=(const RUN_REPORT&) = delete;

    /// Looks the key up; nothing else here does anything without it. The object must live until the process ends.
    void Begin(CONTROLLER_IFC& controller);
    [[nodiscard]] bool IsWanted() const { return controller_ != nullptr; }

    /// "A", "B", "C"
    void BeginStage(const std::string& name);
    /// Sizes and counts, known at the end of stage A.
    void Describe(const SIMULATION_STATE& state);
    /// All products are complete.
    void ProductsAreWritten(const PRODUCT_SET& products);

    /// What the exit of the process does. @param status  its exit status
    void WriteAtExit(int status);

  private:
    struct SIZES {
        IMAGE_SIZE image, simulated, shift, earth, dem;
        DEM_RANGE used;
        long long voids = 0;
    };
    struct WRITTEN {
        std::string key;
        long long columns = 0;
        long long rows = 0;
        long long bytes = 0;  ///< of the file
        VALUE_STATISTICS values{};
    };

    [[nodiscard]] std::string Document() const;
    void AddKeys(JSON_TEXT& json) const;
    void AddSizes(JSON_TEXT& json) const;
    void AddStages(JSON_TEXT& json) const;
    void AddProducts(JSON_TEXT& json) const;
    void Publish() const;

    const CONTROLLER_IFC* controller_ = nullptr;  ///< null: no report is wanted
    std::string path_;
    STAGE_CLOCK clock_;
    std::optional<SIZES> sizes_;
    bool products_written_ = false;
    std::vector<WRITTEN> written_;  ///< none before all are
};
