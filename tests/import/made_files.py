"""Small orbit files and annotations, made from a Kepler orbit of 700 km height."""

import dataclasses
import datetime
import math

import numpy as np

import import_run  # noqa: F401  (puts the scene maker on the path)
from scene_maker.kepler import KEPLER_ORBIT

ORBIT = KEPLER_ORBIT(7071e3, 0.001, math.radians(98.2), 1.2, 0.0, 2.5, 0.4)
EPOCH = datetime.datetime(2023, 1, 8, 13, 50, 0, 250000)
LINE_INTERVAL_S = 0.0021
BURST_LINES, BURST_STEP_LINES, SAMPLES = 12, 9, 40


def moved(orbit, metres):
    """The same orbit, higher by some metres: the slave of a pair."""
    return dataclasses.replace(orbit, semi_major_axis_m=orbit.semi_major_axis_m + metres)


def vectors(count=16, step_s=10.0, orbit=ORBIT, start_s=0.0):
    """(seconds since EPOCH, position, velocity) of each vector."""
    times = [start_s + step_s * i for i in range(count)]
    states = [orbit.state(t) for t in times]
    return [(t, s.position_m, s.velocity_m_s) for t, s in zip(times, states)]


def iso(seconds, ahead_s=0, epoch=EPOCH):
    return (epoch + datetime.timedelta(seconds=seconds + ahead_s)).isoformat(timespec="microseconds")


def orbit_csv(rows, header="t_utc,x,y,z,vx,vy,vz", ahead_s=0, epoch=EPOCH):
    lines = [",".join([iso(t, ahead_s, epoch), *("%.6f" % c for c in (*r, *v))]) for t, r, v in rows]
    return "\n".join([header, *lines]) + "\n"


def eof(rows, frame="EARTH_FIXED", time="UTC", mission="Sentinel-1A", count=None):
    vectors_text = "".join(
        "<OSV><UTC>UTC=%s</UTC>%s</OSV>" % (iso(t), "".join(
            '<%s unit="%s">%.6f</%s>' % (name, unit, value, name) for name, unit, value in
            zip(("X", "Y", "Z", "VX", "VY", "VZ"), ("m",) * 3 + ("m/s",) * 3, (*r, *v)))) for t, r, v in rows)
    return ('<?xml version="1.0"?><Earth_Explorer_File><Earth_Explorer_Header>'
            "<Fixed_Header><Mission>%s</Mission></Fixed_Header>"
            "<Variable_Header><Ref_Frame>%s</Ref_Frame><Time_Reference>%s</Time_Reference></Variable_Header>"
            '</Earth_Explorer_Header><Data_Block><List_of_OSVs count="%d">%s</List_of_OSVs></Data_Block>'
            "</Earth_Explorer_File>" % (mission, frame, time, len(rows) if count is None else count, vectors_text))


def oem(rows, frame="ITRF2014", time="UTC", ahead_s=0):
    lines = ["CCSDS_OEM_VERS = 2.0", "CREATION_DATE = 2023-01-09T00:00:00", "ORIGINATOR = TEST", "", "META_START",
             "OBJECT_NAME = SAT", "CENTER_NAME = EARTH", "REF_FRAME = " + frame, "TIME_SYSTEM = " + time, "META_STOP",
             "COMMENT kilometres"]
    lines += [" ".join([iso(t, ahead_s), *("%.9f" % (c / 1000.0) for c in (*r, *v)), "0 0 0"]) for t, r, v in rows]
    return "\n".join(lines + ["COVARIANCE_START", "EPOCH = x", "1.0", "COVARIANCE_STOP"]) + "\n"


