#include "import/orbit_files/oem_file.h"

#include <algorithm>
#include <map>
#include <optional>

#include "import/orbit_files/text_lines.h"
#include "import/orbit_files/time_scales.h"

namespace {

constexpr double kMetresPerKilometre = 1000.0;
constexpr const char* kMetaStart = "META_START";
constexpr const char* kMetaStop = "META_STOP";
constexpr const char* kCovarianceStart = "COVARIANCE_START";
constexpr const char* kCovarianceStop = "COVARIANCE_STOP";

struct KEY_AND_VALUE {
    std::string key;
    std::string value;
};

std::optional<KEY_AND_VALUE> KeyAndValue(const std::string& line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) return std::nullopt;
    return KEY_AND_VALUE{Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))};
}

/// ITRF2014, ITRF-97, IGS14, WGS84, EFG, ...: frames that rotate with the Earth, polar motion included.
bool IsEarthFixed(const std::string& frame) {
    for (const char* const family : {"ITRF", "IGS", "WGS84", "WGS-84", "EFG", "ECEF", "EARTH_FIXED"}) {
        if (frame.rfind(family, 0) == 0) return true;
    }
    return false;
}

class OEM_READER {
  public:
    OEM_READER(const std::string& file, const std::string& content) : lines_(file, content) {
        table_.file = file;
        table_.kind = "CCSDS OEM";
    }

    ORBIT_TABLE Read() {
        while (lines_.Next()) ReadLine();
        if (in_block_ != nullptr)
            throw COMPANION_ERROR(table_.file + ": ends before " + in_block_ + ": the file is not whole");
        return table_;
    }

  private:
    void ReadLine() {
        const std::string& line = lines_.Line();
        if (line.rfind("COMMENT", 0) == 0) return;
        if (in_block_ == kCovarianceStop) {
            if (line == kCovarianceStop) in_block_ = nullptr;
        } else if (line == kCovarianceStart) {
            in_block_ = kCovarianceStop;
        } else if (line == kMetaStart) {
            scale_.reset();
            in_block_ = kMetaStop;
            values_.clear();
        } else if (line == kMetaStop) {
            CloseMetadata();
        } else if (const auto pair = KeyAndValue(line)) {
            values_[pair->key] = {pair->value, lines_.Place()};
        } else {
            ReadVector();
        }
    }

    std::string Value(const std::string& key, VALUE_PLACE& place) {
        const auto found = values_.find(key);
        if (found == values_.end())
            throw COMPANION_ERROR(lines_.Place().file + ": " + lines_.Place().where + ": the metadata lack " + key);
        place = found->second.place;
        place.where += ": " + key;
        return found->second.text;
    }

    void CloseMetadata() {
        if (in_block_ != kMetaStop) lines_.Refuse("META_START before");
        in_block_ = nullptr;
        VALUE_PLACE place;
        const std::string center = Value("CENTER_NAME", place);
        if (center != "EARTH") RefuseValue(place, center, "\"EARTH\"");
        const std::string frame = Value("REF_FRAME", place);
        if (!IsEarthFixed(frame))
            RefuseValue(place, frame, "an Earth-fixed frame (ITRF..., IGS..., WGS84, EFG): others are not converted");
        const std::string scale = Value("TIME_SYSTEM", place);
        scale_ = TimeScaleOf(scale);
        if (!scale_) RefuseValue(place, scale, "UTC, TAI or GPS");
        const auto name = values_.find("OBJECT_NAME");
        if (name != values_.end()) table_.mission = name->second.text;
    }

    void ReadVector() {
        if (in_block_ != nullptr || !scale_) lines_.Refuse("a line KEY = VALUE");
        const std::vector<std::string> words = WordsOf(lines_.Line());
        if (words.size() != 7 && words.size() != 10)
            lines_.Refuse("time, position and velocity (7 words), and an acceleration perhaps (10 words)");
        double si[6];
        for (std::size_t i = 0; i < 6; ++i) si[i] = RealOf(lines_.Place(), words[i + 1]) * kMetresPerKilometre;
        const UTC_STATE_VECTOR vector{
            UtcOf(lines_.Place(), words[0], *scale_), {si[0], si[1], si[2]}, {si[3], si[4], si[5]}};
        // The first vector of a segment may be the last one of the segment before.
        if (!table_.vectors.empty() && table_.vectors.back().time == vector.time) return;
        table_.vectors.push_back(vector);
    }

    struct TEXT_AND_PLACE {
        std::string text;
        VALUE_PLACE place;
    };

    TEXT_LINES lines_;
    ORBIT_TABLE table_;
    std::map<std::string, TEXT_AND_PLACE> values_;
    std::optional<TIME_SCALE> scale_;
    const char* in_block_ = nullptr;  ///< what ends the block that is being read
};

}  // namespace

ORBIT_TABLE ParseOem(const std::string& file, const std::string& content) {
    return OEM_READER(file, content).Read();
}
