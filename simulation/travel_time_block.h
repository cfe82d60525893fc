/// \file travel_time_block.h
/// The loops of the single-pass solution over many points in step, compiled once per vector level.
/// Times: seconds on the points' axis; the orbit's is offset_s further.

#pragma once

#include "lib/baselib/vectors/vector_level.h"
#include "orbit/compiled_orbit.h"

/// Points solved in step. Their arrays stay in the first cache; places behind the last point repeat it.
struct TRAVEL_TIME_BLOCK {
    static constexpr int kSize = 64;
    double x_m[kSize];  ///< ground points
    double y_m[kSize];
    double z_m[kSize];
    double receive_time_s[kSize];
    double receive_path_s[kSize];  ///< travel time from the point to the receiver
    double travel_s[kSize];        ///< transmitter, point, receiver
    double moving[kSize];          ///< 1: the travel time still changes, 0: not
    double further[kSize];         ///< iterations after the first
    double asked_s[kSize];         ///< when the satellite is asked for its place
    double place_x_m[kSize];
    double place_y_m[kSize];
    double place_z_m[kSize];
    double placed[kSize];          ///< 1: the place is there, 0: not yet
    double first_travel_s[kSize];  ///< of the first sample
    double c0[kSize];              ///< squared travel time as a polynomial of the time from the sampling centre,
    double c1[kSize];              ///< in half apertures
    double c2[kSize];
    double vertex[kSize];      ///< where the polynomial is lowest
    double shortest_s[kSize];  ///< travel time there
    double solved[kSize];      ///< 1: it has a lowest point above 0
};

/// Part of the coefficients that one sample's squared travel time makes.
struct SAMPLE_WEIGHTS {
    double c0;
    double c1;
    double c2;
};

/// Places the satellite for the points whose time lies on the piece, and which are not placed yet.
/// @return number of points not placed
VELMORA_AT_EVERY_LEVEL(int PlaceOnPiece(const ORBIT_PIECE& piece, double offset_s, TRAVEL_TIME_BLOCK& block))

/// Receive paths from the satellite's places; travel times start at twice that and the excess given in travel_s.
VELMORA_AT_EVERY_LEVEL(void StartTravel(TRAVEL_TIME_BLOCK& block))

/// One step of the travel times' fixed point, with the transmitter at the satellite's places.
/// @return number of travel times that still change
VELMORA_AT_EVERY_LEVEL(int StepTravel(double tolerance, TRAVEL_TIME_BLOCK& block))

/// Adds the travel times of a sample to the polynomial; `first` begins it.
VELMORA_AT_EVERY_LEVEL(void AddSample(const SAMPLE_WEIGHTS& weights, bool first, TRAVEL_TIME_BLOCK& block))

VELMORA_AT_EVERY_LEVEL(void FindShortest(TRAVEL_TIME_BLOCK& block))
