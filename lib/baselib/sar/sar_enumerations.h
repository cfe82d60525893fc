/// \file sar_enumerations.h
/// The vocabulary of SAR products. Each class is a value; its ID names the enumerators, for example Edge(Edge::TOP).
/// Texts, alternative texts and pool keys: sar_tables.h and docs/sar_enumerations.md.

#pragma once

#include "lib/baselib/containers/records.h"
#include "lib/baselib/sar/sar_tables.h"

namespace SAR {

class QuicklookResolutionClass : public SAR_ENUM_OF<kQuicklook> {
  public:
    enum ID : int { NOT_SET, LOW_RES, MEDIUM_RES, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class PolarizationType : public SAR_ENUM_OF<kPolarization> {
  public:
    enum ID : int { NOT_SET, V, H, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class OrbitDirection : public SAR_ENUM_OF<kOrbitDirection> {
  public:
    enum ID : int { NOT_SET, ASCENDING, DESCENDING, UNDEFINED, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class AntennaLookDirection : public SAR_ENUM_OF<kLookDirection> {
  public:
    enum ID : int { NOT_SET, LEFT, RIGHT, UNDEFINED, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

/// The edges of an image, clockwise.
class Edge : public SAR_ENUM_OF<kEdge> {
  public:
    enum ID : int { NOT_SET, TOP, RIGHT, BOTTOM, LEFT, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;

    /// TOP and BOTTOM, RIGHT and LEFT; the "-" enumerators are their own opposites.
    [[nodiscard]] Edge Opposite() const;
    /// Whether the two meet in a corner; no "-" enumerator meets any edge.
    [[nodiscard]] bool IsOrthogonalTo(const Edge& other) const;

  private:
    [[nodiscard]] bool IsReal() const { return Id() != NOT_SET && Id() != END; }
};

class Range : public SAR_ENUM_OF<kRange> {
  public:
    enum ID : int { NOT_SET, NEAR, MID, FAR, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class Azimuth : public SAR_ENUM_OF<kAzimuth> {
  public:
    enum ID : int { NOT_SET, START, CENTER, STOP, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;

    /// "early", "mid", "late" for start, center, stop.
    [[nodiscard]] const char* SecondText() const { return kAzimuthSecondTexts[Id()]; }
};

class ImageType : public SAR_ENUM_OF<kImageType> {
  public:
    enum ID : int { NOT_SET, PORTRAIT, LANDSCAPE, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class ImagingConfiguration : public SAR_ENUM_OF<kImaging> {
  public:
    enum ID : int { NOT_SET, STRIP_MAP, SCAN_SAR, SPOT_LIGHT, TOP_SAR, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class ChirpSlope : public SAR_ENUM_OF<kChirpSlope> {
  public:
    enum ID : int { NOT_SET, UP_CHIRP, DOWN_CHIRP, NOT_APPLICABLE, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class ChirpType : public SAR_ENUM_OF<kChirpType> {
  public:
    enum ID : int { NOT_SET, IDEAL, MODEL, REPLICA, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class ProductFormatId : public SAR_ENUM_OF<kProductFormat> {
  public:
    enum ID : int { NOT_SET, PLAIN, QLM_ISP, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class Projection : public SAR_ENUM_OF<kProjection> {
  public:
    enum ID : int { NOT_SET, SLANT_RANGE, GROUND_RANGE, MAP, UNDEFINED, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

class MapProjection : public SAR_ENUM_OF<kMapProjection> {
  public:
    enum ID : int { NOT_SET, UTM, UPS, AUTO, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
};

/// Polarisations of transmission and reception; "HV" is transmitted H, received V.
class TxRxType : public SAR_ENUM_OF<kTxRx> {
  public:
    enum ID : int { NOT_SET, HH, HV, VH, VV, END };
    using SAR_ENUM_OF::SAR_ENUM_OF;
    /// @throws ERROR_INVALID_VALUE for a pair of which exactly one part is "-", or whose "-" are of different kinds
    TxRxType(const PolarizationType& transmit, const PolarizationType& receive);

    [[nodiscard]] PolarizationType Transmit() const;
    [[nodiscard]] PolarizationType Receive() const;
};

}  // namespace SAR
