#include "orbit/samples/reference_time.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "time/time_axis.h"

namespace {

template <class S>
ANY_TIME Detected(const char* kind, const S& time) {
    Log().Message(LOGGING_LEVEL::INFO, "GENERAL_ORBIT: %s reference time detected: %s", kind,
                  TIME_AXIS<S>::ToText(time).c_str());
    return time;
}

template <class S>
using PLAIN = std::remove_cvref_t<S>;

}  // namespace

const char* TextOf(TIME_KIND kind) {
    constexpr const char* kNames[] = {TIME_AXIS<double>::kName, TIME_AXIS<UNIVERSAL_TIME>::kName,
                                      TIME_AXIS<MISSION_ELAPSED_TIME>::kName};
    return kNames[static_cast<int>(kind)];
}

const char* KindOf(const ANY_TIME& time) {
    return TextOf(static_cast<TIME_KIND>(time.index()));
}

std::string TextOf(const ANY_TIME& time) {
    return std::visit([](const auto& t) { return TIME_AXIS<PLAIN<decltype(t)>>::ToText(t); }, time);
}

ANY_TIME ReferenceTimeFromText(const std::string& text) {
    Log().Message(LOGGING_LEVEL::DEBUG, "GENERAL_ORBIT::SetReferenceTime(%s)", text.c_str());
    const bool has_colon = text.find(':') != std::string::npos;
    const bool has_minus = text.find('-') != std::string::npos;
    if (!has_colon) return Detected("float", TIME_AXIS<double>::FromText(text));
    if (!has_minus) return Detected("MET", TIME_AXIS<MISSION_ELAPSED_TIME>::FromText(text));
    return Detected("UTC", TIME_AXIS<UNIVERSAL_TIME>::FromText(text));
}

void RequireSameKind(const ANY_TIME& a, const ANY_TIME& b) {
    if (a.index() == b.index()) return;
    LogAndThrow<ERROR_ARGUMENT>("ORBIT: no difference between %s (%s) and %s (%s)", TextOf(a).c_str(), KindOf(a),
                                TextOf(b).c_str(), KindOf(b));
}
