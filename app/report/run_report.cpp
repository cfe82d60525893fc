#include "app/report/run_report.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <new>
#include <string_view>

#include "app/keys/control_key.h"
#include "app/out_of_memory.h"
#include "app/report/json_text.h"
#include "app/report/report_file.h"
#include "app/report/utc_text.h"
#include "app/request/line_of_sight_files.h"
#include "app/velmora_version.h"
#include "lib/baselib/controller/fatal_signals.h"
#include "lib/baselib/image/left_over_files.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/sidecar/product_kind.h"

namespace {

/// What a fatal signal's handler writes.
struct PREPARED {
    REPORT_FILE file;
    std::string document;
    std::array<std::string, kSignalCount> last_errors;  ///< by signal number, as JSON strings
};

/// Never destroyed, and all that were published stay: a handler may be reading an earlier one.
std::atomic<const PREPARED*> prepared{nullptr};

/// The line of a lack of memory as a JSON string: it holds nothing that must be escaped, and there is no memory to do
/// it.
std::string_view QuotedMemoryLine(std::array<char, 200>& text) noexcept {
    const char* const line = OutOfMemoryLine();
    if (line == nullptr) return {};
    const std::size_t length = std::min(std::strlen(line), text.size() - 2);
    text[0] = '"';
    std::memcpy(&text[1], line, length);
    text[length + 1] = '"';
    return {text.data(), length + 2};
}

/// What was known when the last stage began. @param signal_number  0: none
void WritePrepared(int status, int signal_number) noexcept {
    const PREPARED* const ready = prepared;
    if (ready == nullptr) return;
    std::array<char, 200> text;
    const std::string_view memory_line = status == 0 ? std::string_view() : QuotedMemoryLine(text);
    const bool is_signal = memory_line.empty() && signal_number != 0;
    const std::string_view last_error = is_signal ? ready->last_errors[signal_number] : memory_line;
    static_cast<void>(ready->file.Write(ready->document, {status, last_error}));
}

void WriteFromHandler(int signal_number) noexcept {
    WritePrepared(1, signal_number);
}

std::array<std::string, kSignalCount> LastErrors() {
    std::array<std::string, kSignalCount> texts;
    for (int number = 0; number < kSignalCount; ++number)
        texts[number] = JsonString("got fatal signal " + std::to_string(number) + ": " + SignalText(number));
    return texts;
}

std::string UtcOf(std::time_t time) {
    char text[kUtcTextBytes];
    UtcText(time, text);
    return text;
}

void AddSize(JSON_TEXT& json, const char* key, const IMAGE_SIZE& size) {
    json.BeginObject(key);
    json.Add("columns", size.samples);
    json.Add("rows", size.lines);
    json.EndObject();
}

/// One key names the three files of the line of sight.
std::optional<std::string> PathOf(const CONTROLLER_IFC& controller, const PRODUCT_KIND& kind) {
    constexpr CONTROL_KEY kLineOfSight = "LINE_OF_SIGHT";
    const std::string key = kind.key;
    const bool is_component = key.starts_with(kLineOfSight.row.name);
    const auto found = controller.Found().find(is_component ? kLineOfSight.row.name : key);
    if (found == controller.Found().end()) return std::nullopt;
    const auto component = static_cast<char>(std::tolower(static_cast<unsigned char>(key.back())));
    return is_component ? LineOfSightPath(found->second.value, component) : found->second.value;
}

/// A lack of memory; else the last line that says more than that the program ended.
std::string LastError(int status) {
    if (status != 0 && OutOfMemoryLine() != nullptr) return OutOfMemoryLine();
    for (std::vector<std::string> errors = Log().Tally().LastErrors(); !errors.empty(); errors.pop_back()) {
        if (!errors.back().starts_with("ORQ_MSG|")) return errors.back();
    }
    return "";
}

}  // namespace

void RUN_REPORT::Begin(CONTROLLER_IFC& controller) {
    constexpr CONTROL_KEY kReport = "REPORT";
    if (!controller.get_optional_parameter(kReport.row.name, path_) || path_.empty()) return;
    controller_ = &controller;
    RemoveLeftOvers(FOLDER_AND_NAME(BehindLinks(path_)));
    on_exit([](int status, void* report) { static_cast<RUN_REPORT*>(report)->WriteAtExit(status); }, this);
    SetLeaveReport(WriteFromHandler);
    Publish();
}

void RUN_REPORT::BeginStage(const std::string& name) {
    if (controller_ == nullptr) return;
    clock_.Begin(name);
    Publish();
}

void RUN_REPORT::Describe(const SIMULATION_STATE& state) {
    if (controller_ == nullptr) return;
    const DEM_GRID& dem = state.terrain.grid;
    sizes_ = SIZES{state.acquisitions.image, state.simulated,       state.sizes.shift,    state.sizes.earth,
                   {dem.columns, dem.rows},  state.place.simulated, state.survey.excluded};
}

void RUN_REPORT::ProductsAreWritten(const PRODUCT_SET& products) {
    if (controller_ == nullptr) return;
    for (const auto& file : products.Files())
        written_.push_back({file->Key(), file->Columns(), file->Rows(), file->Bytes(), file->Values()});
    products_written_ = true;
    Publish();
}

