#include "import/stack/pair_table.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "lib/baselib/errors/error_exception.h"

namespace {

constexpr std::size_t kMostPairs = 1000000;

PAIR_FIGURES Measured(const VALUE_PLACE& place, const PAIR_MEASURE& measure, std::size_t master, std::size_t slave) {
    const std::string row = place.file + ": " + place.where + ": ";
    try {
        return measure(master, slave);
    } catch (const ERROR_EXCEPTION& error) {
        throw COMPANION_ERROR(row + error.Message());
    } catch (const COMPANION_ERROR& error) {
        throw COMPANION_ERROR(row + error.what());
    }
}

/// Pairs by name.
class NAMED_PAIRS {
  public:
    NAMED_PAIRS(const CSV_TABLE& table, const std::vector<STACK_IMAGE>& images) : table_(table) {
        for (std::size_t i = 0; i < images.size(); ++i) indices_.emplace(images[i].name, i);
    }

    [[nodiscard]] std::vector<STACK_PAIR> Read(const PAIR_MEASURE& measure) {
        std::vector<STACK_PAIR> pairs;
        for (const CSV_TABLE::ROW& row : table_.Rows()) {
            const std::size_t master = Image(row, "master");
            const std::size_t slave = Image(row, "slave");
            const VALUE_PLACE place = table_.Place(row, "slave");
            if (master == slave) RefuseValue(place, table_.Text(row, "slave"), "another image than the master");
            const auto [earlier, is_new] = lines_.emplace(std::pair(master, slave), row.line);
            if (!is_new)
                RefuseValue(place, table_.Text(row, "slave"),
                            "each pair once; this one stands in line " + std::to_string(earlier->second));
            pairs.push_back({master, slave, place, Measured(place, measure, master, slave)});
        }
        return pairs;
    }

  private:
    [[nodiscard]] std::size_t Image(const CSV_TABLE::ROW& row, const char* column) const {
        const std::string name = table_.Text(row, column);
        const auto found = indices_.find(name);
        if (found == indices_.end()) RefuseValue(table_.Place(row, column), name, "a name of the table of images");
        return found->second;
    }

    const CSV_TABLE& table_;
    std::map<std::string, std::size_t> indices_;
    std::map<std::pair<std::size_t, std::size_t>, long long> lines_;
};

struct RULE {
    std::size_t next = std::numeric_limits<std::size_t>::max();
    double longest_s = std::numeric_limits<double>::max();
    double longest_baseline_m = std::numeric_limits<double>::max();
    VALUE_PLACE place;
};

double Limit(const CSV_TABLE& table, const CSV_TABLE::ROW& row, const char* column) {
    const std::string text = table.Text(row, column);
    if (text.empty()) return std::numeric_limits<double>::max();
    const double value = RealOf(table.Place(row, column), text);
    if (value < 0.0) RefuseValue(table.Place(row, column), text, "a number not below 0, or nothing");
    return value;
}

RULE RuleOf(const CSV_TABLE& table, const CSV_TABLE::ROW& row) {
    RULE rule;
    rule.place = {table.File(), "line " + std::to_string(row.line)};
    const std::string next = table.Text(row, "next");
    if (!next.empty()) rule.next = static_cast<std::size_t>(IntegerOf(table.Place(row, "next"), next, 1, kMostPairs));
    rule.longest_s = std::min(Limit(table, row, "days"), 1e9) * kSecondsPerDay;
    rule.longest_baseline_m = Limit(table, row, "baseline");
    if (next.empty() && table.Text(row, "days").empty() && table.Text(row, "baseline").empty())
        RefuseValue(rule.place, "", "a limit: next, days or baseline");
    return rule;
}

/// Pairs by rules, of images in the order of time.
class RULED_PAIRS {
  public:
    RULED_PAIRS(const std::vector<STACK_IMAGE>& images, const PAIR_MEASURE& measure)
        : images_(images), measure_(measure), by_time_(images.size()) {
        std::iota(by_time_.begin(), by_time_.end(), 0U);
        std::stable_sort(by_time_.begin(), by_time_.end(), [this](std::size_t a, std::size_t b) {
            return images_[a].first_line_s < images_[b].first_line_s;
        });
    }

    void Add(const RULE& rule) {
        for (std::size_t i = 0; i < by_time_.size(); ++i) {
            const std::size_t end = by_time_.size() - i > rule.next ? i + rule.next + 1 : by_time_.size();
            for (std::size_t j = i + 1; j < end; ++j) Consider(rule, by_time_[i], by_time_[j]);
        }
    }
    [[nodiscard]] std::vector<STACK_PAIR> Pairs() {
        std::stable_sort(pairs_.begin(), pairs_.end(),
                         [this](const STACK_PAIR& a, const STACK_PAIR& b) { return Times(a) < Times(b); });
        return std::move(pairs_);
    }

  private:
    void Consider(const RULE& rule, std::size_t master, std::size_t slave) {
        if (images_[slave].first_line_s - images_[master].first_line_s > rule.longest_s) return;
        if (taken_.count({master, slave}) != 0) return;
        const PAIR_FIGURES figures = Measured(rule.place, measure_, master, slave);
        if (std::fabs(figures.perpendicular_baseline_m) > rule.longest_baseline_m) return;
        taken_.emplace(master, slave);
        pairs_.push_back({master, slave, rule.place, figures});
        if (pairs_.size() > kMostPairs)
            throw COMPANION_ERROR(rule.place.file + ": " + rule.place.where + ": takes more than " +
                                  std::to_string(kMostPairs) + " pairs: expected narrower limits");
    }
    [[nodiscard]] std::pair<double, double> Times(const STACK_PAIR& pair) const {
        return {images_[pair.master].first_line_s, images_[pair.slave].first_line_s};
    }

    const std::vector<STACK_IMAGE>& images_;
    const PAIR_MEASURE& measure_;
    std::vector<std::size_t> by_time_;
    std::set<std::pair<std::size_t, std::size_t>> taken_;
    std::vector<STACK_PAIR> pairs_;
};

}  // namespace

std::vector<STACK_PAIR> ReadPairTable(const std::string& file, const std::vector<STACK_IMAGE>& images,
                                      const PAIR_MEASURE& measure) {
    const CSV_TABLE table(file, {"master", "slave", "next", "days", "baseline"});
    const bool has_rules = table.Has("next") || table.Has("days") || table.Has("baseline");
    const bool has_names = table.Has("master") && table.Has("slave");
    if (has_rules == has_names || (has_rules && (table.Has("master") || table.Has("slave"))))
        RefuseValue(table.PlaceOfNames(), table.Names(), "master,slave for pairs, or of next,days,baseline for rules");
    if (has_names) return NAMED_PAIRS(table, images).Read(measure);
    RULED_PAIRS pairs(images, measure);
    for (const CSV_TABLE::ROW& row : table.Rows()) pairs.Add(RuleOf(table, row));
    return pairs.Pairs();
}
