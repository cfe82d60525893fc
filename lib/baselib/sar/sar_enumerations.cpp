#include "lib/baselib/sar/sar_enumerations.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"

namespace SAR {

namespace {

/// Index: TxRxType::ID.
constexpr TUPLE<PolarizationType::ID> kTxRxPairs[] = {{PolarizationType::NOT_SET, PolarizationType::NOT_SET},
                                                      {PolarizationType::H, PolarizationType::H},
                                                      {PolarizationType::H, PolarizationType::V},
                                                      {PolarizationType::V, PolarizationType::H},
                                                      {PolarizationType::V, PolarizationType::V},
                                                      {PolarizationType::END, PolarizationType::END}};

}  // namespace

Edge Edge::Opposite() const {
    constexpr ID kOpposites[] = {NOT_SET, BOTTOM, LEFT, TOP, RIGHT, END};
    return Edge(kOpposites[Id()]);
}

bool Edge::IsOrthogonalTo(const Edge& other) const {
    return IsReal() && other.IsReal() && other.Id() != Id() && other.Id() != Opposite().Id();
}

TxRxType::TxRxType(const PolarizationType& transmit, const PolarizationType& receive) {
    for (int id = NOT_SET; id <= END; ++id) {
        if (kTxRxPairs[id].first == transmit.Id() && kTxRxPairs[id].second == receive.Id()) {
            AssignId(id, true);
            return;
        }
    }
    Log().Message(LOGGING_LEVEL::ALARM, "invalid combination of transmit and receive polarization");
    LogAndThrow<ERROR_INVALID_VALUE>("transmit \"%s\", receive \"%s\"", transmit.Text().c_str(),
                                     receive.Text().c_str());
}

PolarizationType TxRxType::Transmit() const {
    return PolarizationType(kTxRxPairs[Id()].first);
}
PolarizationType TxRxType::Receive() const {
    return PolarizationType(kTxRxPairs[Id()].second);
}

}  // namespace SAR