void RUN_REPORT::AddKeys(JSON_TEXT& json) const {
    json.BeginArray("keys");
    for (const CONTROL_KEY_ROW& row : kControlKeys) {
        const auto found = controller_->Found().find(row.name);
        const bool given = found != controller_->Found().end();
        const char* const text = given ? nullptr : std::getenv(row.name);
        json.BeginObject();
        json.Add("key", row.name);
        if (given)
            json.Add("value", found->second.value);
        else if (text != nullptr && row.need == KEY_NEED::ENVIRONMENT)
            json.Add("value", text);
        else
            json.AddNull("value");
        if (given)
            json.Add("source", found->second.source);
        else if (text != nullptr && row.need == KEY_NEED::ENVIRONMENT)
            json.Add("source", "environment");
        else
            json.Add("source", row.need == KEY_NEED::FORCES_POOL ? "pool" : "default");
        json.EndObject();
    }
    json.EndArray();
}

void RUN_REPORT::AddSizes(JSON_TEXT& json) const {
    if (!sizes_) {
        json.AddNull("sizes");
        json.AddNull("counts");
        return;
    }
    json.BeginObject("sizes");
    AddSize(json, "master_image", sizes_->image);
    AddSize(json, "simulated_area", sizes_->simulated);
    AddSize(json, "shift_maps", sizes_->shift);
    AddSize(json, "earth_files", sizes_->earth);
    AddSize(json, "dem", sizes_->dem);
    json.EndObject();
    const DEM_RANGE& used = sizes_->used;
    const long long columns = std::max(used.last_column - used.first_column + 1LL, 0LL);
    const long long rows = std::max(used.last_row - used.first_row + 1LL, 0LL);
    json.BeginObject("counts");
    json.Add("dem_points", columns * rows);
    json.Add("pixels", static_cast<long long>(sizes_->simulated.samples) * sizes_->simulated.lines);
    json.Add("voids", sizes_->voids);
    json.EndObject();
}

void RUN_REPORT::AddStages(JSON_TEXT& json) const {
    json.BeginArray("stages");
    for (const STAGE_COST& stage : clock_.Costs()) {
        json.BeginObject();
        json.Add("name", stage.name);
        json.Add("seconds", stage.seconds);
        json.Add("peak_memory_bytes", stage.peak_memory_bytes);
        json.EndObject();
    }
    json.EndArray();
}

void RUN_REPORT::AddProducts(JSON_TEXT& json) const {
    json.BeginArray("products");
    for (const PRODUCT_KIND& kind : ProductKinds()) {
        const std::optional<std::string> path = PathOf(*controller_, kind);
        if (!path) continue;
        json.BeginObject();
        json.Add("key", kind.key);
        json.Add("path", *path);
        const auto written = std::ranges::find(written_, kind.key, &WRITTEN::key);
        json.Add("written", written != written_.end());
        if (written != written_.end()) {
            json.Add("columns", written->columns);
            json.Add("rows", written->rows);
            json.Add("bytes", written->bytes);
            json.Add("minimum", static_cast<double>(written->values.Minimum()));
            json.Add("maximum", static_cast<double>(written->values.Maximum()));
            json.Add("mean", written->values.Mean());
        } else {
            json.Add("reason", products_written_ ? "its key stands without a path"
                                                 : "the run ended before its products were complete");
        }
        json.EndObject();
    }
    json.EndArray();
}

std::string RUN_REPORT::Document() const {
    const VERSION_RECORD version = VelmoraVersion(controller_->get_binary_name());
    JSON_TEXT json;
    json.BeginObject();
    json.Add("report_version", 1);
    json.Add("program", version.program_name);
    json.Add("version", version.version);
    json.Add("control_file", controller_->get_configuration_file_name());
    json.Add("log_file", Log().LogFileName());
    json.Add("start", UtcOf(Log().OpeningTime()));
    AddKeys(json);
    AddSizes(json);
    json.Add("warnings", Log().Tally().Warnings());
    AddStages(json);
    AddProducts(json);
    json.BeginArray("errors");
    for (const std::string& error : Log().Tally().LastErrors()) json.Add("", error);
    json.EndArray();
    return json.Text();
}

void RUN_REPORT::Publish() const {
    static auto* const published = new std::deque<PREPARED>;
    published->push_back({REPORT_FILE(path_), Document(), LastErrors()});
    prepared = &published->back();
}

void RUN_REPORT::WriteAtExit(int status) {
    try {
        clock_.Begin("");
        const std::string last_error = LastError(status);
        const std::string quoted = last_error.empty() ? "" : JsonString(last_error);
        const int error = REPORT_FILE(path_).Write(Document(), {status, quoted});
        if (error != 0)
            Log().Message(LOGGING_LEVEL::WARNING, "report %s can not be written: %s", path_.c_str(),
                          std::strerror(error));
    } catch (const std::bad_alloc&) {
        WritePrepared(status, 0);
    }
}