def annotation(rows, bursts=3, first_line_s=70.0, product="SLC", swath="IW2", samples=SAMPLES):
    """Bursts every BURST_STEP_LINES lines, each with a line of no valid sample at both ends."""
    starts = [first_line_s + BURST_STEP_LINES * LINE_INTERVAL_S * i for i in range(bursts)]
    last = starts[-1] + (BURST_LINES - 1) * LINE_INTERVAL_S
    orbit = "".join("<orbit><time>%s</time><frame>Earth Fixed</frame><position><x>%.15e</x><y>%.15e</y><z>%.15e</z>"
                    "</position><velocity><x>%.15e</x><y>%.15e</y><z>%.15e</z></velocity></orbit>" %
                    (iso(t), *r, *v) for t, r, v in rows)
    first_valid = " ".join(["-1", *["3"] * (BURST_LINES - 2), "-1"])
    last_valid = " ".join(["-1", *["35"] * (BURST_LINES - 2), "-1"])
    burst = "".join("<burst><azimuthTime>%s</azimuthTime><firstValidSample>%s</firstValidSample>"
                    "<lastValidSample>%s</lastValidSample></burst>" % (iso(t), first_valid, last_valid) for t in starts)
    return ("<product><adsHeader><missionId>S1A</missionId><productType>%s</productType><polarisation>VV</polarisation>"
            "<swath>%s</swath><absoluteOrbitNumber>46693</absoluteOrbitNumber></adsHeader>"
            "<generalAnnotation><productInformation><pass>Descending</pass><projection>Slant Range</projection>"
            "<rangeSamplingRate>6.434523812571428e+07</rangeSamplingRate>"
            "<radarFrequency>5.405000454334350e+09</radarFrequency></productInformation>"
            "<downlinkInformationList><downlinkInformation><prf>1451.6</prf></downlinkInformation>"
            "</downlinkInformationList><orbitList>%s</orbitList></generalAnnotation>"
            "<imageAnnotation><imageInformation><productFirstLineUtcTime>%s</productFirstLineUtcTime>"
            "<productLastLineUtcTime>%s</productLastLineUtcTime><slantRangeTime>5.644e-03</slantRangeTime>"
            "<azimuthTimeInterval>%.16e</azimuthTimeInterval><numberOfSamples>%d</numberOfSamples>"
            "<numberOfLines>%d</numberOfLines></imageInformation><processingInformation><swathProcParamsList>"
            "<swathProcParams><swath>%s</swath><azimuthProcessing><processingBandwidth>3.13e+02</processingBandwidth>"
            "</azimuthProcessing></swathProcParams></swathProcParamsList>"
            "<ellipsoidSemiMajorAxis>6.378137e+06</ellipsoidSemiMajorAxis>"
            "<ellipsoidSemiMinorAxis>6.356752314245e+06</ellipsoidSemiMinorAxis></processingInformation>"
            "</imageAnnotation><swathTiming><linesPerBurst>%d</linesPerBurst><samplesPerBurst>%d</samplesPerBurst>"
            "<burstList>%s</burstList></swathTiming></product>" %
            (product, swath, orbit, iso(starts[0]), iso(last), LINE_INTERVAL_S, samples, bursts * BURST_LINES, swath,
             BURST_LINES, samples, burst))


def ground(time_s, range_m, height_m):
    """Newton's method on zero Doppler, range and height above the ellipsoid of the point, right of the track."""
    a, b = 6378137.0 + height_m, 6356752.314245 + height_m
    state = ORBIT.state(time_s)
    position, velocity = state.position_m, state.velocity_m_s
    right = np.cross(velocity, position)
    right /= np.linalg.norm(right)
    point = position * (a / np.linalg.norm(position)) + right * math.sqrt(range_m ** 2 - 7e5 ** 2)
    for _ in range(50):
        sight = point - position
        residual = np.array([velocity @ sight, sight @ sight - range_m ** 2,
                             (point[0] ** 2 + point[1] ** 2) / a ** 2 + point[2] ** 2 / b ** 2 - 1.0])
        slopes = np.array([velocity, 2.0 * sight, 2.0 * point / np.array([a * a, a * a, b * b])])
        point = point - np.linalg.solve(slopes, residual)
    latitude = math.atan2(point[2], math.hypot(point[0], point[1]) * (b / a) ** 2)
    return math.degrees(math.atan2(point[1], point[0])), math.degrees(latitude)
